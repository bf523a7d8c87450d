#include "ArgumentsFile_p.h"

#include "CommonConstants.h"

#include <QFile>
#include <QFileInfo>
#include <QTextCodec>

namespace VEK_NAMESPACE {
namespace Private {

namespace {

/// Far above any command line, and below what a byte array holds.
constexpr qint64 largestFile = 512 * 1024 * 1024;

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
    if (!QFileInfo(path).isFile() || file.size() > largestFile || !file.open(QIODevice::ReadOnly))
        return {};

    std::list<std::string> arguments;
    while (!file.atEnd()) {
        QByteArray line = file.readLine();
        if (line.endsWith('\n'))
            line.chop(1);
        if (!isUtf8(line))
            return {};
        if (!line.isEmpty())
            arguments.emplace_back(line.constData()); // up to a zero byte, as arguments are
    }
    if (file.error() != QFile::NoError)
        return {};
    return arguments;
}

} // namespace Private
} // namespace VEK_NAMESPACE
