// The sample host: shows a picture and straightens it, by hand or by an acceptance script.

#include "AcceptanceRun.h"
#include "ApplicationActivation.h"
#include "CommandLine.h"
#include "CommonConstants.h"
#include "FatalErrors.h"
#include "HandedOverCommandLine.h"
#include "HostLog.h"
#include "HostStyle.h"
#include "MainWindow.h"
#include "RunRecord.h"
#include "SharedUtils.h"
#include "storageLocation.h"

#include <QApplication>

#include <cstdio>

namespace {

void complain(const QString& message)
{
    std::fprintf(stderr, "MarlowickSample: %s\n", qPrintable(message));
}

/// The picture that a launcher has handed over, if there is one in that command line.
void openHandedOver(const QStringList& arguments, MainWindow* window)
{
    QString error;
    const std::optional<CommandLine> line = CommandLine::parse(arguments, &error);
    WindowActivator::activate(window);
    if (!line)
        logLine(QStringLiteral("Handed over: %1").arg(error));
    else if (!line->image.isEmpty())
        window->openOnRequest(line->image);
}

} // namespace

int main(int argc, char** argv)
{
    const int argumentCount = argc; // Qt takes those away that it knows
    QCoreApplication::setAttribute(Qt::AA_EnableHighDpiScaling);
    QCoreApplication::setAttribute(Qt::AA_UseHighDpiPixmaps);
    QApplication application(argc, argv);
    QCoreApplication::setApplicationName(QStringLiteral("MarlowickSample"));
    QCoreApplication::setApplicationVersion(QStringLiteral(SAMPLE_HOST_VERSION));
    QGuiApplication::setApplicationDisplayName(VEK_NAMESPACE::g_appTitle);

    QString error;
    const std::optional<CommandLine> line =
        CommandLine::parse(QCoreApplication::arguments(), &error);
    if (!line) {
        complain(error);
        return AcceptanceRun::NotRun;
    }
    const QString answer = line->tellState ? RunRecord::summary() : line->text;
    if (!answer.isEmpty()) {
        std::fputs(qPrintable(answer), stdout);
        return 0;
    }

    VEK_NAMESPACE::initLoggerForUtilsDll(nullptr, QStringLiteral("Marlowick"));
    std::optional<RunRecord> record; // an acceptance run leaves none
    if (!line->run)
        record.emplace(VEK_NAMESPACE::g_standaloneMode, VEK_NAMESPACE::g_standaloneCrashFlag);
    if (record && record->hasLastRunCrashed())
        logLine(QStringLiteral("The last run did not come to its end"));

    // Its settings, the language among them, are none of the user's.
    std::optional<AcceptanceRun> run;
    if (line->run) {
        run.emplace(*line->run);
        if (!run->load()) {
            complain(run->errorMessage());
            return AcceptanceRun::NotRun;
        }
    }

    applyHostStyle(application);

    // Nobody is there to dismiss an alert in an acceptance run.
    std::optional<FatalErrors> fatalErrors;
    if (!run) {
        fatalErrors.emplace();
        if (!fatalErrors->hasFreeSpace(VEK_NAMESPACE::CStorageLocation::diskCacheLocation()))
            return AcceptanceRun::NotRun;
    }

    const TopLevelWindowDeactivator popupsOfThisApplicationOnly;
    MainWindow window;
    window.show();
    if (!line->image.isEmpty() && !window.openPicture(line->image))
        complain(QStringLiteral("cannot open the picture %1").arg(line->image));

    const HandedOverCommandLine handedOver(argumentCount, argv);
    QObject::connect(
        &handedOver, &HandedOverCommandLine::arrived, &window,
        [&window](const QStringList& arguments) { openHandedOver(arguments, &window); });

    if (!run)
        return QApplication::exec();

    run->start(&window);
    QApplication::exec();
    return run->exitStatus();
}
