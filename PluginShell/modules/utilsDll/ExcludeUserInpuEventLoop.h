#pragma once

#include "UtilsDllGlobal.h"

#include <QEventLoop>
#include <QObject>
#include <QPointer>

/// Throws away the user's input to one object, or to all of them if that is the application, for as
/// long as the filter lives: presses, keys, focus changes, drags, shortcuts and close requests have
/// no effect, then or later. Releases, moves, the wheel and touches go on, so that a press from
/// before can end and the interface follows the pointer; so does everything that isn't input.
class UTILSDLL_EXPORT CExcludeUserInpuEventsFilter : public QObject
{
public:
    /// Installs the filter on \a pTarget, which becomes its parent. On another thread than the
    /// target's nothing is installed, with a warning unless the target is the application.
    explicit CExcludeUserInpuEventsFilter(QObject* pTarget);
    /// Lets the target's input through again.
    ~CExcludeUserInpuEventsFilter() override;

    /// Swallows the events that are shut out, and passes on all others.
    bool eventFilter(QObject* object, QEvent* event) override;
};

/// An event loop that shuts out user input while it runs. GUI thread.
class UTILSDLL_EXPORT CExcludeUserInpuEventLoop : public QObject
{
    Q_OBJECT

public:
    /// \a pFilterTarget is usually the application object; the caller keeps it, and it may die
    /// first.
    explicit CExcludeUserInpuEventLoop(QObject* pFilterTarget, QObject* parent = nullptr);
    ~CExcludeUserInpuEventLoop() override;

public Q_SLOTS:
    /// Runs until quit(), failedQuit() or exit(), or, if \a nQuitTimeout isn't 0, for that many
    /// milliseconds at the most. Returns 0, 1 or the code that the loop was left with; a time-out
    /// gives 0, and a call while the loop runs -1 at once. A time-out that is still to come when
    /// the loop ends early ends a later run on the same object, unless that run has a time-out of
    /// its own.
    int exec(int nQuitTimeout = 0);

    /// Ends exec() with 0. Like the other two without effect while the loop isn't running.
    void quit();

    /// Ends exec() with 1.
    void failedQuit();

    /// Ends exec() with \a returnCode.
    void exit(int returnCode = 0);

private:
    QPointer<QObject> m_pFilterTarget;
    QEventLoop m_eventLoop;
};
