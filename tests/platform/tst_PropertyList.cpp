#include "CommonConstants.h"
#include "OrdinaryFileRights.h"
#include "PlatformServices_p.h"

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <QTest>

#include <sys/stat.h>

using VEK_NAMESPACE::Platform::propertyListText;

namespace {

QByteArray xml(const QByteArray& entries)
{
    return "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
           "<!DOCTYPE plist PUBLIC \"-//Apple//DTD PLIST 1.0//EN\" "
           "\"http://www.apple.com/DTDs/PropertyList-1.0.dtd\">\n"
           "<plist version=\"1.0\">\n<dict>\n"
        + entries + "</dict>\n</plist>\n";
}

const QByteArray entry = // clazy:exclude=non-pod-global-static
    "<key>Key</key><string>value</string>\n";

/// The entry Key, with a list beside it that holds \a levels lists one in another.
QByteArray deepXml(int levels)
{
    return xml("<key>Deep</key>" + QByteArray("<array>").repeated(levels)
               + QByteArray("</array>").repeated(levels) + entry);
}

QByteArray bigEndian(quint64 number, int width)
{
    QByteArray bytes;
    for (int i = width; i > 0; --i)
        bytes += char(number >> (8 * (i - 1)));
    return bytes;
}

/// What stands at the end of a binary list.
struct Trailer
{
    int offsetWidth = 4;
    int referenceWidth = 2;
    quint64 objects = 0;
    quint64 top = 0;
    quint64 offsets = 0;

    QByteArray bytes() const
    {
        return QByteArray(6, '\0') + char(offsetWidth) + char(referenceWidth)
            + bigEndian(objects, 8) + bigEndian(top, 8) + bigEndian(offsets, 8);
    }
};

QByteArray text(const QByteArray& ascii)
{
    return char(0x50 | ascii.size()) + ascii;
}

QByteArray references(const QList<int>& objects)
{
    QByteArray bytes;
    for (const int object : objects)
        bytes += bigEndian(quint64(object), 2);
    return bytes;
}

QByteArray array(const QList<int>& objects)
{
    return char(0xA0 | objects.size()) + references(objects);
}

QByteArray dictionary(const QList<int>& keys, const QList<int>& values)
{
    return char(0xD0 | keys.size()) + references(keys) + references(values);
}

/// A binary list of those objects, which refer to each other by their place; the first is on top.
QByteArray binary(const QList<QByteArray>& objects, Trailer trailer = Trailer())
{
    QByteArray content = "bplist00";
    QByteArray offsets;
    for (const QByteArray& object : objects) {
        offsets += bigEndian(quint64(content.size()), 4);
        content += object;
    }
    if (trailer.objects == 0)
        trailer.objects = quint64(objects.size());
    if (trailer.offsets == 0)
        trailer.offsets = quint64(content.size());
    return content + offsets + trailer.bytes();
}

/// A text, or data, of any size. \a count is that of its characters.
QByteArray longObject(char kind, int count, const QByteArray& bytes)
{
    return QByteArray(1, char(kind << 4 | 0xF)) + '\x12' + bigEndian(quint64(count), 4) + bytes;
}

/// The entry Key, with a list beside it that refers to \a object \a count times.
QByteArray repeatedBinary(const QByteArray& object, int count)
{
    Trailer trailer;
    trailer.referenceWidth = 1;
    const QByteArray references(count, '\5');
    return binary({"\xD2\1\3\2\4", text("Key"), text("value"), text("List"),
                   longObject(0xA, count, references), object},
                  trailer);
}

/// The entry Key, with a list beside it that holds \a levels lists one in another.
QByteArray deepBinary(int levels)
{
    QList<QByteArray> objects = {dictionary({1, 3}, {2, 4}), text("Key"), text("value"),
                                 text("Deep")};
    for (int i = 1; i < levels; ++i)
        objects << array({objects.size() + 1});
    objects << array({});
    return binary(objects);
}

/// A list of three objects, Key's entry, and what \a change makes of its end.
template <typename Change>
QByteArray withTrailer(Change change)
{
    const QList<QByteArray> objects = {dictionary({1}, {2}), text("Key"), text("value")};
    QByteArray content = binary(objects);
    Trailer trailer;
    trailer.objects = 3;
    trailer.offsets = 8 + 5 + 4 + 6;
    change(trailer);
    content.chop(32);
    return content + trailer.bytes();
}

} // namespace

class tst_PropertyList : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void textOfAnEntry_data();
    void textOfAnEntry();
    void otherEntriesGiveNothing_data();
    void otherEntriesGiveNothing();
    void damagedFilesGiveNothing_data();
    void damagedFilesGiveNothing();
    void olderFormGivesNothing();
    void truncatedFiles_data();
    void truncatedFiles();
    void changedBytes_data();
    void changedBytes();
    void sizeHasALimit_data();
    void sizeHasALimit();
    void whatIsNoReadableFileGivesNothing_data();
    void whatIsNoReadableFileGivesNothing();
    void linkIsFollowed();

private:
    QString path(const char* name) const { return m_folder->filePath(QString::fromUtf8(name)); }
    QString write(const char* name, const QByteArray& content) const
    {
        QFile file(path(name));
        if (!file.open(QIODevice::WriteOnly) || file.write(content) != content.size())
            qFatal("cannot write %s", name);
        return file.fileName();
    }
    QString textIn(const QByteArray& content, const QString& key = QStringLiteral("Key")) const
    {
        return propertyListText(write("Info.plist", content), key);
    }

    QScopedPointer<QTemporaryDir> m_folder;
};

void tst_PropertyList::init()
{
    m_folder.reset(new QTemporaryDir);
    QVERIFY(m_folder->isValid());
}

void tst_PropertyList::textOfAnEntry_data()
{
    QTest::addColumn<QByteArray>("content");
    QTest::addColumn<QString>("key");
    QTest::addColumn<QString>("expected");

    const auto addRow = [](const char* title, const QByteArray& content,
                           const char* expected = "value", const char* key = "Key") {
        QTest::newRow(title) << content << QString::fromUtf8(key) << QString::fromUtf8(expected);
    };
    addRow("XML", xml(entry));
    addRow("XML behind a byte order mark", "\xEF\xBB\xBF" + xml(entry));
    addRow("XML without any ornament",
           "<plist><dict><key>Key</key><string>value</string></dict></plist>");
    addRow("XML: the last of several entries",
           xml("<key>First</key><string>1</string>\n<key>Second</key><array/>\n" + entry));
    addRow("XML: other kinds before it",
           xml("<key>A</key><integer>1</integer><key>B</key><real>1.5</real><key>C</key><true/>"
               "<key>D</key><date>2020-01-02T00:00:00Z</date><key>E</key><data>YWJj</data>"
               "<key>F</key><dict><key>Key</key><string>inner</string></dict>"
               "<key>G</key><array><string>inner</string></array>"
               + entry));
    addRow("XML: comments", xml("<!-- <key>Key</key> -->" + entry + "<!-- -->"));
    addRow("XML: entities",
           xml("<key>Key</key><string>&lt;a&gt; &amp; &quot;b&quot; &#228; &#x65E5;</string>"),
           "<a> & \"b\" ä 日");
    addRow("XML: plain text between marks",
           xml("<key>Key</key><string>a<![CDATA[<b> &amp; ]]>c</string>"), "a<b> &amp; c");
    addRow("XML: spaces", xml("<key>Key</key><string>  a\n b </string>"), "  a\n b ");
    addRow("XML: beyond ASCII", xml("<key>Schlüssel</key><string>日本 ä 📷</string>"), "日本 ä 📷",
           "Schlüssel");
    addRow("XML: a key with spaces", xml("<key> a b </key><string>value</string>"), "value",
           " a b ");
    addRow("XML: many lists side by side",
           xml("<key>List</key><array>" + QByteArray("<dict></dict>").repeated(200)
               + QByteArray("<array></array>").repeated(200) + "</array>" + entry));
    addRow(
        "XML: many empty lists",
        xml("<key>List</key><array>" + QByteArray("<array/>").repeated(200) + "</array>" + entry));
    addRow(
        "XML: many empty dictionaries",
        xml("<key>List</key><array>" + QByteArray("<dict/>").repeated(200) + "</array>" + entry));
    addRow("XML: lists in a comment",
           xml("<!-- " + QByteArray("<array>").repeated(200) + " -->" + entry));
    addRow("XML: lists one in another", deepXml(50));
    addRow("XML: line feeds before it", "\n\n <plist><dict>" + entry + "</dict></plist>");
    addRow("XML: a bracket in a text", xml("<key>Key</key><string>a[b</string>"), "a[b");
    addRow("XML: a bracket behind a document type",
           "<!DOCTYPE plist>\n<plist><dict><key>[</key><string>1</string>" + entry
               + "</dict></plist>");

    // {"Key": "value", "Other": "another"}
    addRow("binary",
           QByteArray::fromHex("62706c6973743030d201020304534b6579554f746865725576616c756557616e6f"
                               "74686572080d11171d000000000000010100000000000000050000000000000000"
                               "0000000000000025"));
    // {"Key": "value", "Same": "value", "value": "Key"} with three texts
    addRow("binary: texts that are referred to more than once",
           QByteArray::fromHex("62706c6973743030d3010203030301534b65795453616d655576616c7565080f13"
                               "18000000000000010100000000000000040000000000000000000000000000001"
                               "e"));
    addRow("binary: a text that is referred to as key and as value",
           QByteArray::fromHex("62706c6973743030d3010203030301534b65795453616d655576616c7565080f13"
                               "18000000000000010100000000000000040000000000000000000000000000001"
                               "e"),
           "Key", "value");
    // {"Key": "日本 ä 📷", "Schlüssel": "ä"}
    const QByteArray beyondAscii =
        QByteArray::fromHex("62706c6973743030d201020304534b657969005300630068006c00fc007300730065"
                            "006c6765e5672c002000e40020d83ddcf76100e4080d1124330000000000000101000"
                            "0000000000005000000000000000000000000000000"
                            "36");
    addRow("binary: beyond ASCII", beyondAscii, "日本 ä 📷");
    addRow("binary: a key beyond ASCII", beyondAscii, "ä", "Schlüssel");
    // {"Key": "value", "List": [{"Name": "value", "Rows": [["value"] * 3, ["value", "Key"]]}]}
    addRow("binary: lists in lists that share texts",
           QByteArray::fromHex(
               "62706c6973743030d201020304534b6579544c6973745576616c7565a105d206070308544e616d6554"
               "526f7773a2090aa3030303a20301080d11161c1e23282d30340000000000000101000000000000000b"
               "00000000000000000000000000000037"));
    addRow("binary: a long text",
           binary({dictionary({1}, {2}), text("Key"),
                   QByteArray("\x5F\x11\x01\x2C", 4) + QByteArray(300, 'x')}),
           QByteArray(300, 'x').constData());
    addRow("binary: up to a zero byte",
           binary({dictionary({1}, {2}), text("Key"), text(QByteArray("val\0ue", 6))}), "val");
    addRow("binary: lists one in another", deepBinary(50));
    addRow("binary: a short text that is referred to 60,000 times",
           repeatedBinary(text("shared"), 60000));
    addRow("binary: a number that is referred to 60,000 times",
           repeatedBinary(QByteArray("\x10\x07"), 60000));
    addRow("binary: a text of 40,000 letters that is referred to 100 times",
           repeatedBinary(longObject(5, 40000, QByteArray(40000, 'x')), 100));
    addRow("binary: a text of 40,000 letters in UTF-16 that is referred to 50 times",
           repeatedBinary(longObject(6, 40000, QByteArray("\x65\xE5").repeated(40000)), 50));
    Trailer lastIsOnTop;
    lastIsOnTop.top = 2;
    addRow("binary: the top object isn't the first",
           binary({text("Key"), text("value"), dictionary({0}, {1})}, lastIsOnTop));
}

void tst_PropertyList::textOfAnEntry()
{
    QFETCH(QByteArray, content);
    QFETCH(QString, key);
    QFETCH(QString, expected);

    QCOMPARE(textIn(content, key), expected);
}

void tst_PropertyList::otherEntriesGiveNothing_data()
{
    QTest::addColumn<QByteArray>("content");
    QTest::addColumn<QString>("key");

    const QByteArray kinds = xml(
        "<key>Integer</key><integer>17</integer><key>Real</key><real>1.5</real><key>True</key>"
        "<true/><key>Date</key><date>2020-01-02T00:00:00Z</date><key>Data</key><data>YWJj</data>"
        "<key>Array</key><array><string>value</string></array><key>Dictionary</key>"
        "<dict><key>Inner</key><string>value</string></dict><key>Empty</key><string></string>"
        "<key>Nothing</key><string/>"
        + entry);
    // The same, but for Nothing.
    const QByteArray binaryKinds = QByteArray::fromHex(
        "62706c6973743030d90102030405060708090a0b0c0d0e0f11131057496e7465676572545265616c5454"
        "727565544461746154446174655541727261795a44696374696f6e61727955456d707479534b65791011"
        "233ff800000000000009436162633341c1deb500000000a1105576616c7565d1121055496e6e65725008"
        "1b23282d32373d484e52545d5e626b6d73767c0000000000000101000000000000001400000000000000"
        "00000000000000007d");

    const std::pair<const char*, const char*> rows[] = {{"a missing one", "Missing"},
                                                        {"no name", ""},
                                                        {"one of another case", "key"},
                                                        {"the beginning of one", "Ke"},
                                                        {"an integer", "Integer"},
                                                        {"a real number", "Real"},
                                                        {"a truth value", "True"},
                                                        {"a date", "Date"},
                                                        {"data", "Data"},
                                                        {"a list", "Array"},
                                                        {"a dictionary", "Dictionary"},
                                                        {"one that isn't at the top", "Inner"},
                                                        {"a value", "value"},
                                                        {"an empty text", "Empty"},
                                                        {"no text", "Nothing"}};
    for (const auto& [title, key] : rows) {
        QTest::addRow("XML: %s", title) << kinds << QString::fromLatin1(key);
        QTest::addRow("binary: %s", title) << binaryKinds << QString::fromLatin1(key);
    }
}

void tst_PropertyList::otherEntriesGiveNothing()
{
    QFETCH(QByteArray, content);
    QFETCH(QString, key);
    QCOMPARE(textIn(content), QStringLiteral("value"));

    QCOMPARE(textIn(content, key), QString());
}

void tst_PropertyList::damagedFilesGiveNothing_data()
{
    QTest::addColumn<QByteArray>("content");

    const auto addRow = [](const char* title, const QByteArray& content) {
        QTest::newRow(title) << content;
    };
    addRow("nothing", "");
    addRow("a line feed", "\n");
    addRow("a zero byte", QByteArray(1, '\0'));
    addRow("zero bytes", QByteArray(1000, '\0'));
    addRow("something else", "Key = value\n");
    addRow("another mark-up", "<html><body>Key</body></html>");
    addRow("an opening sign", "<");
    addRow("opening signs", QByteArray(100000, '<'));
    addRow("JSON lists one in another", QByteArray(100000, '['));
    addRow("JSON dictionaries one in another", QByteArray("{\"Key\":").repeated(18000));
    addRow("lists of an older form one in another", QByteArray(100000, '('));
    addRow("the entry as JSON", "{\"Key\": \"value\"}\n");
    addRow("text before mark-up", "text " + xml(entry));

    addRow("XML: no list", "<plist version=\"1.0\"></plist>");
    addRow("XML: a list at the top",
           "<plist><array><string>Key</string><string>value</string></array></plist>");
    addRow("XML: a text at the top", "<plist><string>Key</string></plist>");
    addRow("XML: a key without a value", xml("<key>Key</key>"));
    addRow("XML: a value without a key", xml("<string>Key</string>"));
    addRow("XML: another end", xml("<key>Key</key><string>value</key>"));
    addRow("XML: an unknown entity", xml("<key>Key</key><string>&a;</string>"));
    addRow("XML: an entity without an end", xml("<key>Key</key><string>value&amp</string>"));
    addRow("XML: a zero character", xml("<key>Key</key><string>&#0;</string>"));
    addRow("XML: a comment without an end", xml("<!-- " + entry));
    addRow("XML: a document type with a declaration of its own",
           "<!DOCTYPE plist [<!ENTITY a \"value\">]>\n<plist><dict>" + entry + "</dict></plist>");
    addRow("XML: a document type with no declaration between its brackets",
           "<?xml version=\"1.0\"?>\n<!DOCTYPE plist SYSTEM \"a\" []>\n<plist><dict>" + entry
               + "</dict></plist>");
    addRow("XML: lists 200 deep", deepXml(200));
    addRow("XML: lists 5,000 deep", deepXml(5000));
    addRow("XML: lists 3,000 deep between comments that close them",
           xml("<key>Deep</key>" + QByteArray("<array><!--</array>-->").repeated(3000)
               + QByteArray("</array>").repeated(3000) + entry));
    addRow("XML: lists 100,000 deep", deepXml(100000));
    addRow("XML: lists that never end", "<plist>" + QByteArray("<array>").repeated(18000));
    addRow("XML: dictionaries that never end",
           "<plist>" + QByteArray("<dict><key>a</key>").repeated(7000));

    addRow("binary: the first bytes only", "bplist00");
    addRow("binary: no object", binary({}));
    addRow("binary: a list at the top", binary({array({1, 2}), text("Key"), text("value")}));
    addRow("binary: a text at the top", binary({text("Key")}));
    addRow("binary: lists 200 deep", deepBinary(200));
    addRow("binary: lists 15,000 deep", deepBinary(15000));
    addRow("binary: a dictionary in itself",
           binary({dictionary({1, 2}, {2, 0}), text("Key"), text("value")}));
    addRow("binary: a list in itself",
           binary({dictionary({1, 2}, {2, 3}), text("Key"), text("value"), array({3})}));
    addRow(
        "binary: two lists in each other",
        binary({dictionary({1, 2}, {2, 3}), text("Key"), text("value"), array({4}), array({3})}));
    addRow("binary: a dictionary as its own key",
           binary({dictionary({1, 0}, {2, 2}), text("Key"), text("value")}));
    addRow("binary: a list as a key",
           binary({dictionary({3, 1}, {2, 2}), text("Key"), text("value"), array({3})}));
    QList<QByteArray> doubling = {dictionary({1, 2}, {2, 3}), text("Key"), text("value")};
    for (int i = 0; i < 60; ++i)
        doubling << array({doubling.size() + 1, doubling.size() + 1});
    doubling << array({});
    addRow("binary: lists that hold the next one twice each", binary(doubling));
    QList<QByteArray> sets = {dictionary({1, 2}, {2, 3}), text("Key"), text("value")};
    for (int i = 0; i < 60; ++i)
        sets << char(0xC2) + references({sets.size() + 1, sets.size() + 1});
    sets << array({});
    addRow("binary: sets that hold the next one twice each", binary(sets));

    addRow("binary: a text of 60,000 letters that is referred to 63,000 times",
           repeatedBinary(longObject(5, 60000, QByteArray(60000, 'x')), 63000));
    addRow("binary: data of 60,000 bytes that is referred to 100 times",
           repeatedBinary(longObject(4, 60000, QByteArray(60000, 'x')), 100));
    addRow("binary: a text of 40,000 letters in UTF-16 that is referred to 100 times",
           repeatedBinary(longObject(6, 40000, QByteArray("\x65\xE5").repeated(40000)), 100));

    addRow("binary: a reference to a missing object",
           binary({dictionary({1, 2}, {2, 9}), text("Key"), text("value")}));
    addRow("binary: a count that goes beyond the file",
           binary({QByteArray("\xDF\x12\x7F\xFF\xFF\xFF"), text("Key"), text("value")}));
    addRow("binary: a count below nothing",
           binary({"\xDF\x13" + QByteArray(8, '\xFF'), text("Key"), text("value")}));
    addRow("binary: a count that isn't a number",
           binary({"\xDF\x53" + references({1, 2}), text("Key"), text("value")}));
    addRow("binary: a count of sixteen bytes",
           binary({"\xDF\x14" + QByteArray(15, '\0') + '\1' + references({1, 2}), text("Key"),
                   text("value")}));
    addRow("binary: a text that goes beyond the file",
           binary({dictionary({1}, {2}), text("Key"), QByteArray("\x5F\x12\x7F\xFF\xFF\xFF")}));
    addRow("binary: a text longer than any",
           binary({dictionary({1}, {2}), text("Key"), "\x5F\x13" + QByteArray(8, '\xFF')}));
    QCOMPARE(textIn(withTrailer([](Trailer&) {})), QStringLiteral("value"));
    addRow("binary: offsets of no width", withTrailer([](Trailer& t) { t.offsetWidth = 0; }));
    addRow("binary: offsets wider than a number",
           withTrailer([](Trailer& t) { t.offsetWidth = 200; }));
    addRow("binary: references of no width", withTrailer([](Trailer& t) { t.referenceWidth = 0; }));
    addRow("binary: references wider than a number",
           withTrailer([](Trailer& t) { t.referenceWidth = 200; }));
    addRow("binary: more objects than bytes",
           withTrailer([](Trailer& t) { t.objects = quint64(1) << 40; }));
    addRow("binary: as many objects as there are numbers",
           withTrailer([](Trailer& t) { t.objects = ~quint64(0); }));
    addRow("binary: a missing top object", withTrailer([](Trailer& t) { t.top = 3; }));
    addRow("binary: a top object beyond all numbers",
           withTrailer([](Trailer& t) { t.top = ~quint64(0); }));
    addRow("binary: offsets beyond the file", withTrailer([](Trailer& t) { t.offsets = 1000000; }));
    addRow("binary: offsets at the end of all numbers",
           withTrailer([](Trailer& t) { t.offsets = ~quint64(0) - 3; }));
    addRow("binary: offsets in the end of the file",
           withTrailer([](Trailer& t) { t.offsets += 12; }));
}

void tst_PropertyList::damagedFilesGiveNothing()
{
    QFETCH(QByteArray, content);

    QCOMPARE(textIn(content), QString());
}

/// There is no parser for it here.
void tst_PropertyList::olderFormGivesNothing()
{
    QCOMPARE(textIn("{ Key = value; }\n"), QString());
}

void tst_PropertyList::truncatedFiles_data()
{
    QTest::addColumn<QByteArray>("content");
    QTest::addColumn<int>("needed"); ///< bytes

    const QByteArray unadorned = "<plist><dict>" + entry + "</dict>";
    QTest::newRow("XML") << unadorned << unadorned.size();
    const QByteArray list = deepBinary(3);
    QTest::newRow("binary") << list << list.size();
}

void tst_PropertyList::truncatedFiles()
{
    QFETCH(QByteArray, content);
    QFETCH(int, needed);

    QCOMPARE(textIn(content), QStringLiteral("value"));
    for (int size = 0; size < needed; ++size)
        QCOMPARE(textIn(content.left(size)), QString());
}

void tst_PropertyList::changedBytes_data()
{
    QTest::addColumn<QByteArray>("content");

    QTest::newRow("XML") << QByteArray("<plist><dict><key>Key</key><string>value</string></dict>");
    QTest::newRow("binary") << binary({dictionary({1, 3}, {2, 4}), text("Key"), text("value"),
                                       text("List"), array({1, 5}), dictionary({3}, {2})});
}

/// A wrong byte may change the text, but it may do no harm.
void tst_PropertyList::changedBytes()
{
    QFETCH(QByteArray, content);

    for (int place = 0; place < content.size(); ++place) {
        for (const char byte : {'\x00', '\x01', '\x0F', '\x13', '\x5F', '\x7F', '\x80', '\xA5',
                                '\xC1', '\xD2', '\xDF', '\xFF', '<', '/', '&'}) {
            QByteArray changed = content;
            changed[place] = byte;
            QVERIFY(textIn(changed).size() <= content.size());
        }
    }
}

void tst_PropertyList::sizeHasALimit_data()
{
    QTest::addColumn<int>("size");
    QTest::addColumn<QString>("expected");

    QTest::newRow("128 KiB are read") << 128 * 1024 << "value";
    QTest::newRow("a byte more isn't") << 128 * 1024 + 1 << "";
    QTest::newRow("ten times as much isn't") << 1280 * 1024 << "";
}

void tst_PropertyList::sizeHasALimit()
{
    QFETCH(int, size);
    QFETCH(QString, expected);
    const QByteArray frame = xml(entry + "<!---->");

    const QByteArray content = xml(entry + "<!--" + QByteArray(size - frame.size(), 'x') + "-->");
    QCOMPARE(content.size(), size);

    QCOMPARE(textIn(content), expected);
}

void tst_PropertyList::whatIsNoReadableFileGivesNothing_data()
{
    QTest::addColumn<QString>("name");

    QTest::newRow("a missing file") << "missing";
    QTest::newRow("a file below a file") << "Info.plist/Info.plist";
    QTest::newRow("a folder") << "folder";
    QTest::newRow("a pipe that nobody writes to") << "pipe";
    QTest::newRow("a file that mustn't be read") << "unreadable";
    QTest::newRow("a link to nothing") << "dangling";
    QTest::newRow("a file of three GiB") << "huge";
}

void tst_PropertyList::whatIsNoReadableFileGivesNothing()
{
    QFETCH(QString, name);
    write("Info.plist", xml(entry));
    QVERIFY(QDir(m_folder->path()).mkdir(QStringLiteral("folder")));
    QCOMPARE(mkfifo(QFile::encodeName(path("pipe")).constData(), 0600), 0);
    QVERIFY(QFile::setPermissions(write("unreadable", xml(entry)), QFile::WriteOwner));
    QVERIFY(QFile::link(QStringLiteral("nothing"), path("dangling")));
    QVERIFY(QFile::resize(write("huge", xml(entry)), qint64(3) << 30));

    QCOMPARE(propertyListText(m_folder->filePath(name), QStringLiteral("Key")), QString());
}

void tst_PropertyList::linkIsFollowed()
{
    QVERIFY(QFile::link(write("Info ä.plist", xml(entry)), path("link")));

    QCOMPARE(propertyListText(path("link"), QStringLiteral("Key")), QStringLiteral("value"));
}

int main(int argc, char* argv[])
{
    if (!takeOrdinaryFileRights())
        qFatal("the permissions of files don't hold for this process");
    QCoreApplication application(argc, argv);
    tst_PropertyList test;
    return QTest::qExec(&test, argc, argv);
}

#include "tst_PropertyList.moc"
