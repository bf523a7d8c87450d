#include "SettingsCheck_p.h"

#include "CommonConstants.h"

#include <QDataStream>
#include <QDateTime>
#include <QFile>
#include <QFileInfo>
#include <QHash>
#include <QList>
#include <QLockFile>
#include <QMetaType>
#include <QMutex>
#include <QMutexLocker>
#include <QPair>
#include <QSaveFile>
#include <QTimeZone>

#include <algorithm>
#include <cstring>
#include <filesystem>
#include <system_error>

namespace VEK_NAMESPACE {

namespace {

constexpr int deepest = 32;

const char variantMarker[] = "@Variant(";
const char dateTimeMarker[] = "@DateTime(";

enum class Verdict
{
    Sound,
    Unknown,
    Damaged
};

/// Walks through the stream of a QVariant without making anything of it.
class StreamWalk
{
public:
    StreamWalk(const QByteArray& bytes, QDataStream::Version version)
        : m_bytes(bytes)
        , m_version(version)
    {}

    Verdict value(int depth = 0)
    {
        quint32 type = 0;
        if (depth > deepest || !number(&type) || (!isOld() && !skip(1))) // whether it is null
            return Verdict::Damaged;
        const bool isNamed = type == (isOld() ? 127 : quint32(QMetaType::User));
        type = isNamed ? namedType() : isOld() ? presentType(type) : type;
        if (isNamed && type == QMetaType::UnknownType)
            return Verdict::Damaged;
        switch (type) {
        case QMetaType::UnknownType: // an old stream has a text in its place
            return verdict(!isOld() || text());
        case QMetaType::QString:
        case QMetaType::QLocale:
            return verdict(text());
        case QMetaType::QByteArray:
        case QMetaType::QUrl:
            return verdict(bytes());
        case QMetaType::QStringList:
            return several(4, [this] { return verdict(text()); });
        case QMetaType::QByteArrayList:
            return several(4, [this] { return verdict(bytes()); });
        case QMetaType::QVariant:
            return value(depth + 1);
        case QMetaType::QVariantList:
            return several(4, [this, depth] { return value(depth + 1); });
        case QMetaType::QVariantMap:
        case QMetaType::QVariantHash:
            return several(8,
                           [this, depth] { return text() ? value(depth + 1) : Verdict::Damaged; });
        case QMetaType::QBitArray:
            return verdict(bits());
        case QMetaType::QDateTime:
            return verdict(dateTime());
        case QMetaType::QKeySequence:
            return several(4, [this] { return verdict(skip(4)); });
        case QMetaType::QPolygon:
            return several(8, [this] { return verdict(skip(8)); });
        case QMetaType::QPolygonF:
            return several(16, [this] { return verdict(skip(16)); });
        default:
            break;
        }
        const int size = fixedSize(type);
        return size > 0 ? verdict(skip(size)) : Verdict::Unknown;
    }

private:
    bool isOld() const { return m_version < QDataStream::Qt_5_0; }

    static Verdict verdict(bool isSound) { return isSound ? Verdict::Sound : Verdict::Damaged; }

    /// The number that a type of Qt 4 has now, if it is one that is judged.
    static quint32 presentType(quint32 type)
    {
        constexpr quint32 firstGuiType = 64, polygon = 71, keySequence = 76, userType = 127;
        if (type == polygon)
            return QMetaType::QPolygon;
        if (type == keySequence)
            return QMetaType::QKeySequence;
        if (type > userType)
            return type - 97;
        return type < firstGuiType ? type : quint32(QMetaType::User);
    }

    /// The number of a type that goes by its name in an old stream.
    quint32 namedType()
    {
        const int from = m_place + 4;
        if (!bytes())
            return QMetaType::UnknownType;
        const QByteArray name = m_bytes.mid(from, m_place - from);
        if (name == QByteArray("QPolygonF", 10))
            return QMetaType::QPolygonF;
        return name == QByteArray("QUuid", 6) ? QMetaType::QUuid : QMetaType::User;
    }

    int fixedSize(quint32 type) const
    {
        switch (type) {
        case QMetaType::Bool:
        case QMetaType::Char:
        case QMetaType::SChar:
        case QMetaType::UChar:
            return 1;
        case QMetaType::QChar:
        case QMetaType::Short:
        case QMetaType::UShort:
            return 2;
        case QMetaType::Int:
        case QMetaType::UInt:
        case QMetaType::QTime:
            return 4;
        case QMetaType::Float:
        case QMetaType::QDate:
            return isOld() ? 4 : 8;
        case QMetaType::Long:
        case QMetaType::ULong:
        case QMetaType::LongLong:
        case QMetaType::ULongLong:
        case QMetaType::Double:
        case QMetaType::QPoint:
        case QMetaType::QSize:
            return 8;
        case QMetaType::QLine:
        case QMetaType::QPointF:
        case QMetaType::QRect:
        case QMetaType::QSizeF:
        case QMetaType::QUuid:
            return 16;
        case QMetaType::QLineF:
        case QMetaType::QRectF:
            return 32;
        default:
            return 0;
        }
    }

    quint32 left() const { return quint32(m_bytes.size() - m_place); }

    bool skip(quint32 size)
    {
        if (size > left())
            return false;
        m_place += int(size);
        return true;
    }

    bool number(quint32* value)
    {
        const int from = m_place;
        if (!skip(4))
            return false;
        *value = 0;
        for (int i = from; i < m_place; ++i)
            *value = *value << 8 | quint8(m_bytes[i]);
        return true;
    }

    bool bytes(quint32 unit = 1)
    {
        constexpr quint32 null = 0xFFFFFFFF;
        quint32 size = 0;
        return number(&size) && (size == null || (size % unit == 0 && skip(size)));
    }

    bool text() { return bytes(2); }

    bool bits()
    {
        quint32 count = 0;
        return number(&count) && skip(count / 8 + (count % 8 == 0 ? 0 : 1));
    }

    /// Elements of at least \a smallest bytes with their count before them.
    template <typename Element>
    Verdict several(quint32 smallest, Element element)
    {
        quint32 count = 0;
        if (!number(&count) || count > left() / smallest)
            return Verdict::Damaged;
        Verdict result = Verdict::Sound;
        for (; count > 0 && result == Verdict::Sound; --count)
            result = element();
        return result;
    }

    bool dateTime()
    {
        if (!skip(quint32(fixedSize(QMetaType::QDate) + fixedSize(QMetaType::QTime))) || !skip(1))
            return false;
        if (isOld()) // which has no zones
            return true;
        switch (m_bytes[m_place - 1]) {
        case Qt::LocalTime:
        case Qt::UTC:
            return true;
        case Qt::OffsetFromUTC:
            return skip(4);
        case Qt::TimeZone:
            return zone();
        default:
            return false;
        }
    }

    /// The name of a zone, or what describes one that has none.
    bool zone()
    {
        const int from = m_place;
        if (!text())
            return false;
        if (read<QString>(from) == QLatin1String("OffsetFromUtc")
            && !(text() && skip(4) && text() && text() && skip(4) && text())) {
            return false;
        }
        return read<QTimeZone>(from).isValid();
    }

    template <typename Type>
    Type read(int from) const
    {
        QDataStream stream(m_bytes.mid(from, m_place - from));
        stream.setVersion(m_version);
        Type value;
        stream >> value;
        return value;
    }

    const QByteArray m_bytes;
    const QDataStream::Version m_version;
    int m_place = 0;
};

/// A section's head, or an entry, which may take several lines of the file.
struct Line
{
    int start = 0;
    int end = 0;
    int equals = -1; ///< none if negative
};

bool isLineEnd(char byte)
{
    return byte == '\n' || byte == '\r';
}

bool isBlank(char byte)
{
    return byte == ' ' || byte == '\t';
}

/// The line that begins at or behind \a place, as QSettings divides a file. Empty at the end.
Line lineAt(const QByteArray& content, int place)
{
    const int size = content.size();
    Line line;
    for (;;) {
        while (place < size && (isBlank(content[place]) || isLineEnd(content[place])))
            ++place;
        if (place == size || content[place] != ';')
            break;
        while (place < size && !isLineEnd(content[place])) // a comment
            ++place;
    }
    line.start = place;

    bool isQuoted = false;
    for (; place < size; ++place) {
        const char byte = content[place];
        if (byte == '"')
            isQuoted = !isQuoted;
        else if (byte == '\\')
            ++place; // of two bytes that end a line the other one goes by as a character
        else if (!isQuoted && (isLineEnd(byte) || byte == ';'))
            break;
        else if (!isQuoted && byte == '=' && line.equals < 0)
            line.equals = place;
        if (byte == '\\' && place + 1 < size && isLineEnd(content[place])
            && isLineEnd(content[place + 1]) && content[place] != content[place + 1]) {
            ++place;
        }
    }
    line.end = std::min(place, size);
    return line;
}

/// Takes the quotes and escapes from a value.
class ValueReader
{
public:
    explicit ValueReader(const QByteArray& raw)
        : m_raw(raw)
    {}

    /// The texts that commas divide. Characters beyond Latin-1 are question marks, as QSettings has
    /// them in its streams.
    QList<QByteArray> texts()
    {
        bool isQuoted = false;
        bool hadQuotes = false;
        skipBlanks();
        while (m_place < m_raw.size()) {
            const char byte = m_raw[m_place++];
            if (byte == '\\') {
                if (readEscape())
                    m_settled = m_text.size();
            } else if (byte == '"') {
                hadQuotes = true;
                isQuoted = !isQuoted;
                if (!isQuoted)
                    skipBlanks();
            } else if (byte == ',' && !isQuoted) {
                endText(hadQuotes);
                hadQuotes = false;
                skipBlanks();
            } else {
                m_text += byte;
            }
        }
        endText(hadQuotes);
        return m_texts;
    }

private:
    void skipBlanks()
    {
        while (m_place < m_raw.size() && isBlank(m_raw[m_place]))
            ++m_place;
    }

    void endText(bool keepBlanks)
    {
        int size = m_text.size();
        while (!keepBlanks && size > m_settled && isBlank(m_text[size - 1]))
            --size;
        m_text.truncate(size);
        m_texts += m_text;
        m_text.clear();
        m_settled = 0;
    }

    /// Whether it is more than a mark that the value goes on.
    bool readEscape()
    {
        static const char codes[] = "abfnrtv\"?'\\";
        static const char meanings[] = "\a\b\f\n\r\t\v\"?'\\";
        if (m_place == m_raw.size())
            return true;
        const char code = m_raw[m_place++];
        const char* found = code == 0 ? nullptr : std::strchr(codes, code);
        if (found) {
            m_text += meanings[found - codes];
            return true;
        }
        if (code == 'x' && digit(16) >= 0)
            return readCharacter(16);
        if (code >= '0' && code <= '7') {
            --m_place;
            return readCharacter(8);
        }
        if (isLineEnd(code) && m_place < m_raw.size() && isLineEnd(m_raw[m_place])
            && m_raw[m_place] != code) {
            ++m_place;
        }
        return false;
    }

    bool readCharacter(int base)
    {
        quint32 character = 0;
        for (; digit(base) >= 0; ++m_place)
            character = character * quint32(base) + quint32(digit(base));
        character &= 0xFFFF;
        m_text += character > 0xFF ? '?' : char(character);
        return true;
    }

    /// The digit at the present place, or -1.
    int digit(int base) const
    {
        static const char digits[] = "0123456789abcdef";
        if (m_place == m_raw.size() || m_raw[m_place] == 0)
            return -1;
        const char byte = m_raw[m_place];
        const char lower = byte >= 'A' && byte <= 'F' ? char(byte - 'A' + 'a') : byte;
        const char* found = std::strchr(digits, lower);
        return found && found - digits < base ? int(found - digits) : -1;
    }

    const QByteArray m_raw;
    int m_place = 0;
    QByteArray m_text;
    int m_settled = 0; // up to here, blanks at the end of the text are meant
    QList<QByteArray> m_texts;
};

Verdict verdictOn(const QByteArray& text)
{
    if (!text.endsWith(')'))
        return Verdict::Sound;
    // The bracket belongs to what QSettings reads from.
    if (text.startsWith(variantMarker))
        return StreamWalk(text.mid(int(qstrlen(variantMarker))), QDataStream::Qt_4_0).value();
    if (text.startsWith(dateTimeMarker))
        return StreamWalk(text.mid(int(qstrlen(dateTimeMarker))), QDataStream::Qt_5_6).value();
    return Verdict::Sound;
}

Verdict verdictOnEntry(const QByteArray& rawValue)
{
    Verdict worst = Verdict::Sound;
    const QList<QByteArray> texts = ValueReader(rawValue).texts();
    for (const QByteArray& text : texts)
        worst = std::max(worst, verdictOn(text));
    return worst;
}

/// The range that goes with an entry: what it stands on, but not the comment behind it.
Line withLineEnds(const QByteArray& content, Line line)
{
    while (line.start > 0 && isBlank(content[line.start - 1]))
        --line.start;
    if (line.end < content.size() && isLineEnd(content[line.end])) {
        const bool isPair = content.mid(line.end, 2) == "\r\n";
        line.end += isPair ? 2 : 1;
    }
    return line;
}

QByteArray bytesOf(const QString& path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

bool hasStreamedValues(const QByteArray& content)
{
    return (content.contains(variantMarker) || content.contains(dateTimeMarker))
        && !content.startsWith("bplist") && !content.startsWith("<?xml");
}

} // namespace

ScreenedSettings screenSettings(const QByteArray& content)
{
    ScreenedSettings screened;
    const QByteArray byteOrderMark("\xEF\xBB\xBF");
    const bool isMarked = content.startsWith(byteOrderMark);
    int kept = 0;
    Line line = lineAt(content, isMarked ? byteOrderMark.size() : 0);
    for (; line.start < line.end; line = lineAt(content, line.end)) {
        if (line.equals < 0 || content[line.start] == '[')
            continue;
        const QByteArray value = content.mid(line.equals + 1, line.end - line.equals - 1);
        // Behind the mark it isn't certain how QSettings decodes them.
        const bool isDoubtful = isMarked
            && std::any_of(value.cbegin(), value.cend(), [](char c) { return quint8(c) >= 0x80; });
        const Verdict verdict = isDoubtful ? Verdict::Unknown : verdictOnEntry(value);
        screened.hasUnknownTypes = screened.hasUnknownTypes || verdict == Verdict::Unknown;
        if (verdict != Verdict::Damaged)
            continue;
        const Line range = withLineEnds(content, line);
        screened.content += content.mid(kept, range.start - kept);
        screened.isDamaged = true;
        kept = range.end;
    }
    screened.content += content.mid(kept);
    return screened;
}

void mendSettingsFile(const QString& path)
{
    const QFileInfo file(path);
    const QByteArray content = bytesOf(path);
    if (!hasStreamedValues(content) || !screenSettings(content).isDamaged || !file.isWritable())
        return;

    // The lock that QSettings has while it writes. What was read before it may be old.
    QLockFile lock(file.absoluteFilePath() + QStringLiteral(".lock"));
    if (!lock.tryLock(5000))
        return;
    const ScreenedSettings screened = screenSettings(bytesOf(path));
    QSaveFile mended(path);
    if (screened.isDamaged && mended.open(QIODevice::WriteOnly)
        && mended.write(screened.content) == screened.content.size()) {
        mended.commit();
    }
}

void mendChangedSettingsFile(const QString& path)
{
    using Stamp = QPair<quint64, std::filesystem::file_time_type>;
    struct Known
    {
        QMutex mutex;
        QHash<QString, Stamp> stamps;
    };
    constexpr int mostKnown = 1000;

    // QFileInfo would turn the time into a local one, which takes longer than all the rest.
    const std::filesystem::path file(QFile::encodeName(path).constData());
    std::error_code error;
    Stamp stamp;
    stamp.first = std::filesystem::file_size(file, error);
    if (!error)
        stamp.second = std::filesystem::last_write_time(file, error);
    if (error)
        return;

    // Never destroyed: later destructors of singletons may still open settings.
    static Known& known = *new Known;
    const QMutexLocker lock(&known.mutex);
    if (known.stamps.value(path) == stamp)
        return;
    if (known.stamps.size() >= mostKnown)
        known.stamps.clear();
    mendSettingsFile(path);
    known.stamps.insert(path, stamp);
}

} // namespace VEK_NAMESPACE
