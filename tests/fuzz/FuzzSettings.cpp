#include "FuzzTarget.h"

#include "CommonConstants.h"
#include "Files.h"
#include "Settings.h"
#include "SettingsCheck_p.h"
#include "TemporarySettings.h"

#include <QCoreApplication>
#include <QMap>
#include <QTemporaryDir>
#include <QVariant>

#include <algorithm>

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

/// QSettings itself writes some streamed values in another form: a truth value as a text.
Texts textsAfterPlainChange(const QString& place, const QByteArray& content)
{
    const QString path = place + QStringLiteral("/plain.ini");
    const QString copy = place + QStringLiteral("/plainCopy.ini");
    require(writeFile(path, content), "a plain settings file can be written");
    {
        QSettings settings(path, QSettings::IniFormat);
        settings.setValue(QStringLiteral("written/here"), 42);
    }
    require(QFile::copy(path, copy), "what was written plainly can be copied");
    QSettings::Status status = QSettings::NoError;
    return textsIn(copy, &status);
}

/// The library doesn't judge streamed values of types such as pictures, and QSettings doesn't stand
/// every bad one: they too take the memory that they ask for. Nor does it look for a marker that is
/// written in escapes, which no damage makes of a good file.
bool mayHoldUnjudgedValues(const QByteArray& content, const ScreenedSettings& screened)
{
    const bool hasMarker = content.contains("@Variant(") || content.contains("@DateTime(");
    const bool isPropertyList = content.startsWith("bplist") || content.startsWith("<?xml");
    return screened.hasUnknownTypes || (screened.isDamaged && (!hasMarker || isPropertyList));
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
    const QByteArray content = bytesOf(data, size);
    const ScreenedSettings screened = screenSettings(content);
    if (mayHoldUnjudgedValues(content, screened) || hasDoubtfulEncoding(content))
        return 0;
    // QSettings keeps parsed files for a while, and knows them by name, size and time.
    const QString place = folder.filePath(QString::number(++run));
    const QString path = place + QStringLiteral("/store.ini");
    const QString defaults = place + QStringLiteral("/DefaultTemporarySettins.ini");
    require(writeFile(path, content) && writeFile(defaults, content),
            "the settings files can be written");

    // Makes it a file that QSettings stands.
    (void)CSettings(path, QSettings::IniFormat).group();
    require(!screenSettings(readFile(path)).isDamaged, "nothing damaged is left");

    QSettings::Status status = QSettings::NoError;
    const Texts texts = textsIn(path, &status);
    {
        CSettings settings(path, QSettings::IniFormat);
        readEverything(settings, texts);
    }
    require(readFile(path) == screened.content,
            "a settings file that is read stays as it is, but for damaged values");

    {
        CTemporarySettings overlay(defaults.toLatin1().constData());
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
    require(readFile(defaults) == content, "the defaults of an overlay stay as they are");

    // Files that are copied are parsed afresh.
    {
        CSettings settings(path, QSettings::IniFormat);
        settings.setValue(QStringLiteral("written/here"), 42);
    }
    const QString copy = place + QStringLiteral("/copy.ini");
    require(QFile::copy(path, copy), "what was written can be copied");
    QSettings::Status again = QSettings::NoError;
    const Texts written = textsIn(copy, &again);
    require(written.value(QStringLiteral("written/here")) == QStringList(QStringLiteral("42")),
            "a value that is written is read again");
    Texts expected = texts;
    expected.insert(QStringLiteral("written/here"), {QStringLiteral("42")});
    const QStringList keys = texts.keys();
    if (status == QSettings::NoError && std::none_of(keys.cbegin(), keys.cend(), isUnreachable)) {
        require(written == expected || written == textsAfterPlainChange(place, screened.content),
                "writing one value changes no other by itself");
    }
    QDir(place).removeRecursively();
    return 0;
}
