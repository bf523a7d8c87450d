// A request for a delayed call costs at most twice a bare startTimer() and killTimer() pair.

#include "Benchmarks.h"
#include "DelayedCall.h"

#include <QObject>

#include <vector>

namespace {

constexpr int delay = 100000;
constexpr char method[] = "deleteLater";

/// A timer that is ended and started again.
class Timer
{
public:
    void restart()
    {
        m_object.killTimer(m_timer);
        m_timer = m_object.startTimer(delay);
    }

private:
    QObject m_object;
    int m_timer = m_object.startTimer(delay);
};

/// Each request replaces the one before, as in a burst of requests.
PairedTimes replaceCall()
{
    QObject object;
    Timer timer;
    const PairedTimes times = pairedCalls(
        [&] { CDelayedCall::invoke(delay, &object, method, true); }, [&] { timer.restart(); });
    CDelayedCall::discard(&object, method);
    return times;
}

PairedTimes requestAndDiscardCall()
{
    QObject object;
    Timer timer;
    return pairedCalls(
        [&] {
            CDelayedCall::invoke(delay, &object, method, true);
            CDelayedCall::discard(&object, method);
        },
        [&] { timer.restart(); });
}

/// Both among the timers of so many pending calls, each of an object of its own.
PairedTimes replaceCallAmong(int pending)
{
    std::vector<QObject> objects{size_t(pending)};
    for (QObject& object : objects)
        CDelayedCall::invoke(delay, &object, method, true);
    const PairedTimes times = replaceCall();
    for (QObject& object : objects)
        CDelayedCall::discard(&object, method);
    return times;
}

} // namespace

void addDelayedCalls(Benchmarks& benchmarks)
{
    const QString peer = QStringLiteral("killTimer(), startTimer()");
    benchmarks.figures.push_back(
        {QStringLiteral("delayed call: replace a request"), peer, atMostTimes(2.0), replaceCall});
    benchmarks.figures.push_back({QStringLiteral("delayed call: request and discard"), peer,
                                  atMostTimes(2.0), requestAndDiscardCall});
    benchmarks.growths.push_back(
        {QStringLiteral("delayed call: replace one, by pending calls"), peer, replaceCallAmong});
}
