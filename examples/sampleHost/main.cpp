// The sample host: shows a picture and straightens it, by hand or by an acceptance script.

#include "AcceptanceRun.h"
#include "CommonConstants.h"
#include "HostStyle.h"
#include "MainWindow.h"

#include <QApplication>
#include <QCommandLineParser>

#include <cstdio>
#include <optional>

namespace {

struct Options
{
    QString image;
    std::optional<AcceptanceRun::Options> run;
};

void complain(const QString& message)
{
    std::fprintf(stderr, "MarlowickSample: %s\n", qPrintable(message));
}

/// Nothing if the command line makes no sense; what is wrong has been told then.
std::optional<Options> parseCommandLine(const QCoreApplication& application)
{
    QCommandLineParser parser;
    parser.setApplicationDescription(
        QStringLiteral("Shows and straightens a picture, by hand or by an acceptance script."));
    parser.addHelpOption();
    parser.addVersionOption();
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
    parser.addOptions({image, script, timeOut, reportDir});
    parser.process(application);

    Options options;
    options.image = parser.value(image);
    if (parser.isSet(script)) {
        AcceptanceRun::Options run;
        run.script = parser.value(script);
        run.reportDir = parser.value(reportDir);
        if (parser.isSet(timeOut)) {
            bool ok = false;
            run.timeOutMs = parser.value(timeOut).toInt(&ok);
            if (!ok) {
                complain(QStringLiteral("--timeout takes a number of milliseconds, not \"%1\"")
                             .arg(parser.value(timeOut)));
                return std::nullopt;
            }
        }
        options.run = run;
    }
    return options;
}

} // namespace

int main(int argc, char** argv)
{
    QCoreApplication::setAttribute(Qt::AA_EnableHighDpiScaling);
    QCoreApplication::setAttribute(Qt::AA_UseHighDpiPixmaps);
    QApplication application(argc, argv);
    QCoreApplication::setApplicationName(QStringLiteral("MarlowickSample"));
    QCoreApplication::setApplicationVersion(QStringLiteral(SAMPLE_HOST_VERSION));
    QGuiApplication::setApplicationDisplayName(VEK_NAMESPACE::g_appTitle);
    applyHostStyle(application);

    const std::optional<Options> options = parseCommandLine(application);
    if (!options)
        return AcceptanceRun::NotRun;

    std::optional<AcceptanceRun> run;
    if (options->run) {
        run.emplace(*options->run);
        if (!run->load()) {
            complain(run->errorMessage());
            return AcceptanceRun::NotRun;
        }
    }

    MainWindow window;
    window.show();
    if (!options->image.isEmpty() && !window.openPicture(options->image))
        complain(QStringLiteral("cannot open the picture %1").arg(options->image));

    if (!run)
        return QApplication::exec();

    run->start(&window);
    QApplication::exec();
    return run->exitStatus();
}
