// A scope timer costs at most 2 microseconds over the same line, written by hand to the same kind
// of stream.

#include "Benchmarks.h"
#include "CommonConstants.h"
#include "PerformanceMeauser.h"

#include <QDebug>

using VEK_NAMESPACE::CPerformanceMeauser;

namespace {

QString name()
{
    return QStringLiteral("loading of the picture");
}

QString line()
{
    return QStringLiteral("elapsed time (in milliseconds) of loading of the picture = 0, "
                          "avg time = 0");
}

PairedTimes timeToText()
{
    QString text;
    QString byHandText;
    const QString scope = name();
    const QString written = line();
    const PairedTimes times = pairedCalls(
        [&] {
            text.resize(0);
            const CPerformanceMeauser timer(QDebug(&text), scope);
        },
        [&] {
            byHandText.resize(0);
            QDebug(&byHandText) << written;
        });
    require(text == byHandText, "the line is another one than the one by hand");
    return times;
}

QString lastMessage;

PairedTimes timeToMessages()
{
    const QtMessageHandler usual =
        qInstallMessageHandler([](QtMsgType, const QMessageLogContext&, const QString& message) {
            lastMessage = message;
        });
    const QString scope = name();
    const QString written = line();
    const PairedTimes times =
        pairedCalls([&] { const CPerformanceMeauser timer(scope); }, [&] { qDebug() << written; });
    {
        const CPerformanceMeauser timer(scope);
    }
    const QString message = lastMessage;
    qDebug() << written;
    qInstallMessageHandler(usual);
    require(message == lastMessage, "the line is another one than the one by hand");
    return times;
}

} // namespace

void addPerformanceMeauser(Benchmarks& benchmarks)
{
    benchmarks.figures.push_back({QStringLiteral("scope timer: to a text"),
                                  QStringLiteral("its line by QDebug"), atMostOver(2e-6),
                                  timeToText});
    benchmarks.figures.push_back({QStringLiteral("scope timer: to the messages"),
                                  QStringLiteral("its line by qDebug()"), atMostOver(2e-6),
                                  timeToMessages});
}
