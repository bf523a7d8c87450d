#include "CommandLine.h"

#include <QCommandLineParser>

std::optional<CommandLine> CommandLine::parse(const QStringList& arguments, QString* error)
{
    QCommandLineParser parser;
    parser.setApplicationDescription(
        QStringLiteral("Shows and straightens a picture, by hand or by an acceptance script."));
    const QCommandLineOption help = parser.addHelpOption();
    const QCommandLineOption version = parser.addVersionOption();
    const QCommandLineOption image(QStringLiteral("image"), QStringLiteral("Picture to open."),
                                   QStringLiteral("file"));
    const QCommandLineOption script(QStringLiteral("script"),
                                    QStringLiteral("Acceptance script to run; the exit status is 0 "
                                                   "for PASS, 1 for FAIL, 2 if it can't be run and "
                                                   "3 if it never ends."),
                                    QStringLiteral("file"));
    const QCommandLineOption timeOut(QStringLiteral("timeout"),
                                     QStringLiteral("Time after which the script fails."),
                                     QStringLiteral("msec"));
    const QCommandLineOption reportDir(QStringLiteral("report-dir"),
                                       QStringLiteral("Folder that the script is copied to and run "
                                                      "from, so that its report lies there."),
                                       QStringLiteral("folder"));
    const QCommandLineOption state(QStringLiteral("state"),
                                   QStringLiteral("Tell what is remembered of earlier runs."));
    parser.addOptions({image, script, timeOut, reportDir, state});
    parser.addPositionalArgument(QStringLiteral("picture"), QStringLiteral("Picture to open."),
                                 QStringLiteral("[picture]"));
    if (!parser.parse(arguments)) {
        *error = parser.errorText();
        return std::nullopt;
    }

    CommandLine line;
    if (parser.isSet(help))
        line.text = parser.helpText();
    if (parser.isSet(version))
        line.text = QStringLiteral("%1 %2\n").arg(QCoreApplication::applicationName(),
                                                  QCoreApplication::applicationVersion());
    line.image = parser.isSet(image) ? parser.value(image) : parser.positionalArguments().value(0);
    line.tellState = parser.isSet(state);
    if (parser.isSet(script)) {
        AcceptanceRun::Options run;
        run.script = parser.value(script);
        run.reportDir = parser.value(reportDir);
        if (parser.isSet(timeOut)) {
            bool ok = false;
            run.timeOutMs = parser.value(timeOut).toInt(&ok);
            if (!ok) {
                *error = QStringLiteral("--timeout takes a number of milliseconds, not \"%1\"")
                             .arg(parser.value(timeOut));
                return std::nullopt;
            }
        }
        line.run = run;
    }
    return line;
}
