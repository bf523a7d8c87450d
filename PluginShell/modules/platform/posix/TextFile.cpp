#include "CommonConstants.h"
#include "PlatformServices_p.h"

#include <QFile>
#include <QTextCodec>

namespace VEK_NAMESPACE {
namespace Platform {

namespace {

bool isUtf8(const QByteArray& text)
{
    constexpr int mibOfUtf8 = 106;
    QTextCodec::ConverterState state;
    QTextCodec::codecForMib(mibOfUtf8)->toUnicode(text.constData(), text.size(), &state);
    return state.invalidChars == 0 && state.remainingChars == 0;
}

} // namespace

std::optional<QByteArray> readUtf8File(const QString& path)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return std::nullopt;
    const QByteArray content = file.readAll();
    if (file.error() != QFile::NoError || !isUtf8(content))
        return std::nullopt;
    return content;
}

} // namespace Platform
} // namespace VEK_NAMESPACE
