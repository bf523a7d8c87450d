#pragma once

#include <QApplication>
#include <QDialog>
#include <QPointer>
#include <QTest>
#include <QTimer>

#include <functional>

/// Calls a function for each modal dialog that comes up and gets active while it lives, and closes
/// what the function leaves open.
class DialogWatcher : public QObject
{
public:
    explicit DialogWatcher(const std::function<void(QDialog*)>& onDialog)
    {
        connect(&m_timer, &QTimer::timeout, this, [this, onDialog] {
            const QPointer<QDialog> dialog =
                qobject_cast<QDialog*>(QApplication::activeModalWidget());
            if (!dialog || dialog == m_last || !dialog->isVisible())
                return;
            m_last = dialog;
            // A window counts as active with its dialogs' parent, too; keys need it itself.
            if (QTest::qWaitFor([&] { return QApplication::activeWindow() == dialog; })) {
                ++m_count;
                onDialog(dialog);
            }
            if (dialog && dialog->isVisible())
                dialog->reject();
            m_last = nullptr;
        });
        m_timer.start(20);
    }

    int count() const { return m_count; }

private:
    QTimer m_timer;
    QWidget* m_last = nullptr;
    int m_count = 0;
};
