#include "CorrectionHistory.h"

class CorrectionHistory::Step : public QUndoCommand
{
public:
    Step(CorrectionHistory& history, const QString& control, const QVariant& before,
         const QVariant& after, const QString& text)
        : QUndoCommand(text)
        , m_history(history)
        , m_control(control)
        , m_before(before)
        , m_after(after)
    {}

    void undo() override { m_history.restore(m_control, m_before); }
    void redo() override { m_history.restore(m_control, m_after); }

private:
    CorrectionHistory& m_history;
    const QString m_control;
    const QVariant m_before;
    const QVariant m_after;
};

CorrectionHistory::CorrectionHistory(QObject* parent)
    : QObject(parent)
{
    connect(&m_stack, &QUndoStack::canUndoChanged, this, &CorrectionHistory::canUndoChanged);
}

CorrectionHistory::~CorrectionHistory()
{
    // The stack tells that it has been emptied, and the window may be half gone by then.
    m_stack.disconnect(this);
}

void CorrectionHistory::watch(QObject* control, const char* property, const QString& text)
{
    m_watched.insert(control->objectName(), {control, property, text, control->property(property)});
}

void CorrectionHistory::restart()
{
    m_stack.clear();
    for (Watched& watched : m_watched)
        watched.recorded = watched.control->property(watched.property);
}

void CorrectionHistory::record(const QString& control)
{
    const auto it = m_watched.constFind(control);
    if (it == m_watched.constEnd())
        return;
    const QVariant before = it->recorded;
    const QVariant after = it->control->property(it->property);
    if (before != after)
        m_stack.push(new Step(*this, control, before, after, it->text));
}

void CorrectionHistory::recordAll(const QString& text)
{
    QStringList changed;
    for (auto it = m_watched.constBegin(); it != m_watched.constEnd(); ++it) {
        if (it->recorded != it->control->property(it->property))
            changed += it.key();
    }
    if (changed.isEmpty())
        return;
    m_stack.beginMacro(text);
    for (const QString& control : qAsConst(changed))
        record(control);
    m_stack.endMacro();
}

bool CorrectionHistory::canUndo() const
{
    return m_stack.canUndo();
}

void CorrectionHistory::undo()
{
    m_stack.undo();
}

void CorrectionHistory::restore(const QString& control, const QVariant& value)
{
    // First the record: what listens to the control compares with it.
    Watched& watched = m_watched[control];
    watched.recorded = value;
    watched.control->setProperty(watched.property, value);
}
