#include <QDirIterator>
#include <QFile>
#include <QRegularExpression>
#include <QTest>

#include <algorithm>
#include <vector>

namespace {

struct Rule
{
    const char* what;
    QRegularExpression pattern;
};

/// What only the platform folders may name.
const std::vector<Rule>& rules()
{
    const auto pattern = [](const char* text) {
        return QRegularExpression(QString::fromLatin1(text));
    };
    static const std::vector<Rule> all = {
        {"a macro of an operating system",
         pattern(R"(\bQ_OS_|\b__(linux|unix|APPLE|MACH|gnu_linux)(__)?\b|\b_?WIN(32|64)\b)")},
        {"D-Bus", pattern(R"((?i)QtDBus|QDBus|\bd-?bus)")},
        {"X11", pattern(R"(X11|(?i)\bxcb|\bxlib|\bopenbox\b)")},
        {"a library of one platform",
         pattern(
             R"(\bKF5|\bKWindow|\bKX11|\bQX11|\bQtX11Extras|\bgio/|\bgio-2|\bplist/|\bsystemd)")},
        {"Cocoa", pattern(R"(Cocoa|AppKit|\bNS[A-Z]\w+|\bCoreFoundation|<objc|\bCG[A-Z]\w+)")},
        {"a header of one system",
         pattern(
             R"(<(unistd|pwd|grp|dirent|dlfcn|fcntl|signal|poll|windows)\.h>|<(sys|linux|mach)/)")},
        {"the name of an operating system",
         pattern(R"((?i)\b(linux|debian|darwin|unix|mac[ _]?os([ _]?x)?|os[ _]x|mac)\b)")},
        {"the name of an operating system", pattern(R"(\bWindows\b|\bWin32\b)")},
        {"a name made of an operating system's", pattern(R"(\w*(?i)macos\w*)")},
    };
    return all;
}

struct Exception
{
    QString file; ///< or its folder
    QRegularExpression text;
};

/// What is meant all the same.
const std::vector<Exception>& exceptions()
{
    const auto in = [](const char* file, const char* text) {
        return Exception{QLatin1String(file), QRegularExpression(QString::fromLatin1(text))};
    };
    static const std::vector<Exception> all = {
        // Public names: hosts are written to them, on every platform.
        in("", R"(\bMacOS[A-Z]\w+|\bauxMacOsIsOperatingSystemAtLeastVersion\b)"),
        // What a host's own sources there have at hand.
        in("PluginShell/modules/platform/WindowServices.h", R"(\bNSString\b)"),
        // What systemVersion() answers.
        in("PluginShell/modules/platform/SystemInformation.cpp", R"("Mac OS X( 10\.[3-6])?")"),
        // What test scripts compare platformName() with.
        in("PluginShell/modules/scripting/ScriptingChecks.cpp", R"("mac_os_x")"),
        in("PluginShell/modules/scripting/Scripting.h", R"(^ */// Always "mac_os_x"\.$)"),
        // The style sheet's name in the resources.
        in("PluginShell/modules/utilsDll", R"(:/qss/(mac|extra-mac-%1)\.qss\b)"),
        // The key of a text in the catalogues.
        in("PluginShell/modules/utilsDll/ErrStrings.cpp", R"("Mac free space drive message")"),
        // Qt's name for the style that ours is based on.
        in("PluginShell/modules/utilsDll", R"("Windows")"),
        // A bundle's folder for executables.
        in("examples/sampleHost/CMakeLists.txt", R"(\$\{bundle\}/MacOS\b)"),
        // The plural of a window, at the beginning of a sentence.
        in("PluginShell/modules/platform/PlatformServices_p.h", R"(^/// \\name Windows$)"),
        in("PluginShell/modules/platform/WindowServices.h", R"(\bWindows are named by\b)"),
        // What hosts are tested and packaged with, beside the library.
        in("cmake/UtilsDllAcceptance.cmake", ".*"),
        in("cmake/UtilsDllAcceptanceRun.py", ".*"),
        in("cmake/UtilsDllPackage.cmake", ".*"),
        in("cmake/package", ".*"),
        // The backend's packages are found where every folder sees them.
        in("CMakeLists.txt",
           R"(if\(CMAKE_SYSTEM_NAME STREQUAL "Linux"\)|COMPONENTS DBus\)|KF5WindowSystem REQUIRED|gio-2\.0|\(systemd REQUIRED.*libsystemd\))"),
    };
    return all;
}

/// What a line of a file names that it is not to name.
QStringList violations(const QString& file, QString line)
{
    for (const Exception& exception : exceptions()) {
        if (exception.file.isEmpty() || file == exception.file
            || file.startsWith(exception.file + QLatin1Char('/')))
            line.replace(exception.text, QStringLiteral("..."));
    }
    QStringList found;
    for (const Rule& rule : rules()) {
        const auto match = rule.pattern.match(line);
        if (match.hasMatch())
            found << QStringLiteral("%1: %2").arg(QLatin1String(rule.what), match.captured());
    }
    return found;
}

/// The backends, what they share, and the choice between them.
bool isBackend(const QString& file)
{
    static const QRegularExpression backend(
        QStringLiteral("^PluginShell/modules/platform/((linux|mac|posix)/|CMakeLists\\.txt$)"));
    return backend.match(file).hasMatch();
}

} // namespace

/// Outside the platform folders nothing knows an operating system.
class tst_PlatformNames : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void forbiddenLines_data();
    void forbiddenLines();
    void allowedLines_data();
    void allowedLines();
    void sources_data();
    void sources();
};

void tst_PlatformNames::forbiddenLines_data()
{
    QTest::addColumn<QString>("line");
    const char* const lines[] = {
        "#ifdef Q_OS_LINUX",
        "#if defined(Q_OS_WIN)",
        "#ifdef __linux__",
        "#if defined(__APPLE__) && defined(__MACH__)",
        "#ifdef _WIN32",
        "    QDBusConnection::sessionBus();",
        "#include <dbus/dbus.h>",
        "// sent over D-Bus",
        "find_package(Qt5 REQUIRED COMPONENTS DBus)",
        "target_link_libraries(UtilsDllkrnv3 PRIVATE Qt5::DBus)",
        "#include <xcb/xcb.h>",
        "#include <X11/Xlib.h>",
        "    if (!KWindowSystem::isPlatformX11())",
        "#include <KX11Extras>",
        "    return QX11Info::isPlatformX11();",
        "find_package(KF5WindowSystem REQUIRED)",
        "#import <Cocoa/Cocoa.h>",
        "#include <AppKit/NSWindow.h>",
        "    NSWindow* window = [view window];",
        "#include <unistd.h>",
        "#include <pwd.h>",
        "#include <sys/stat.h>",
        "#include <gio/gio.h>",
        "// On Linux this does nothing.",
        "if(CMAKE_SYSTEM_NAME STREQUAL \"Linux\")",
        "if(CMAKE_SYSTEM_NAME STREQUAL \"Darwin\")",
        "target_sources(x PRIVATE ../platform/linux/Windows.cpp)",
        "/// As macOS does it.",
        "/// As Mac OS X does it.",
        "    return QStringLiteral(\"mac_os_x\");",
        "/// Windows has another way.",
        "    MacosWindow window;",
        "class CMacOSHelper;",
        "load(QStringLiteral(\":/qss/mac.qss\"));",
    };
    for (const char* line : lines)
        QTest::newRow(line) << QString::fromLatin1(line);
}

/// In a file without exceptions.
void tst_PlatformNames::forbiddenLines()
{
    QFETCH(QString, line);
    QVERIFY(!violations(QStringLiteral("PluginShell/modules/scripting/A.cpp"), line).isEmpty());
}

void tst_PlatformNames::allowedLines_data()
{
    QTest::addColumn<QString>("file");
    QTest::addColumn<QString>("line");
    const auto row = [](const char* file, const char* line) {
        QTest::newRow(line) << QString::fromLatin1(file) << QString::fromLatin1(line);
    };
    const char* const any = "PluginShell/modules/scripting/A.cpp";
    row(any, "    MacOSSetupNSApplicationNotificationResponder(widget);");
    row(any, "    if (auxMacOsIsOperatingSystemAtLeastVersion(text, 10, 6, 0))");
    row(any, "    hideAllWindows(); // which windows are open doesn't matter");
    row(any, "    const QPalette::ColorRole role = QPalette::Window;");
    row(any, "    setWindowFlags(Qt::WindowStaysOnTopHint);");
    row(any, "    machine.start(); // the macro, stomach and cdbusy");
    row("PluginShell/modules/scripting/ScriptingChecks.cpp",
        "    return QStringLiteral(\"mac_os_x\");");
    row("PluginShell/modules/platform/SystemInformation.cpp",
        "        return QStringLiteral(\"Mac OS X 10.6\");");
    row("PluginShell/modules/utilsDll/ErrStrings.cpp", "tr(\"Mac free space drive message\");");
    row("PluginShell/modules/utilsDll/SharedUtils.cpp", "load(QStringLiteral(\":/qss/mac.qss\"));");
}

void tst_PlatformNames::allowedLines()
{
    QFETCH(QString, file);
    QFETCH(QString, line);
    QCOMPARE(violations(file, line), QStringList());
}

void tst_PlatformNames::sources_data()
{
    QTest::addColumn<QString>("file");
    const QDir root(QStringLiteral(SOURCE_DIR));
    QStringList files = {QStringLiteral("CMakeLists.txt"),
                         QStringLiteral("PluginShell/CMakeLists.txt")};
    for (const char* folder : {"PluginShell/modules", "cmake", "examples/sampleHost"}) {
        QVERIFY(root.exists(QLatin1String(folder)));
        QDirIterator i(root.filePath(QLatin1String(folder)), QDir::Files,
                       QDirIterator::Subdirectories);
        while (i.hasNext())
            files << root.relativeFilePath(i.next());
    }
    files.erase(std::remove_if(files.begin(), files.end(), isBackend), files.end());
    files.sort();
    for (const QString& file : qAsConst(files))
        QTest::newRow(qPrintable(file)) << file;
}

void tst_PlatformNames::sources()
{
    QFETCH(QString, file);
    QFile source(QStringLiteral(SOURCE_DIR) + QLatin1Char('/') + file);
    QVERIFY(source.open(QIODevice::ReadOnly));
    QStringList found;
    for (int number = 1; !source.atEnd(); ++number) {
        const QString line = QString::fromUtf8(source.readLine()).trimmed();
        const QStringList names = violations(file, line);
        for (const QString& name : names)
            found << QStringLiteral("line %1 has %2").arg(number).arg(name);
    }
    QVERIFY2(found.isEmpty(), qPrintable(found.join(QLatin1Char('\n'))));
}

QTEST_GUILESS_MAIN(tst_PlatformNames)

#include "tst_PlatformNames.moc"
