#pragma once

#include <QFrame>
#include <QTimer>

#include <functional>

class CQRunnableItem;
class QLabel;
class QProgressBar;
class QPushButton;

/// Runs work off the GUI thread and shows, if it takes longer than a moment, how far it is, with a
/// button that stops it.
class BusyBar : public QFrame
{
    Q_OBJECT

public:
    enum class Outcome
    {
        Done,
        Failed,
        Stopped
    };

    explicit BusyBar(QWidget* parent = nullptr);

    /// Runs \a work, which stays the caller's, and serves events until it has ended. Only one work
    /// at a time. \a describe gives the text that is shown, again when the language changes.
    Outcome run(CQRunnableItem& work, const std::function<QString()>& describe);

    bool isBusy() const;

public Q_SLOTS:
    void stop();
    void setProgress(int percent);

Q_SIGNALS:
    void busyChanged(bool busy);

protected:
    void changeEvent(QEvent* event) override;

private:
    void retranslate();

    CQRunnableItem* m_work = nullptr;
    std::function<QString()> m_describe;
    QTimer m_moment;
    QLabel* m_text = nullptr;
    QProgressBar* m_progress = nullptr;
    QPushButton* m_stopButton = nullptr;
};
