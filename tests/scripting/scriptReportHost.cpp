// A host for one test run:
//     scriptReportHost [--timeout MILLISECONDS] SCRIPT...
// loads the scripts one after the other, starts, and tells on its standard output how the run went.
// A process with a time-out and a script is ended by the library, any other by this host.

#include "Scripting.h"

#include <QApplication>
#include <QCommandLineParser>
#include <QDialog>
#include <QTextStream>
#include <QTimer>

#include <cstdlib>

using VEK_NAMESPACE::CScripting;

/// The global "host" of the scripts.
class ScriptReportHost : public QObject
{
    Q_OBJECT

public:
    explicit ScriptReportHost(CScripting& scripting)
        : m_scripting(scripting)
    {}

public Q_SLOTS:
    /// Shows a modal dialog, and tells the script by resendSignal, until somebody closes it or
    /// \a msec milliseconds have passed.
    void openDialog(int msec)
    {
        QDialog dialog;
        dialog.setObjectName(QStringLiteral("dialog"));
        QTimer::singleShot(0, &dialog, [&] { m_scripting.sendSignal(&dialog); });
        QTimer::singleShot(msec, &dialog, &QDialog::accept);
        const bool endedByItself = dialog.exec() == QDialog::Accepted;
        m_scripting.log(endedByItself ? "dialog ended by itself" : "dialog was closed");
    }

    void setTimeOut(int msec) { m_scripting.setTimeOut(msec); }

private:
    CScripting& m_scripting;
};

int main(int argc, char* argv[])
{
    QApplication app(argc, argv);
    QApplication::setQuitOnLastWindowClosed(false);
    // Nobody may be left to end a run that hangs.
    QTimer::singleShot(150000, &app, [] { std::_Exit(EXIT_FAILURE); });
    QCommandLineParser parser;
    const QCommandLineOption timeOutOption(QStringLiteral("timeout"), QString(),
                                           QStringLiteral("milliseconds"));
    parser.addOption(timeOutOption);
    parser.process(app);

    CScripting& scripting = CScripting::instance();
    ScriptReportHost host(scripting);
    scripting.makeObjectScriptable(QStringLiteral("host"), &host);
    const QStringList scripts = parser.positionalArguments();
    for (const QString& script : scripts)
        scripting.setPathToScript(script);
    const int timeOut = parser.value(timeOutOption).toInt();
    if (parser.isSet(timeOutOption))
        scripting.setTimeOut(timeOut);

    const auto tell = [&](const char* event) {
        QTextStream(stdout) << event << (scripting.hasFailed() ? ": failed\n" : ": not failed\n");
    };
    bool hostQuits = false;
    const auto quitSoon = [&] {
        QTimer::singleShot(300, &app, [&] {
            hostQuits = true;
            QCoreApplication::quit();
        });
    };
    QObject::connect(&scripting, &CScripting::testFinished, &app, [&] {
        tell("finished");
        if (timeOut <= 0)
            quitSoon();
    });
    QObject::connect(&app, &QCoreApplication::aboutToQuit, &app,
                     [&] { tell(hostQuits ? "host quits" : "library quits"); });

    tell(scripting.isScriptingMode() ? "script loaded" : "no script");
    scripting.startScript();
    if (!scripting.isScriptingMode())
        quitSoon();
    return QApplication::exec();
}

#include "scriptReportHost.moc"
