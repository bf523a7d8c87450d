#include "ArgumentsFile_p.h"

#include "ApplicationParametersHandler.h"
#include "CommonConstants.h"
#include "PlatformServices_p.h"

#include <QFileInfo>

namespace VEK_NAMESPACE {
namespace Private {

std::list<std::string> readArgumentsFile(const QString& path)
{
    constexpr qint64 largestFile = 8 << 20; // more than a system takes for a command line
    const QFileInfo file(path);
    if (!file.isFile() || file.size() > largestFile)
        return {};
    const QByteArray content = Platform::readUtf8File(path).value_or(QByteArray());

    std::list<std::string> arguments;
    const QList<QByteArray> lines = content.split('\n');
    for (const QByteArray& line : lines) {
        if (!line.isEmpty())
            arguments.emplace_back(line.constData()); // up to a zero byte, as arguments are
    }
    return arguments;
}

void receiveArguments(const QString& path, CApplicationParametersHandler_Abstract& handler)
{
    if (path.isEmpty())
        return;
    const std::list<std::string> arguments = readArgumentsFile(path);
    const QFileInfo file(path);
    if (!file.isDir() || file.isSymLink()) // a folder could take all that is in it along
        Platform::removeFile(path);
    if (!arguments.empty())
        handler.onApplicationCommandLineArgumentsReceived(arguments);
}

} // namespace Private
} // namespace VEK_NAMESPACE
