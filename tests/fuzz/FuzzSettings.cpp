#include "FuzzTarget.h"

#include "CommonConstants.h"
#include "Files.h"
#include "Settings.h"
#include "TemporarySettings.h"

#include <QCoreApplication>
#include <QMap>
#include <QTemporaryDir>
#include <QVariant>

#include <algorithm>
#include <cctype>

// A settings file in the form of INI: as a store of its own, and as the defaults of the overlay.

using namespace VEK_NAMESPACE;

namespace {

using Texts = QMap<QString, QStringList>;

/// What the values are as texts. A value that is none, such as a picture, is a text without
/// characters here.
Texts textsIn(const QString& path, QSettings::Status* status)
{
    const QSettings settings(path, QSettings::IniFormat);
    Texts texts;
    const QStringList keys = settings.allKeys();
    for (const QString& key : keys)
        texts.insert(key, settings.value(key).toStringList());
    *status = settings.status();
    return texts;
}

/// Without the quotes and escapes of INI.
QByteArray plainText(const QByteArray& content)
{
    QByteArray plain;
    for (int i = 0; i < content.size(); ++i) {
        if (content[i] != '\\') {
            if (content[i] != '"')
                plain += content[i];
            continue;
        }
        if (++i == content.size())
            break;
        const bool isHex = content[i] == 'x';
        const bool isOctal = content[i] >= '0' && content[i] <= '7';
        if (!isHex && !isOctal) {
            if (content[i] != '\n' && content[i] != '\r')
                plain += content[i];
            continue;
        }
        QByteArray digits;
        for (i += isHex ? 1 : 0; i < content.size(); ++i) {
            if (isHex ? !std::isxdigit(std::uint8_t(content[i]))
                      : content[i] < '0' || content[i] > '7')
                break;
            digits += content[i];
        }
        --i;
        plain += char(digits.right(3).toUInt(nullptr, isHex ? 16 : 8));
    }
    return plain;
}

/// Values that QSettings puts through a data stream are none of ours, and it doesn't stand bad
/// ones: a time of no zone crashes when the file is written, and lists take the memory that they
/// ask for.
bool hasStreamedValues(const QByteArray& content)
{
    const QByteArray plain = plainText(content);
    return plain.contains("@Variant(") || plain.contains("@DateTime(");
}

/// QSettings takes such a name for the one without the superfluous slashes.
bool isUnreachable(const QString& key)
{
    return key.startsWith(QLatin1Char('/')) || key.endsWith(QLatin1Char('/'))
        || key.contains(QLatin1String("//"));
}

/// Behind a byte order mark QSettings decodes a section as UTF-8 or as Latin-1, by which of the
/// objects on the file happens to come to it first.
bool hasDoubtfulEncoding(const QByteArray& content)
{
    const QByteArray mark("\xEF\xBB\xBF");
    return content.startsWith(mark)
        && std::any_of(content.cbegin() + mark.size(), content.cend(),
                       [](char byte) { return std::uint8_t(byte) >= 0x80; });
}

void readEverything(CSettings& settings, const Texts& texts)
{
    for (auto it = texts.cbegin(); it != texts.cend(); ++it) {
        const QString& key = it.key();
        if (isUnreachable(key))
            continue;
        require(settings.contains(key), "each key of the file is there");
        const QVariant value = settings.value(key);
        require(value.toStringList() == it.value(), "a value is what the file has");
        (void)value.toInt();
        (void)value.toBool();
        const int slash = key.indexOf(QLatin1Char('/'));
        if (slash <= 0)
            continue;
        const QString group = key.left(slash);
        settings.beginGroup(group);
        (void)settings.group();
        (void)settings.value(key.mid(slash + 1));
        settings.endGroup();
        const int size = settings.beginReadArray(group);
        for (int i = 0; i < qMin(size, 3); ++i) {
            settings.setArrayIndex(i);
            (void)settings.value(key.section(QLatin1Char('/'), 2));
        }
        settings.endArray();
    }
}

} // namespace

int LLVMFuzzerInitialize(int* argc, char*** argv)
{
    static QCoreApplication application(*argc, *argv);
    return 0;
}

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    static const QTemporaryDir folder;
    static int run = 0;
    // QSettings keeps parsed files for a while, and knows them by name, size and time.
    const QString place = folder.filePath(QString::number(++run));
    const QString path = place + QStringLiteral("/DefaultTemporarySettins.ini");
    const QByteArray content = bytesOf(data, size);
    if (hasStreamedValues(content) || hasDoubtfulEncoding(content))
        return 0;
    require(writeFile(path, content), "the settings file can be written");

    QSettings::Status status = QSettings::NoError;
    const Texts texts = textsIn(path, &status);
    {
        CSettings settings(path, QSettings::IniFormat);
        readEverything(settings, texts);
    }
    require(readFile(path) == content, "a settings file that is read stays as it is");

    {
        CTemporarySettings overlay(path.toLatin1().constData());
        CSettings::setTemporarySettings(overlay);
        // Objects on one file share it. By itself QSettings parses a section when a key of it is
        // looked up, and takes "b/c" for one of section "b" also if it stands elsewhere.
        (void)QSettings(overlay.tempSettingsPath(), QSettings::IniFormat).allKeys();
        CSettings settings;
        readEverything(settings, texts);
        settings.setValue(QStringLiteral("written/here"), 42);
        require(overlay.value(QStringLiteral("written/here")).toInt() == 42,
                "what is written to the overlay is there");
        settings.remove(QStringLiteral("written"));
        require(!overlay.contains(QStringLiteral("written/here")), "what is removed is gone");
    }
    require(readFile(path) == content, "the defaults of an overlay stay as they are");

    {
        CSettings settings(path, QSettings::IniFormat);
        settings.setValue(QStringLiteral("written/here"), 42);
    }
    Texts expected = texts;
    expected.insert(QStringLiteral("written/here"), {QStringLiteral("42")});
    const QString copy = place + QStringLiteral("/copy.ini"); // which is parsed afresh
    require(QFile::copy(path, copy), "what was written can be copied");
    QSettings::Status again = QSettings::NoError;
    const Texts written = textsIn(copy, &again);
    require(written.value(QStringLiteral("written/here")) == QStringList(QStringLiteral("42")),
            "a value that is written is read again");
    const QStringList keys = texts.keys();
    if (status == QSettings::NoError && std::none_of(keys.cbegin(), keys.cend(), isUnreachable))
        require(written == expected, "writing one value changes no other");
    QDir(place).removeRecursively();
    return 0;
}
