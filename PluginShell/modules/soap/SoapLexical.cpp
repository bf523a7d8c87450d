#include "SoapLexical_p.h"

#include <QDateTime>
#include <QRegularExpression>

#include <cstring>
#include <limits>

namespace VEK_NAMESPACE::soap {

namespace {

using Type = QtSoapType::Type;

bool isDigit(QChar character)
{
    return character >= QLatin1Char('0') && character <= QLatin1Char('9');
}

/// Reads a text from its beginning; a function that returns false has read nothing.
class Scanner
{
public:
    explicit Scanner(const QString& text)
        : m_text(text)
    {}

    bool atEnd() const { return m_at == m_text.size(); }

    bool skip(char character)
    {
        if (atEnd() || m_text.at(m_at) != QLatin1Char(character))
            return false;
        ++m_at;
        return true;
    }

    bool skip(const char* text)
    {
        const int length = int(std::strlen(text));
        if (m_text.midRef(m_at, length) != QLatin1String(text, length))
            return false;
        m_at += length;
        return true;
    }

    bool skipSign() { return skip('+') || skip('-'); }

    /// As many digits as there are.
    int skipDigits()
    {
        const int start = m_at;
        while (!atEnd() && isDigit(m_text.at(m_at)))
            ++m_at;
        return m_at - start;
    }

    bool readTwoDigits(int* value)
    {
        if (m_text.size() - m_at < 2 || !isDigit(m_text.at(m_at)) || !isDigit(m_text.at(m_at + 1)))
            return false;
        *value = (m_text.at(m_at).unicode() - '0') * 10 + m_text.at(m_at + 1).unicode() - '0';
        m_at += 2;
        return true;
    }

    QStringRef from(int start) const { return m_text.midRef(start, m_at - start); }
    int position() const { return m_at; }

private:
    const QString& m_text;
    int m_at = 0;
};

enum Field
{
    Year = 1,
    Month = 2,
    Day = 4,
    Clock = 8
};

struct Moment
{
    bool yearFits = true; // into four digits
    int year = 4; // a leap year, so that --02-29 is a day
    int month = 1;
    int day = 1;
    int hour = 0;
    int minute = 0;
    int second = 0;
    int millisecond = 0;
    bool hasZone = false;
    int zoneSeconds = 0;
};

bool readYear(Scanner* scanner, Moment* moment)
{
    const bool isNegative = scanner->skip('-');
    const int start = scanner->position();
    const int digits = scanner->skipDigits();
    if (digits < 4)
        return false;
    moment->yearFits = digits == 4 && !isNegative;
    // Whether other years are leap years isn't looked at.
    moment->year = moment->yearFits ? scanner->from(start).toInt() : 4;
    if (moment->yearFits && moment->year == 0)
        return false;
    return true;
}

bool readClock(Scanner* scanner, Moment* moment)
{
    if (!scanner->readTwoDigits(&moment->hour) || !scanner->skip(':')
        || !scanner->readTwoDigits(&moment->minute) || !scanner->skip(':')
        || !scanner->readTwoDigits(&moment->second)) {
        return false;
    }
    bool hasFraction = false;
    if (scanner->skip('.')) {
        const int start = scanner->position();
        if (scanner->skipDigits() == 0)
            return false;
        const QStringRef digits = scanner->from(start);
        for (const QChar digit : digits)
            hasFraction = hasFraction || digit != QLatin1Char('0');
        moment->millisecond = (digits.left(3).toString() + QLatin1String("00")).leftRef(3).toInt();
    }
    if (moment->hour == 24)
        return moment->minute == 0 && moment->second == 0 && !hasFraction;
    return moment->hour < 24 && moment->minute < 60 && moment->second < 60;
}

bool readZone(Scanner* scanner, Moment* moment)
{
    if (scanner->atEnd())
        return true;
    moment->hasZone = true;
    if (scanner->skip('Z'))
        return true;
    const bool isWest = scanner->skip('-');
    if (!isWest && !scanner->skip('+'))
        return false;
    int hours = 0;
    int minutes = 0;
    if (!scanner->readTwoDigits(&hours) || !scanner->skip(':') || !scanner->readTwoDigits(&minutes))
        return false;
    moment->zoneSeconds = (hours * 60 + minutes) * (isWest ? -60 : 60);
    return minutes < 60 && (hours < 14 || (hours == 14 && minutes == 0));
}

/// Reads these fields, which are parted as the schema's types of time are: a missing one leaves its
/// hyphen.
bool readMoment(const QString& text, int fields, Moment* moment)
{
    Scanner scanner(text);
    if (fields & Year) {
        if (!readYear(&scanner, moment))
            return false;
    } else if (fields & (Month | Day)) {
        if (!scanner.skip('-'))
            return false;
    }
    if (fields & Month) {
        if (!scanner.skip('-') || !scanner.readTwoDigits(&moment->month))
            return false;
    } else if (fields & Day) {
        if (!scanner.skip('-'))
            return false;
    }
    if (fields & Day) {
        if (!scanner.skip('-') || !scanner.readTwoDigits(&moment->day))
            return false;
    }
    if (fields == Month)
        scanner.skip("--"); // which a month alone had in 1999, "--05--"
    if (!QDate::isValid(moment->year, moment->month, moment->day))
        return false;
    if (fields & Clock) {
        if ((fields & Day) && !scanner.skip('T'))
            return false;
        if (!readClock(&scanner, moment))
            return false;
    }
    return readZone(&scanner, moment) && scanner.atEnd();
}

bool isDuration(const QString& text)
{
    Scanner scanner(text);
    scanner.skip('-');
    if (!scanner.skip('P'))
        return false;

    bool hasAny = false;
    const auto readUnits = [&](const char* units, bool secondsAreLast) {
        while (!scanner.atEnd() && *units) {
            const int digits = scanner.skipDigits();
            if (digits == 0)
                return true;
            if (secondsAreLast && scanner.skip('.'))
                return scanner.skipDigits() > 0 && scanner.skip('S') && (hasAny = true);
            while (*units && !scanner.skip(*units))
                ++units;
            if (!*units)
                return false;
            ++units;
            hasAny = true;
        }
        return true;
    };
    if (!readUnits("YMD", false))
        return false;
    if (scanner.skip('T')) {
        hasAny = false;
        if (!readUnits("HMS", true))
            return false;
    }
    return hasAny && scanner.atEnd();
}

bool isDecimal(const QString& text, bool takesExponent)
{
    Scanner scanner(text);
    scanner.skipSign();
    int digits = scanner.skipDigits();
    if (scanner.skip('.'))
        digits += scanner.skipDigits();
    if (digits == 0)
        return false;
    if (takesExponent && (scanner.skip('e') || scanner.skip('E'))) {
        scanner.skipSign();
        if (scanner.skipDigits() == 0)
            return false;
    }
    return scanner.atEnd();
}

bool isFloat(const QString& text)
{
    return text == QLatin1String("INF") || text == QLatin1String("-INF")
        || text == QLatin1String("NaN") || isDecimal(text, true);
}

bool isInteger(const QString& text)
{
    Scanner scanner(text);
    scanner.skipSign();
    return scanner.skipDigits() > 0 && scanner.atEnd();
}

/// The sign of an integer's value.
int signOf(const QString& text)
{
    for (const QChar character : text) {
        if (character >= QLatin1Char('1') && character <= QLatin1Char('9'))
            return text.startsWith(QLatin1Char('-')) ? -1 : 1;
    }
    return 0;
}

bool isWithin(const QString& text, qlonglong least, qlonglong greatest)
{
    qlonglong value = 0;
    return toLongLong(text, &value) && value >= least && value <= greatest;
}

template <typename Number>
bool isWithin(const QString& text)
{
    return isWithin(text, std::numeric_limits<Number>::min(), std::numeric_limits<Number>::max());
}

bool toUnsignedLongLong(const QString& text, qulonglong* value)
{
    bool isNumber = false;
    if (!isInteger(text))
        return false;
    *value = 0;
    if (signOf(text) == 0)
        return true;
    *value = text.toULongLong(&isNumber);
    return isNumber;
}

bool isBoolean(const QString& text)
{
    return text == QLatin1String("true") || text == QLatin1String("false")
        || text == QLatin1String("1") || text == QLatin1String("0");
}

bool isBase64(const QString& text)
{
    int digits = 0;
    int padding = 0;
    for (const QChar character : text) {
        if (isWhiteSpace(character))
            continue;
        const ushort code = character.unicode();
        if (code == '=') {
            ++padding;
            continue;
        }
        const bool isBase64Digit = (code >= 'A' && code <= 'Z') || (code >= 'a' && code <= 'z')
            || (code >= '0' && code <= '9') || code == '+' || code == '/';
        if (!isBase64Digit || padding > 0)
            return false;
        digits = (digits + 1) % 4;
    }
    return (digits == 0 && padding == 0) || (digits == 2 && padding == 2)
        || (digits == 3 && padding == 1);
}

bool isHexadecimal(const QString& text)
{
    for (const QChar character : text) {
        const ushort code = character.unicode();
        if (!isDigit(character) && !(code >= 'A' && code <= 'F') && !(code >= 'a' && code <= 'f'))
            return false;
    }
    return text.size() % 2 == 0;
}

QVariant wholeNumber(const QString& text)
{
    qlonglong number = 0;
    if (toLongLong(text, &number))
        return number;
    qulonglong large = 0;
    if (toUnsignedLongLong(text, &large))
        return large;
    return text;
}

namespace {

/// Whether the first digit of a number that isn't 0 stands behind its point, with the exponent
/// taken into account. So is zero.
bool isBelowOne(const QString& text)
{
    static const QRegularExpression digit(QStringLiteral("[1-9]"));
    int end = text.indexOf(QLatin1Char('e'), 0, Qt::CaseInsensitive);
    qlonglong exponent = 0;
    if (end < 0) {
        end = text.size();
    } else {
        bool fits = false;
        exponent = text.midRef(end + 1).toLongLong(&fits);
        if (!fits)
            return text.at(end + 1) == QLatin1Char('-');
    }
    const int point = text.indexOf(QLatin1Char('.'));
    const int integerEnd = point < 0 ? end : point;
    const int first = text.indexOf(digit);
    return first < 0 || first > end || exponent + integerEnd - first < (first < integerEnd ? 1 : 0);
}

} // namespace

double realNumber(const QString& text)
{
    if (text == QLatin1String("INF"))
        return std::numeric_limits<double>::infinity();
    if (text == QLatin1String("-INF"))
        return -std::numeric_limits<double>::infinity();
    if (text == QLatin1String("NaN"))
        return std::numeric_limits<double>::quiet_NaN();
    bool fits = false;
    const double number = text.toDouble(&fits);
    if (fits || number != 0.0)
        return number;

    // Too small, as later versions of Qt take what is too large for infinity. Earlier ones don't.
    if (!isBelowOne(text)) {
        const double infinity = std::numeric_limits<double>::infinity();
        return text.startsWith(QLatin1Char('-')) ? -infinity : infinity;
    }
    return 0.0;
}

QVariant dateTime(const QString& text)
{
    Moment moment;
    if (!readMoment(text, Year | Month | Day | Clock, &moment) || !moment.yearFits)
        return text;
    QDate date(moment.year, moment.month, moment.day);
    if (moment.hour == 24) {
        date = date.addDays(1);
        moment.hour = 0;
    }
    const QTime time(moment.hour, moment.minute, moment.second, moment.millisecond);
    QDateTime result;
    if (!moment.hasZone)
        result = QDateTime(date, time, Qt::LocalTime);
    else if (moment.zoneSeconds == 0)
        result = QDateTime(date, time, Qt::UTC);
    else
        result = QDateTime(date, time, Qt::OffsetFromUTC, moment.zoneSeconds);
    return result.isValid() ? QVariant(result) : QVariant(text);
}

QVariant date(const QString& text)
{
    Moment moment;
    if (!readMoment(text, Year | Month | Day, &moment) || !moment.yearFits)
        return text;
    return QDate(moment.year, moment.month, moment.day);
}

QVariant time(const QString& text)
{
    Moment moment;
    if (!readMoment(text, Clock, &moment))
        return text;
    return QTime(moment.hour % 24, moment.minute, moment.second, moment.millisecond);
}

} // namespace

bool keepsWhiteSpace(Type type)
{
    return type == QtSoapType::String || type == QtSoapType::NormalizedString
        || type == QtSoapType::Other;
}

bool isWhiteSpace(QChar character)
{
    const ushort code = character.unicode();
    return code == ' ' || code == '\t' || code == '\n' || code == '\r';
}

bool isBlank(const QString& text)
{
    for (const QChar character : text) {
        if (!isWhiteSpace(character))
            return false;
    }
    return true;
}

QString trimmed(const QString& text)
{
    int start = 0;
    int end = text.size();
    while (start < end && isWhiteSpace(text.at(start)))
        ++start;
    while (end > start && isWhiteSpace(text.at(end - 1)))
        --end;
    return start == 0 && end == text.size() ? text : text.mid(start, end - start);
}

bool toLongLong(const QString& text, qlonglong* value)
{
    if (!isInteger(text))
        return false;
    bool isNumber = false;
    *value = text.toLongLong(&isNumber);
    return isNumber;
}

bool isOfType(Type type, const QString& text)
{
    Moment moment;
    switch (type) {
    case QtSoapType::Duration:
        return isDuration(text);
    case QtSoapType::DateTime:
        return readMoment(text, Year | Month | Day | Clock, &moment);
    case QtSoapType::Time:
        return readMoment(text, Clock, &moment);
    case QtSoapType::Date:
        return readMoment(text, Year | Month | Day, &moment);
    case QtSoapType::GYearMonth:
        return readMoment(text, Year | Month, &moment);
    case QtSoapType::GYear:
        return readMoment(text, Year, &moment);
    case QtSoapType::GMonthDay:
        return readMoment(text, Month | Day, &moment);
    case QtSoapType::GDay:
        return readMoment(text, Day, &moment);
    case QtSoapType::GMonth:
        return readMoment(text, Month, &moment);
    case QtSoapType::Boolean:
        return isBoolean(text);
    case QtSoapType::Base64Binary:
        return isBase64(text);
    case QtSoapType::HexBinary:
        return isHexadecimal(text);
    case QtSoapType::Float:
    case QtSoapType::Double:
        return isFloat(text);
    case QtSoapType::Decimal:
        return isDecimal(text, false);
    case QtSoapType::Integer:
        return isInteger(text);
    case QtSoapType::NonPositiveInteger:
        return isInteger(text) && signOf(text) <= 0;
    case QtSoapType::NegativeInteger:
        return isInteger(text) && signOf(text) < 0;
    case QtSoapType::NonNegativeInteger:
        return isInteger(text) && signOf(text) >= 0;
    case QtSoapType::PositiveInteger:
        return isInteger(text) && signOf(text) > 0;
    case QtSoapType::Long:
        return isWithin<qlonglong>(text);
    case QtSoapType::Int:
        return isWithin<qint32>(text);
    case QtSoapType::Short:
        return isWithin<qint16>(text);
    case QtSoapType::Byte:
        return isWithin<qint8>(text);
    case QtSoapType::UnsignedLong: {
        qulonglong number = 0;
        return toUnsignedLongLong(text, &number);
    }
    case QtSoapType::UnsignedInt:
        return isWithin<quint32>(text);
    case QtSoapType::UnsignedShort:
        return isWithin<quint16>(text);
    case QtSoapType::UnsignedByte:
        return isWithin<quint8>(text);
    default:
        return true;
    }
}

QVariant toVariant(Type type, const QString& text)
{
    switch (type) {
    case QtSoapType::Boolean:
        return text == QLatin1String("true") || text == QLatin1String("1");
    case QtSoapType::Byte:
    case QtSoapType::Short:
    case QtSoapType::Int:
    case QtSoapType::UnsignedByte:
    case QtSoapType::UnsignedShort:
        return text.toInt();
    case QtSoapType::UnsignedInt:
        return text.toUInt();
    case QtSoapType::Long:
        return text.toLongLong();
    case QtSoapType::UnsignedLong: {
        qulonglong number = 0;
        toUnsignedLongLong(text, &number);
        return number;
    }
    case QtSoapType::Integer:
    case QtSoapType::NonPositiveInteger:
    case QtSoapType::NegativeInteger:
    case QtSoapType::NonNegativeInteger:
    case QtSoapType::PositiveInteger:
        return wholeNumber(text);
    case QtSoapType::Float:
    case QtSoapType::Double:
    case QtSoapType::Decimal:
        return realNumber(text);
    case QtSoapType::DateTime:
        return dateTime(text);
    case QtSoapType::Date:
        return date(text);
    case QtSoapType::Time:
        return time(text);
    case QtSoapType::Base64Binary:
        return QByteArray::fromBase64(text.toLatin1());
    case QtSoapType::HexBinary:
        return QByteArray::fromHex(text.toLatin1());
    default:
        return text;
    }
}

} // namespace VEK_NAMESPACE::soap
