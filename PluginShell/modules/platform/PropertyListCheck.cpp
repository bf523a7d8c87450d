#include "PropertyListCheck_p.h"

#include "CommonConstants.h"

#include <QFileInfo>

#include <optional>
#include <vector>

namespace VEK_NAMESPACE {
namespace Platform {

namespace {

constexpr int deepest = 100;
constexpr quint64 mostParsed = 4U << 20;

/// Walks through the containers of a binary list, which ends with the width of an offset, the width
/// of a reference, three numbers of eight bytes (objects, top object, place of the offsets), and
/// gives each object as a byte of kind and count, a longer count if need be, and its content.
class BinaryListWalk
{
public:
    explicit BinaryListWalk(const QByteArray& content)
        : m_content(content)
    {}

    bool isTree()
    {
        constexpr int trailerSize = 32;
        const quint64 size = quint64(m_content.size());
        if (size < 8 + trailerSize)
            return false;
        const quint64 trailer = size - trailerSize;
        m_offsetWidth = quint8(m_content[int(trailer + 6)]);
        m_referenceWidth = quint8(m_content[int(trailer + 7)]);
        m_objectCount = number(trailer + 8, 8).value_or(0);
        const quint64 top = number(trailer + 16, 8).value_or(0);
        m_offsets = number(trailer + 24, 8).value_or(size);
        if (m_offsetWidth < 1 || m_offsetWidth > 8 || m_referenceWidth < 1 || m_referenceWidth > 8
            || m_objectCount > size) {
            return false;
        }
        m_seen.assign(size_t(m_objectCount), false);
        return walk(top, 0);
    }

private:
    std::optional<quint64> number(quint64 place, unsigned width) const
    {
        const quint64 size = quint64(m_content.size());
        if (place > size || width > size - place)
            return std::nullopt;
        quint64 value = 0;
        for (unsigned i = 0; i < width; ++i)
            value = value << 8 | quint8(m_content[int(place + i)]);
        return value;
    }

    bool walk(quint64 object, int depth)
    {
        if (object >= m_objectCount || depth > deepest)
            return false;
        const auto place = number(m_offsets + object * m_offsetWidth, m_offsetWidth);
        const auto marker = place ? number(*place, 1) : std::nullopt;
        if (!marker)
            return false;

        constexpr unsigned data = 0x4, utf16 = 0x6, array = 0xA, set = 0xC, dictionary = 0xD;
        const unsigned kind = unsigned(*marker >> 4);
        const bool isContainer = kind == array || kind == set || kind == dictionary;
        if (!isContainer && (kind < data || kind > utf16)) // numbers and the like
            return isAffordable(1);
        if (isContainer && m_seen[size_t(object)])
            return false;
        m_seen[size_t(object)] = true;

        quint64 count = *marker & 0xF;
        quint64 references = *place + 1;
        if (count == 0xF) {
            const auto width = number(references, 1);
            if (!width || *width >> 4 != 1 || (*width & 0xF) > 3)
                return false;
            const unsigned countWidth = 1U << (*width & 0xF);
            const auto longCount = number(references + 1, countWidth);
            if (!longCount || *longCount > quint64(m_content.size()))
                return false;
            count = *longCount;
            references += 1 + countWidth;
        }
        if (!isContainer)
            return isAffordable(kind == utf16 ? count * 2 : count);
        if (kind == dictionary) // keys, then values
            count *= 2;
        for (quint64 i = 0; i < count; ++i) {
            const auto reference = number(references + i * m_referenceWidth, m_referenceWidth);
            if (!reference || !walk(*reference, depth + 1))
                return false;
        }
        return true;
    }

    /// The parser makes a copy for each reference.
    bool isAffordable(quint64 bytes)
    {
        m_parsed += bytes;
        return m_parsed <= mostParsed;
    }

    const QByteArray& m_content;
    quint64 m_parsed = 0;
    unsigned m_offsetWidth = 0;
    unsigned m_referenceWidth = 0;
    quint64 m_objectCount = 0;
    quint64 m_offsets = 0;
    std::vector<bool> m_seen;
};

/// The first place behind \a mark, or -1.
int behind(const QByteArray& content, const char* mark, int from)
{
    const int place = content.indexOf(mark, from);
    return place < 0 ? place : place + int(qstrlen(mark));
}

/// Counts elements that are open, whatever they are, and passes over what may hide tags.
bool isShallowXml(const QByteArray& content)
{
    int depth = 0;
    int place = content.indexOf('<');
    while (place >= 0) {
        const QByteArray rest =
            QByteArray::fromRawData(content.constData() + place, content.size() - place);
        int next = -1;
        if (rest.startsWith("<!--")) {
            next = behind(content, "-->", place + 4);
        } else if (rest.startsWith("<![CDATA[")) {
            next = behind(content, "]]>", place);
        } else {
            next = behind(content, ">", place);
            if (rest.startsWith("<!DOCTYPE") && content.mid(place, next - place).contains('['))
                return false; // declarations of its own
            const bool isEmpty = next > 1 && content.at(next - 2) == '/';
            if (rest.startsWith("</"))
                --depth;
            else if (!isEmpty && !rest.startsWith("<?") && !rest.startsWith("<!"))
                ++depth;
        }
        if (next < 0 || depth < 0 || depth > deepest)
            return false;
        place = content.indexOf('<', next);
    }
    return true;
}

/// The older form is text with brackets, which may also stand in quotes; so may JSON's.
bool hasFewBrackets(const QByteArray& content)
{
    return content.count('(') + content.count('[') + content.count('{') <= deepest;
}

bool isXml(const QByteArray& content)
{
    const bool hasByteOrderMark = content.startsWith("\xEF\xBB\xBF");
    return content.mid(hasByteOrderMark ? 3 : 0).trimmed().startsWith('<');
}

} // namespace

bool isPropertyListFile(const QString& path)
{
    constexpr qint64 largestFile = 128 << 10;
    const QFileInfo file(path);
    return file.isFile() && file.size() <= largestFile;
}

bool isHarmlessPropertyList(const QByteArray& content)
{
    if (content.startsWith("bplist"))
        return BinaryListWalk(content).isTree();
    return isXml(content) ? isShallowXml(content) : hasFewBrackets(content);
}

} // namespace Platform
} // namespace VEK_NAMESPACE
