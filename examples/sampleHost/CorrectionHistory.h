#pragma once

#include <QHash>
#include <QUndoStack>
#include <QVariant>

/// The undo steps of the controls it watches. A step is recorded on demand, from the value at the
/// last record to the present one, so that a drag is one step.
class CorrectionHistory : public QObject
{
    Q_OBJECT

public:
    explicit CorrectionHistory(QObject* parent = nullptr);
    ~CorrectionHistory() override;

    /// Watches \a property, named after what the step is called, of \a control under its object
    /// name. The control outlives the history.
    void watch(QObject* control, const char* property, const QString& text);

    /// Forgets the steps; the present values are where the next ones begin.
    void restart();

    void record(const QString& control);

    /// Records what has changed as one step called \a text.
    void recordAll(const QString& text);

    bool canUndo() const;
    void undo();

Q_SIGNALS:
    void canUndoChanged(bool canUndo);

private:
    class Step;

    struct Watched
    {
        QObject* control;
        const char* property;
        QString text;
        QVariant recorded;
    };

    void restore(const QString& control, const QVariant& value);

    QHash<QString, Watched> m_watched;
    QUndoStack m_stack;
};
