// Starts an application without arguments and hands its command line over once it listens.

#include "ArgumentsFile.h"
#include "DistributedNotifications.h"
#include "StartedApplication.h"

#include <QCommandLineParser>
#include <QCoreApplication>
#include <QEventLoop>
#include <QFile>
#include <QTimer>

#include <cstdio>
#include <optional>

namespace {

enum ExitStatus
{
    HandedOver = 0,
    NotHandedOver = 1,
    WrongUsage = 2
};

/// How long the application may take to read its arguments.
const int patienceMs = 5000;

struct CommandLine
{
    int timeoutMs = 0;
    QString application;
    QByteArrayList arguments; ///< the very bytes that this process was given
};

void complain(const QString& message)
{
    std::fprintf(stderr, "launcher: %s\n", qPrintable(message));
}

/// Nothing if the command line makes no sense; what is wrong has been told then.
std::optional<CommandLine> parseCommandLine(const QByteArrayList& words)
{
    QCommandLineParser parser;
    parser.setApplicationDescription(
        QStringLiteral("Starts an application without arguments and hands its command line over "
                       "once it listens.\nThe exit status is 0 if that was done, 1 if it couldn't "
                       "be and 2 for a wrong command line."));
    parser.addHelpOption();
    const QCommandLineOption timeout(
        QStringLiteral("timeout"),
        QStringLiteral("Time within which the application has to listen (30000)."),
        QStringLiteral("msec"), QStringLiteral("30000"));
    parser.addOption(timeout);
    parser.addPositionalArgument(QStringLiteral("application"),
                                 QStringLiteral("Application to start."));
    parser.addPositionalArgument(QStringLiteral("argument"),
                                 QStringLiteral("What it is to be given."),
                                 QStringLiteral("[argument...]"));
    parser.setOptionsAfterPositionalArgumentsMode(QCommandLineParser::ParseAsPositionalArguments);

    QStringList decoded;
    for (const QByteArray& word : words)
        decoded.append(QString::fromUtf8(word));
    if (!parser.parse(decoded)) {
        complain(parser.errorText());
        return std::nullopt;
    }
    if (parser.isSet(QStringLiteral("help")))
        parser.showHelp(HandedOver);

    CommandLine commandLine;
    bool ok = false;
    commandLine.timeoutMs = parser.value(timeout).toInt(&ok);
    if (!ok || commandLine.timeoutMs <= 0) {
        complain(QStringLiteral("--timeout takes a number of milliseconds, not \"%1\"")
                     .arg(parser.value(timeout)));
        return std::nullopt;
    }

    // The application and its arguments are the last words, whatever stands before them.
    const int positional = parser.positionalArguments().size();
    const QByteArrayList rest = words.mid(words.size() - positional);
    if (rest.value(0).isEmpty()) {
        complain(QStringLiteral("no application is named; see launcher --help"));
        return std::nullopt;
    }
    commandLine.application = QFile::decodeName(rest.constFirst());
    commandLine.arguments = rest.mid(1);
    for (int i = 0; i < commandLine.arguments.size(); ++i) {
        const QString objection = ArgumentsFile::objection(commandLine.arguments.at(i));
        if (!objection.isEmpty()) {
            complain(
                QStringLiteral("argument %1 can't be handed over: %2").arg(i + 1).arg(objection));
            return std::nullopt;
        }
    }
    return commandLine;
}

/// Another instance may announce itself in the meantime; only the started one's word counts.
bool waitUntilListening(const DistributedNotifications& notifications,
                        const StartedApplication& application, int timeoutMs)
{
    QEventLoop loop;
    QTimer::singleShot(timeoutMs, &loop, [&loop] { loop.exit(1); });
    QObject::connect(&notifications, &DistributedNotifications::received, &loop,
                     [&](const QString&, qint64 sender) {
                         if (application.owns(sender))
                             loop.exit(0);
                     });
    return loop.exec() == 0;
}

ExitStatus handOver(DistributedNotifications& notifications, const QByteArrayList& arguments)
{
    const QString name = QStringLiteral("CMD_LINE_ARGSkrnv3");
    if (arguments.isEmpty()) {
        if (notifications.post(name, QString()))
            return HandedOver;
        complain(QStringLiteral("the session bus has gone"));
        return NotHandedOver;
    }

    ArgumentsFile file;
    if (!file.write(arguments)) {
        complain(QStringLiteral("cannot write the arguments file: ") + file.errorMessage());
        // Lest the application wait for ever.
        notifications.post(name, QString());
        return NotHandedOver;
    }
    if (!notifications.post(name, file.path())) {
        complain(QStringLiteral("the session bus has gone"));
        return NotHandedOver;
    }
    if (!file.waitUntilTaken(patienceMs)) {
        complain(QStringLiteral("the application hasn't taken its arguments"));
        return NotHandedOver;
    }
    return HandedOver;
}

ExitStatus launch(const CommandLine& commandLine)
{
    DistributedNotifications notifications;
    if (!notifications.isConnected()
        || !notifications.observe(QStringLiteral("APP_CAN_HANDLE_CMD_LINE_ARGSkrnv3"))) {
        complain(QStringLiteral("there is no session bus"));
        return NotHandedOver;
    }

    StartedApplication application;
    if (!application.start(commandLine.application)) {
        complain(QStringLiteral("cannot start ") + commandLine.application);
        return NotHandedOver;
    }
    if (!waitUntilListening(notifications, application, commandLine.timeoutMs)) {
        complain(QStringLiteral("no answer from %1 within %2 ms")
                     .arg(commandLine.application)
                     .arg(commandLine.timeoutMs));
        return NotHandedOver;
    }
    return handOver(notifications, commandLine.arguments);
}

} // namespace

int main(int argc, char** argv)
{
    // As they came: Qt decodes them as the locale wants it, and takes some for itself.
    QByteArrayList words;
    for (int i = 0; i < argc; ++i)
        words.append(QByteArray(argv[i]));

    QCoreApplication application(argc, argv);
    QCoreApplication::setApplicationName(QStringLiteral("launcher"));

    const std::optional<CommandLine> commandLine = parseCommandLine(words);
    return commandLine ? launch(*commandLine) : WrongUsage;
}
