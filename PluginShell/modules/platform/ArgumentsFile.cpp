#include "ArgumentsFile_p.h"

#include "CommonConstants.h"

#include <QFile>
#include <QFileInfo>
#include <QTextCodec>

namespace VEK_NAMESPACE {
namespace Private {

namespace {

/// More than a system takes for a command line.
constexpr qint64 largestFile = 8 << 20;

bool isUtf8(const QByteArray& text)
{
    constexpr int mibOfUtf8 = 106;
    QTextCodec::ConverterState state;
    QTextCodec::codecForMib(mibOfUtf8)->toUnicode(text.constData(), text.size(), &state);
    return state.invalidChars == 0 && state.remainingChars == 0;
}

} // namespace

std::list<std::string> readArgumentsFile(const QString& path)
{
    QFile file(path);
    if (!QFileInfo(path).isFile() || !file.open(QIODevice::ReadOnly))
        return {};
    const QByteArray content = file.read(largestFile + 1);
    if (content.size() > largestFile || file.error() != QFile::NoError || !isUtf8(content))
        return {};

    std::list<std::string> arguments;
    const QList<QByteArray> lines = content.split('\n');
    for (const QByteArray& line : lines) {
        if (!line.isEmpty())
            arguments.emplace_back(line.constData()); // up to a zero byte, as arguments are
    }
    return arguments;
}

} // namespace Private
} // namespace VEK_NAMESPACE
