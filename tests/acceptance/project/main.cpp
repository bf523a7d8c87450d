// A host in a few lines, which knows nothing of how its acceptance tests are run: a window that is
// green, or red while its slider stands above 50, and a blue dialog.

#include <BaseDialog.h>
#include <MessageBox.h>
#include <Scripting.h>
#include <Settings.h>
#include <TemporarySettings.h>
#include <storageLocation.h>

#include <QApplication>
#include <QDir>
#include <QLabel>
#include <QProcess>
#include <QPushButton>
#include <QSlider>
#include <QTimer>

#include <cstdio>
#include <cstdlib>

using VEK_NAMESPACE::CScripting;
using VEK_NAMESPACE::CSettings;

namespace {

void fill(QWidget& window, Qt::GlobalColor colour)
{
    QPalette palette;
    palette.setColor(QPalette::Window, colour);
    window.setPalette(palette);
}

/// What no other host may have at the same time.
void tellSurroundings()
{
    const auto tell = [](const char* what, const QString& value) {
        std::printf("%s=%s\n", what, qPrintable(value));
    };
    for (const char* variable :
         {"HOME", "DISPLAY", "DBUS_SESSION_BUS_ADDRESS", "XDG_RUNTIME_DIR", "TMPDIR"})
        tell(variable, qEnvironmentVariable(variable));
    tell("folder", QDir::currentPath());
    tell("data", VEK_NAMESPACE::CStorageLocation::loggerFilesPath());
    std::fflush(stdout);
}

} // namespace

int main(int argc, char** argv)
{
    QApplication application(argc, argv);
    const QString script = application.arguments().value(1);
    VEK_NAMESPACE::CTemporarySettings overlay(script.toLatin1().constData());
    CSettings::setTemporarySettings(overlay);
    tellSurroundings();

    QWidget window;
    window.setObjectName(QStringLiteral("mainWindow"));
    window.setGeometry(100, 100, 400, 300);
    fill(window, Qt::green);

    QSlider slider(Qt::Horizontal, &window);
    slider.setObjectName(QStringLiteral("slider"));
    QObject::connect(&slider, &QSlider::valueChanged, &window,
                     [&window](int value) { fill(window, value > 50 ? Qt::red : Qt::green); });

    const auto addButton = [&window](const char* name, const std::function<void()>& action) {
        auto* button = new QPushButton(&window);
        button->setObjectName(QLatin1String(name));
        QObject::connect(button, &QPushButton::clicked, action);
    };
    int status = 0;
    addButton("crash", [] { std::abort(); });
    addButton("status", [&status] { status = 7; });
    bool lingers = false;
    addButton("linger", [&lingers] { lingers = true; });
    addButton("leaveProcess",
              [] { QProcess::startDetached(QStringLiteral("sleep"), {QStringLiteral("424242")}); });
    addButton("dialog", [&window] {
        vek::CBaseDialog dialog(&window);
        dialog.setObjectName(QStringLiteral("dialog"));
        QLabel ground(&dialog);
        ground.setFixedSize(200, 200);
        ground.setAutoFillBackground(true);
        fill(ground, Qt::blue);
        dialog.setFixedSize(200, 200);
        dialog.exec();
    });
    window.show();

    CScripting& scripting = Singleton<CScripting>::instance();
    scripting.setPathToScript(script);
    scripting.setTimeOut(application.arguments().value(2).toInt());
    scripting.makeObjectScriptable(window.objectName(), &window);
    CMessageBox::initializeScripting();
    QObject::connect(&scripting, &CScripting::testFinished, &application, &QCoreApplication::quit);
    scripting.startScript();
    QApplication::exec();
    if (lingers) { // without its window
        window.hide();
        QTimer::singleShot(1500, &application, &QCoreApplication::quit);
        QApplication::exec();
    }
    return status;
}
