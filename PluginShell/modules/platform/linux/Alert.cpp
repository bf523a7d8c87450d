#include "CommonConstants.h"
#include "PlatformServices_p.h"

#include <QByteArray>
#include <QFile>
#include <QStandardPaths>

#include <array>
#include <cerrno>
#include <cstring>
#include <vector>

#include <sys/wait.h>
#include <unistd.h>

namespace VEK_NAMESPACE {
namespace Platform {

/// One text in every form that an alert program may want it in.
struct AlertText
{
    QByteArray plain;
    QByteArray titleOption;
    QByteArray textOption;
    QByteArray message; ///< can't be taken for an option
};

namespace {

enum class Dialect
{
    None,
    Zenity,
    KDialog,
    XMessage
};

/// The program that shows alerts, and what it is started with.
struct AlertProgram
{
    Dialect dialect = Dialect::None;
    QByteArray path;
    std::vector<QByteArray> variables;
    std::vector<char*> environment; ///< points into the variables
};

bool startsWithAnyOf(const char* text, std::initializer_list<const char*> prefixes)
{
    for (const char* prefix : prefixes) {
        if (std::strncmp(text, prefix, std::strlen(prefix)) == 0)
            return true;
    }
    return false;
}

AlertProgram findAlertProgram()
{
    AlertProgram program;
    if (qEnvironmentVariableIsEmpty("DISPLAY") && qEnvironmentVariableIsEmpty("WAYLAND_DISPLAY"))
        return program;

    const std::pair<const char*, Dialect> candidates[] = {{"zenity", Dialect::Zenity},
                                                          {"kdialog", Dialect::KDialog},
                                                          {"xmessage", Dialect::XMessage}};
    for (const auto& [name, dialect] : candidates) {
        const QString path = QStandardPaths::findExecutable(QLatin1String(name));
        if (!path.isEmpty()) {
            program.dialect = dialect;
            program.path = QFile::encodeName(path);
            break;
        }
    }

    // What concerns this program's own libraries isn't for another one.
    for (char** variable = environ; *variable; ++variable) {
        if (!startsWithAnyOf(*variable,
                             {"LD_PRELOAD=", "LD_LIBRARY_PATH=", "QT_PLUGIN_PATH=", "LC_ALL="})) {
            program.variables.emplace_back(*variable);
        }
    }
    program.variables.emplace_back("LC_ALL=C.UTF-8");
    for (QByteArray& variable : program.variables)
        program.environment.push_back(variable.data());
    program.environment.push_back(nullptr);
    return program;
}

const AlertProgram& alertProgram()
{
    // Never destroyed: an alert may be the last that this process does.
    static const AlertProgram& program = *new AlertProgram(findAlertProgram());
    return program;
}

/// Nothing between here and execve() may allocate.
using Arguments = std::array<const char*, 12>;

Arguments arguments(const AlertProgram& program, const AlertText& title, const AlertText& text)
{
    const char* path = program.path.constData();
    const char* plainTitle = title.plain.constData();
    const char* plainText = text.plain.constData();
    switch (program.dialect) {
    case Dialect::Zenity:
        return {path,
                "--error",
                "--no-markup",
                "--no-wrap",
                title.titleOption.constData(),
                text.textOption.constData()};
    case Dialect::KDialog:
        return {path, "--title", plainTitle, "--error", plainText};
    case Dialect::XMessage:
        return {path,       "-xrm",     "*international: true",
                "-title",   plainTitle, "-center",
                "-buttons", "OK:0",     "-default",
                "OK",       plainText};
    case Dialect::None:
        break;
    }
    return {};
}

/// Whether the program was started and could show the alert.
bool runAlertProgram(const AlertProgram& program, const Arguments& argv)
{
    if (!argv[0])
        return false;
    const char* path = argv[0];
    char* const* words = const_cast<char* const*>(argv.data());
    char* const* environment = program.environment.data();
    // Nothing else starts a process without allocating.
    const pid_t child = vfork(); // NOLINT(clang-analyzer-security.insecureAPI.vfork)
    if (child == 0) {
        execve(path, words, environment);
        _exit(127);
    }
    if (child < 0)
        return false;
    int status = 0;
    while (waitpid(child, &status, 0) < 0) {
        if (errno != EINTR)
            return true; // somebody else collects this process's children
    }
    return WIFEXITED(status) && WEXITSTATUS(status) != 127 && WEXITSTATUS(status) != 255;
}

void writeToStandardError(const char* text)
{
    size_t left = std::strlen(text);
    while (left > 0) {
        const ssize_t written = write(STDERR_FILENO, text, left);
        if (written < 0 && errno != EINTR)
            return;
        if (written > 0) {
            text += written;
            left -= size_t(written);
        }
    }
}

} // namespace

void AlertTextDeleter::operator()(AlertText* text) const
{
    delete text;
}

AlertTextPointer makeAlertText(const QString& text)
{
    alertProgram();
    const QByteArray plain = text.toUtf8();
    return AlertTextPointer(new AlertText{plain, "--title=" + plain, "--text=" + plain,
                                          plain.startsWith('-') ? ' ' + plain : plain});
}

void showAlert(const AlertText& title, const AlertText& text)
{
    const AlertProgram& program = alertProgram();
    if (runAlertProgram(program, arguments(program, title, text)))
        return;
    writeToStandardError(title.plain.constData());
    writeToStandardError(": ");
    writeToStandardError(text.plain.constData());
    writeToStandardError("\n");
}

} // namespace Platform
} // namespace VEK_NAMESPACE
