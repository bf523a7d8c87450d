#include "LogText.h"

#include <QString>

namespace {

bool breaksLine(QChar character)
{
    const QChar::Category category = character.category();
    return category == QChar::Other_Control || category == QChar::Separator_Line
        || category == QChar::Separator_Paragraph;
}

QString escaped(QChar character)
{
    switch (character.unicode()) {
    case '\n':
        return QStringLiteral("\\n");
    case '\r':
        return QStringLiteral("\\r");
    case '\t':
        return QStringLiteral("\\t");
    default:
        return QStringLiteral("\\u%1").arg(character.unicode(), 4, 16, QLatin1Char('0'));
    }
}

} // namespace

std::string_view plainText(const char* text)
{
    const char* end = text;
    while (*end >= 0x20 && *end < 0x7f)
        ++end;
    return *end ? std::string_view() : std::string_view(text, size_t(end - text));
}

QByteArray printableText(const char* text)
{
    QString line;
    const QString decoded = QString::fromUtf8(text);
    for (const QChar character : decoded) {
        if (breaksLine(character))
            line += escaped(character);
        else
            line += character;
    }
    return line.toUtf8();
}
