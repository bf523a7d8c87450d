#include "CurrentFolder.h"
#include "Files.h"
#include "MessageCounter.h"
#include "OrdinaryFileRights.h"
#include "RecordingLogger.h"
#include "Settings.h"
#include "SharedUtils.h"
#include "TemporarySettings.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QRegularExpression>
#include <QTemporaryDir>
#include <QtTest>

#include <algorithm>
#include <atomic>
#include <functional>
#include <thread>
#include <vector>

#include <sys/stat.h>

using namespace VEK_NAMESPACE;

namespace {

const QString identifier = QStringLiteral("0a1b2c3d-4e5f-4678-9abc-def012345678");

bool write(const QString& path, const QByteArray& bytes)
{
    QFile file(path);
    return QDir().mkpath(QFileInfo(path).path()) && file.open(QIODevice::WriteOnly)
        && file.write(bytes) == bytes.size();
}

/// In the persistent settings; an invalid value removes the key.
void store(const QString& key, const QVariant& value)
{
    CSettings settings(nullptr, true);
    if (value.isValid())
        settings.setValue(key, value);
    else
        settings.remove(key);
}

QVariant stored(const QString& key)
{
    return CSettings(nullptr, true).value(key);
}

/// An overlay that is installed for its life.
class Overlay : public CTemporarySettings
{
public:
    Overlay()
        : CTemporarySettings(nullptr)
    {
        CSettings::setTemporarySettings(*this);
    }

    QByteArray onDisk() const { return readFile(tempSettingsPath()); }
};

/// An environment variable with another value while it lives.
class Variable
{
public:
    Variable(const char* name, const QString& value)
        : m_name(name)
        , m_previous(qgetenv(name))
    {
        qputenv(m_name, QFile::encodeName(value));
    }
    ~Variable() { qputenv(m_name, m_previous); }

private:
    Q_DISABLE_COPY(Variable)

    const char* const m_name;
    const QByteArray m_previous;
};

/// The home of a user while it lives, with the place of the identifier file.
class Home
{
public:
    Home()
        : m_variable("HOME", m_dir.path())
    {}
    ~Home()
    {
        QFile::setPermissions(path(), QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
        QFile::setPermissions(folder(), QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
    }

    QString path() const { return m_dir.path(); }
    QString folder() const { return path() + "/Library/Application Support/Vek Labs"; }
    QString file() const { return folder() + "/VekUserID"; }

private:
    Q_DISABLE_COPY(Home)

    const QTemporaryDir m_dir;
    const Variable m_variable;
};

bool isNewIdentifier(const QString& text)
{
    static const QRegularExpression form(
        "^[0-9a-f]{8}-[0-9a-f]{4}-4[0-9a-f]{3}-[89ab][0-9a-f]{3}-[0-9a-f]{12}$");
    return form.match(text).hasMatch() && text != identifier;
}

/// The program CrashSender, alone in a folder of its own.
class CrashSender
{
public:
    explicit CrashSender(const QByteArray& script)
    {
        if (!write(path("CrashSender"), "#!/bin/sh\n" + script)
            || !QFile::setPermissions(path("CrashSender"), QFile::ReadOwner | QFile::ExeOwner))
            qFatal("can't write the program");
    }

    QString folder() const { return m_dir.path(); }
    QString path(const char* name) const { return m_dir.filePath(QLatin1String(name)); }

private:
    Q_DISABLE_COPY(CrashSender)

    const QTemporaryDir m_dir;
};

using Read = std::function<QVariant()>;
using Step = std::function<void()>;

} // namespace

Q_DECLARE_METATYPE(Read)
Q_DECLARE_METATYPE(Step)

class tst_SharedUtils : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void cleanup();

    void readersAndTheirKeys_data();
    void readersAndTheirKeys();
    void writersAndTheirKeys_data();
    void writersAndTheirKeys();
    void allKeysStandAtTheTopLevel();
    void readersUnderAnOverlay_data() { readersAndTheirKeys_data(); }
    void readersUnderAnOverlay();
    void writersUnderAnOverlay_data() { writersAndTheirKeys_data(); }
    void writersUnderAnOverlay();
    void nothingIsRemembered();

    void theFirstLaunchEndsOnce();
    void anyTextIsAMode_data();
    void anyTextIsAMode();
    void theCounterOfTheLastModeGrows_data();
    void theCounterOfTheLastModeGrows();
    void withoutAModeTheBareKeyGrows();
    void eachModeHasItsCounter();
    void anUnderlyingCounterContinuesInTheOverlay();
    void aResetRemovesTheKey();
    void aResetUnderAnOverlayLeavesThePersistentCounter();

    void theIdentifierIsMadeOnce();
    void anIdentifierFileIsRead_data();
    void anIdentifierFileIsRead();
    void aDamagedIdentifierFileIsReplaced_data();
    void aDamagedIdentifierFileIsReplaced();
    void aReadOnlyIdentifierFileIsRead();
    void anUnreadableIdentifierFileIsReplaced();
    void aLinkToAnIdentifierFileIsFollowed();
    void aDanglingLinkLeadsToTheNewFile();
    void theIdentifierFolderIsMade();
    void theIdentifierIsReadEachTime();
    void theOverlayDoesNotHoldTheIdentifier();
    void anIdentifierThatCannotBeWrittenIsReturned_data();
    void anIdentifierThatCannotBeWrittenIsReturned();
    void aPipeInPlaceOfTheIdentifierFileIsLeftAlone_data();
    void aPipeInPlaceOfTheIdentifierFileIsLeftAlone();
    void withoutALoggerAFailedWriteGoesUnreported();
    void identifiersMadeAtOnceLeaveOneFile();

    void theCrashSenderIsFoundAndAwaited();
    void anEndOfTheCrashSenderIsIgnored_data();
    void anEndOfTheCrashSenderIsIgnored();
    void aMissingCrashSenderIsIgnored_data();
    void aMissingCrashSenderIsIgnored();

private:
    const QTemporaryDir m_configurationHome;
    const QString m_file = m_configurationHome.path() + "/Vek Labs/krnv3/Data.plist";
};

void tst_SharedUtils::initTestCase()
{
    // Before the first use of settings, which settles their place.
    qputenv("XDG_CONFIG_HOME", QFile::encodeName(m_configurationHome.path()));
    QVERIFY(takeOrdinaryFileRights());
    store("k", 1);
    QCOMPARE(readFile(m_file), QByteArray("[General]\nk=1\n"));
    cleanup();
}

void tst_SharedUtils::cleanup()
{
    CSettings::removeTemporarySettings();
    CSettings().remove(QString());
    QCOMPARE(readFile(m_file), QByteArray());
}

void tst_SharedUtils::readersAndTheirKeys_data()
{
    QTest::addColumn<Read>("read");
    QTest::addColumn<QString>("key");
    QTest::addColumn<QVariant>("value");
    QTest::addColumn<QVariant>("expected");
    QTest::addColumn<QVariant>("expectedWithoutTheKey");
    QTest::addColumn<bool>("followsTheOverlay");

    const auto row = [](const char* name, const Read& read, const char* key, const QVariant& value,
                        const QVariant& expected, const QVariant& expectedWithoutTheKey) {
        QTest::newRow(name) << read << key << value << expected << expectedWithoutTheKey << true;
    };
    const auto persistentRow = [](const char* name, const Read& read, const char* key,
                                  const QVariant& value, const QVariant& expected,
                                  const QVariant& expectedWithoutTheKey) {
        QTest::newRow(name) << read << key << value << expected << expectedWithoutTheKey << false;
    };

    const Read first = isFirstLaunch;
    row("first launch: 1", first, "app_launched", 1, false, true);
    row("first launch: 0", first, "app_launched", 0, false, true);
    row("first launch: false", first, "app_launched", false, false, true);
    row("first launch: an empty text", first, "app_launched", "", false, true);
    row("first launch: a text", first, "app_launched", "text", false, true);

    const Read mode = getLastLaunchMode;
    row("mode: a text", mode, "app_launchMode", "PS", "PS", "");
    row("mode: any text", mode, "app_launchMode", QString::fromUtf8("größe / =写"),
        QString::fromUtf8("größe / =写"), "");
    row("mode: a number", mode, "app_launchMode", 7, "7", "");

    const Read counter = [] { return crashCounterForPlugin("PS"); };
    row("counter: a number", counter, "crashCounter_PS", 7, 7, 0);
    row("counter: a number as text", counter, "crashCounter_PS", "7", 7, 0);
    row("counter: a negative number", counter, "crashCounter_PS", -7, -7, 0);
    row("counter: a text", counter, "crashCounter_PS", "text", 0, 0);
    row("counter: an empty text", counter, "crashCounter_PS", "", 0, 0);
    row("counter: another mode", counter, "crashCounter_LR", 7, 0, 0);
    row("counter: no mode", Read([] { return crashCounterForPlugin(QString()); }), "crashCounter_",
        7, 7, 0);

    const Read reseller = getResellerID;
    row("reseller: a text", reseller, "resellerId", "acme", "acme", "vek");
    row("reseller: an empty text", reseller, "resellerId", "", "", "vek");
    row("reseller: the placeholder", reseller, "resellerId", "VEK_RESELLER_ID_PLACEHOLDER", "vek",
        "vek");
    row("reseller: the placeholder in another case", reseller, "resellerId",
        "vek_reseller_id_placeholder", "vek_reseller_id_placeholder", "vek");
    row("reseller: more than the placeholder", reseller, "resellerId",
        "VEK_RESELLER_ID_PLACEHOLDER ", "VEK_RESELLER_ID_PLACEHOLDER ", "vek");

    const Read action = useActionSave;
    persistentRow("action: 0 as text", action, "UseActionSave", "0", false, true);
    persistentRow("action: 0", action, "UseActionSave", 0, false, true);
    persistentRow("action: false", action, "UseActionSave", false, true, true);
    persistentRow("action: false as text", action, "UseActionSave", "false", true, true);
    persistentRow("action: 1", action, "UseActionSave", "1", true, true);
    persistentRow("action: an empty text", action, "UseActionSave", "", true, true);
    persistentRow("action: two zeros", action, "UseActionSave", "00", true, true);

    const Read statistic = isStatisticSent;
    row("statistic: 0 as text", statistic, "VekSendStat", "0", false, true);
    row("statistic: 0", statistic, "VekSendStat", 0, false, true);
    row("statistic: 1", statistic, "VekSendStat", "1", true, true);
    row("statistic: an empty text", statistic, "VekSendStat", "", true, true);
    row("statistic: false", statistic, "VekSendStat", "false", true, true);
    row("statistic: two zeros", statistic, "VekSendStat", "00", true, true);
    row("statistic: 0 of the reports", statistic, "VekSentCrashReport", "0", true, true);

    const Read reports = crashReportSendingAllowed;
    row("reports: 0 as text", reports, "VekSentCrashReport", "0", false, true);
    row("reports: 0", reports, "VekSentCrashReport", 0, false, true);
    row("reports: 1", reports, "VekSentCrashReport", "1", true, true);
    row("reports: an empty text", reports, "VekSentCrashReport", "", true, true);
    row("reports: false", reports, "VekSentCrashReport", "false", true, true);
    row("reports: a blank behind it", reports, "VekSentCrashReport", "0 ", true, true);
    row("reports: 0 of the statistic", reports, "VekSendStat", "0", true, true);
}

void tst_SharedUtils::readersAndTheirKeys()
{
    QFETCH(Read, read);
    QFETCH(QString, key);
    QFETCH(QVariant, value);
    QFETCH(QVariant, expected);
    QFETCH(QVariant, expectedWithoutTheKey);

    QCOMPARE(read(), expectedWithoutTheKey);
    QCOMPARE(readFile(m_file), QByteArray());
    store(key, value);
    QCOMPARE(read(), expected);
    store(key, QVariant());
    QCOMPARE(read(), expectedWithoutTheKey);
}

void tst_SharedUtils::writersAndTheirKeys_data()
{
    QTest::addColumn<Step>("change");
    QTest::addColumn<QString>("key");
    QTest::addColumn<QVariant>("expected");
    QTest::addColumn<QByteArray>("expectedFile");

    const auto row = [](const char* name, const Step& change, const char* key,
                        const QVariant& expected, const char* expectedFile) {
        QTest::newRow(name) << change << key << expected << QByteArray(expectedFile);
    };
    row("not the first launch", setNotFirstLaunch, "app_launched", 1,
        "[General]\napp_launched=1\n");
    row(
        "a mode", [] { setLastLaunchMode("PS"); }, "app_launchMode", "PS",
        "[General]\napp_launchMode=PS\n");
    row("a crash", incrementCrashCounter, "crashCounter_", 1, "[General]\ncrashCounter_=1\n");
    row(
        "a reseller", [] { setResellerID("acme"); }, "resellerId", "acme",
        "[General]\nresellerId=acme\n");
    row(
        "the placeholder of a reseller", [] { setResellerID("VEK_RESELLER_ID_PLACEHOLDER"); },
        "resellerId", "VEK_RESELLER_ID_PLACEHOLDER",
        "[General]\nresellerId=VEK_RESELLER_ID_PLACEHOLDER\n");
    row(
        "statistic on", [] { setStatisticSent(true); }, "VekSendStat", "1",
        "[General]\nVekSendStat=1\n");
    row(
        "statistic off", [] { setStatisticSent(false); }, "VekSendStat", "0",
        "[General]\nVekSendStat=0\n");
    row(
        "reports on", [] { allowCrashReportSending(true); }, "VekSentCrashReport", "1",
        "[General]\nVekSentCrashReport=1\n");
    row(
        "reports off", [] { allowCrashReportSending(false); }, "VekSentCrashReport", "0",
        "[General]\nVekSentCrashReport=0\n");
}

void tst_SharedUtils::writersAndTheirKeys()
{
    QFETCH(Step, change);
    QFETCH(QString, key);
    QFETCH(QVariant, expected);
    QFETCH(QByteArray, expectedFile);

    change();
    QCOMPARE(readFile(m_file), expectedFile);
    QCOMPARE(stored(key), expected);
    QCOMPARE(stored(key).typeName(), expected.typeName());
}

void tst_SharedUtils::allKeysStandAtTheTopLevel()
{
    setNotFirstLaunch();
    setLastLaunchMode("LR");
    incrementCrashCounter();
    setResellerID("acme");
    setStatisticSent(false);
    allowCrashReportSending(true);
    setLoggerEnabled(true);
    setLogLevel("E");
    QCOMPARE(readFile(m_file),
             QByteArray("[General]\n"
                        "VekSendStat=0\n"
                        "VekSentCrashReport=1\n"
                        "app_launchMode=LR\n"
                        "app_launched=1\n"
                        "crashCounter_LR=1\n"
                        "loggerEnabled=1\n"
                        "loggerLevel=E\n"
                        "resellerId=acme\n"));
}

void tst_SharedUtils::readersUnderAnOverlay()
{
    QFETCH(Read, read);
    QFETCH(QString, key);
    QFETCH(QVariant, value);
    QFETCH(QVariant, expected);
    QFETCH(QVariant, expectedWithoutTheKey);
    QFETCH(bool, followsTheOverlay);

    {
        Overlay overlay;
        overlay.setValue(key, value);
        QCOMPARE(read(), followsTheOverlay ? expected : expectedWithoutTheKey);
    }
    QCOMPARE(read(), expectedWithoutTheKey);
    store(key, value);
    const Overlay overlay;
    QCOMPARE(read(), followsTheOverlay ? expectedWithoutTheKey : expected);
}

void tst_SharedUtils::writersUnderAnOverlay()
{
    QFETCH(Step, change);
    QFETCH(QByteArray, expectedFile);

    const Overlay overlay;
    change();
    QCOMPARE(overlay.onDisk(), expectedFile);
    QCOMPARE(readFile(m_file), QByteArray());
}

void tst_SharedUtils::nothingIsRemembered()
{
    setLastLaunchMode("PS");
    setNotFirstLaunch();
    incrementCrashCounter();
    setResellerID("acme");
    setStatisticSent(false);
    allowCrashReportSending(false);
    CSettings().remove(QString());

    QVERIFY(isFirstLaunch());
    QCOMPARE(getLastLaunchMode(), QString());
    QCOMPARE(crashCounterForPlugin("PS"), 0);
    QCOMPARE(getResellerID(), QStringLiteral("vek"));
    QVERIFY(isStatisticSent());
    QVERIFY(crashReportSendingAllowed());
}

void tst_SharedUtils::theFirstLaunchEndsOnce()
{
    QVERIFY(isFirstLaunch());
    QVERIFY(isFirstLaunch());
    setNotFirstLaunch();
    QVERIFY(!isFirstLaunch());
    setNotFirstLaunch();
    QVERIFY(!isFirstLaunch());
}

void tst_SharedUtils::anyTextIsAMode_data()
{
    QTest::addColumn<QString>("mode");

    QTest::newRow("alone") << "Standalone";
    QTest::newRow("LR") << "LR";
    QTest::newRow("PS") << "PS";
    QTest::newRow("AP") << "AP";
    QTest::newRow("another") << "another mode";
    QTest::newRow("not ASCII") << QString::fromUtf8("größe 写");
    QTest::newRow("with a separator") << "PS/CC";
    QTest::newRow("with an equals sign") << "PS=1";
    QTest::newRow("empty") << "";
}

void tst_SharedUtils::anyTextIsAMode()
{
    QFETCH(QString, mode);

    setLastLaunchMode("before");
    setLastLaunchMode(mode);
    QCOMPARE(getLastLaunchMode(), mode);
    incrementCrashCounter();
    incrementCrashCounter();
    QCOMPARE(crashCounterForPlugin(mode), 2);
    QCOMPARE(stored("crashCounter_" + mode).toInt(), 2);
    QCOMPARE(crashCounterForPlugin("before"), 0);
    crashCounterReset(mode);
    QVERIFY(!CSettings().contains("crashCounter_" + mode));
}

void tst_SharedUtils::theCounterOfTheLastModeGrows_data()
{
    QTest::addColumn<QVariant>("before");
    QTest::addColumn<int>("expected");

    QTest::newRow("none") << QVariant() << 1;
    QTest::newRow("a number") << QVariant(41) << 42;
    QTest::newRow("a number as text") << QVariant("41") << 42;
    QTest::newRow("a negative number") << QVariant(-1) << 0;
    QTest::newRow("a text") << QVariant("many") << 1;
    QTest::newRow("a text that begins with a number") << QVariant("41 crashes") << 1;
    QTest::newRow("an empty text") << QVariant("") << 1;
    QTest::newRow("as many as there can be") << QVariant(2147483647) << 2147483647;
}

void tst_SharedUtils::theCounterOfTheLastModeGrows()
{
    QFETCH(QVariant, before);
    QFETCH(int, expected);

    setLastLaunchMode("PS");
    store("crashCounter_PS", before);
    incrementCrashCounter();
    QCOMPARE(stored("crashCounter_PS"), QVariant(expected));
    QCOMPARE(crashCounterForPlugin("PS"), expected);
}

void tst_SharedUtils::withoutAModeTheBareKeyGrows()
{
    incrementCrashCounter();
    incrementCrashCounter();
    QCOMPARE(readFile(m_file), QByteArray("[General]\ncrashCounter_=2\n"));
}

void tst_SharedUtils::eachModeHasItsCounter()
{
    setLastLaunchMode("PS");
    incrementCrashCounter();
    setLastLaunchMode("LR");
    incrementCrashCounter();
    incrementCrashCounter();
    QCOMPARE(crashCounterForPlugin("PS"), 1);
    QCOMPARE(crashCounterForPlugin("LR"), 2);
    QCOMPARE(crashCounterForPlugin("AP"), 0);

    crashCounterReset("LR");
    QCOMPARE(crashCounterForPlugin("PS"), 1);
    QCOMPARE(crashCounterForPlugin("LR"), 0);
    crashCounterReset(QString());
    QCOMPARE(crashCounterForPlugin("PS"), 1);
}

void tst_SharedUtils::anUnderlyingCounterContinuesInTheOverlay()
{
    setLastLaunchMode("PS");
    store("crashCounter_PS", 5);
    const Overlay overlay;
    // The overlay has neither the mode nor the count.
    incrementCrashCounter();
    setLastLaunchMode("PS");
    incrementCrashCounter();
    incrementCrashCounter();
    QCOMPARE(overlay.onDisk(),
             QByteArray("[General]\napp_launchMode=PS\ncrashCounter_=1\ncrashCounter_PS=2\n"));
    QCOMPARE(stored("crashCounter_PS").toInt(), 5);
}

void tst_SharedUtils::aResetRemovesTheKey()
{
    store("crashCounter_PS", 5);
    crashCounterReset("PS");
    QCOMPARE(crashCounterForPlugin("PS"), 0);
    QVERIFY(!CSettings().contains("crashCounter_PS"));
    crashCounterReset("PS");
    QCOMPARE(readFile(m_file), QByteArray());
}

void tst_SharedUtils::aResetUnderAnOverlayLeavesThePersistentCounter()
{
    store("crashCounter_PS", 5);
    {
        Overlay overlay;
        overlay.setValue("crashCounter_PS", 7);
        overlay.setValue("k", 1);
        crashCounterReset("PS");
        QCOMPARE(overlay.onDisk(), QByteArray("[General]\nk=1\n"));
        QCOMPARE(crashCounterForPlugin("PS"), 0);
    }
    QCOMPARE(crashCounterForPlugin("PS"), 5);
}

void tst_SharedUtils::theIdentifierIsMadeOnce()
{
    const Home home;
    const QString id = getUserID();
    QVERIFY2(isNewIdentifier(id), qPrintable(id));
    QCOMPARE(readFile(home.file()), id.toLatin1());
    QCOMPARE(getUserID(), id);
    QCOMPARE(readFile(home.file()), id.toLatin1());

    const Home another;
    QVERIFY(getUserID() != id);
}

void tst_SharedUtils::anIdentifierFileIsRead_data()
{
    QTest::addColumn<QByteArray>("bytes");

    const QByteArray identifierBytes = identifier.toLatin1();
    QTest::newRow("as it is written") << identifierBytes;
    QTest::newRow("a line break behind it") << identifierBytes + "\n";
    QTest::newRow("carriage return and line break") << identifierBytes + "\r\n";
    QTest::newRow("braces") << "{" + identifierBytes + "}";
    QTest::newRow("braces and a line break") << "{" + identifierBytes + "}\r\n";
    QTest::newRow("upper case") << identifierBytes.toUpper();
    QTest::newRow("upper case in braces") << "{" + identifierBytes.toUpper() + "}";
    QTest::newRow("six more bytes") << identifierBytes + "abcdef";
    QTest::newRow("seven more bytes") << identifierBytes + "abcdefg";
    QTest::newRow("a zero byte behind it") << identifierBytes + QByteArray("\0garbage", 8);
    QTest::newRow("many more bytes") << identifierBytes + QByteArray(100000, 'x');
}

void tst_SharedUtils::anIdentifierFileIsRead()
{
    QFETCH(QByteArray, bytes);

    const Home home;
    QVERIFY(write(home.file(), bytes));
    QCOMPARE(getUserID(), identifier);
    QCOMPARE(getUserID(), identifier);
    QCOMPARE(readFile(home.file()), bytes);
}

void tst_SharedUtils::aDamagedIdentifierFileIsReplaced_data()
{
    QTest::addColumn<QByteArray>("bytes");

    const QByteArray identifierBytes = identifier.toLatin1();
    QTest::newRow("empty") << QByteArray();
    QTest::newRow("a line break alone") << QByteArray("\n");
    QTest::newRow("short") << identifierBytes.left(35);
    QTest::newRow("garbage") << QByteArray("this is no identifier, but as long as one is");
    QTest::newRow("garbage and an identifier") << "garbage\n" + identifierBytes;
    QTest::newRow("a blank before it") << " " + identifierBytes;
    QTest::newRow("long garbage") << QByteArray(5000, 'x');
    QTest::newRow("bytes that aren't ASCII") << QByteArray(36, '\xc3');
    QTest::newRow("one digit that isn't one") << QByteArray("0a1b2c3d-4e5f-4678-9abc-def01234567g");
    QTest::newRow("without hyphens") << QByteArray("0a1b2c3d4e5f46789abcdef012345678");
    QTest::newRow("a zero byte first") << QByteArray(1, '\0') + identifierBytes;
    QTest::newRow("a zero byte inside")
        << identifierBytes.left(20) + QByteArray(1, '\0') + identifierBytes.mid(21);
    QTest::newRow("two bytes a character")
        << QByteArray(reinterpret_cast<const char*>(identifier.utf16()), 72);
    QTest::newRow("the nil identifier") << QByteArray("00000000-0000-0000-0000-000000000000");
    QTest::newRow("the nil identifier in braces")
        << QByteArray("{00000000-0000-0000-0000-000000000000}\n");
}

void tst_SharedUtils::aDamagedIdentifierFileIsReplaced()
{
    QFETCH(QByteArray, bytes);

    const Home home;
    QVERIFY(write(home.file(), bytes));
    RecordingLogger logger;
    const QString id = getUserID();
    QVERIFY2(isNewIdentifier(id), qPrintable(id));
    QCOMPARE(readFile(home.file()), id.toLatin1());
    QCOMPARE(getUserID(), id);
    QCOMPARE(logger.takeLines(), QStringList());
}

void tst_SharedUtils::aReadOnlyIdentifierFileIsRead()
{
    const Home home;
    QVERIFY(write(home.file(), identifier.toLatin1()));
    QVERIFY(QFile::setPermissions(home.file(), QFile::ReadOwner));
    QVERIFY(QFile::setPermissions(home.folder(), QFile::ReadOwner | QFile::ExeOwner));
    QCOMPARE(getUserID(), identifier);
}

void tst_SharedUtils::anUnreadableIdentifierFileIsReplaced()
{
    const Home home;
    QVERIFY(write(home.file(), identifier.toLatin1()));
    QVERIFY(QFile::setPermissions(home.file(), QFile::WriteOwner));
    const QString id = getUserID();
    QVERIFY2(isNewIdentifier(id), qPrintable(id));
    QVERIFY(QFile::setPermissions(home.file(), QFile::ReadOwner));
    QCOMPARE(readFile(home.file()), id.toLatin1());
}

void tst_SharedUtils::aLinkToAnIdentifierFileIsFollowed()
{
    const Home home;
    QVERIFY(write(home.path() + "/elsewhere", identifier.toLatin1()));
    QVERIFY(QDir().mkpath(home.folder()));
    QVERIFY(QFile::link(home.path() + "/elsewhere", home.file()));
    QCOMPARE(getUserID(), identifier);
}

void tst_SharedUtils::aDanglingLinkLeadsToTheNewFile()
{
    const Home home;
    QVERIFY(QDir().mkpath(home.folder()));
    QVERIFY(QFile::link(home.path() + "/elsewhere", home.file()));
    const QString id = getUserID();
    QVERIFY2(isNewIdentifier(id), qPrintable(id));
    QCOMPARE(readFile(home.path() + "/elsewhere"), id.toLatin1());
    QCOMPARE(getUserID(), id);
}

void tst_SharedUtils::theIdentifierFolderIsMade()
{
    const QTemporaryDir dir;
    const Variable home("HOME", dir.path() + QString::fromUtf8("/größe/home/"));
    const QString id = getUserID();
    QCOMPARE(
        readFile(dir.path()
                 + QString::fromUtf8("/größe/home/Library/Application Support/Vek Labs/VekUserID")),
        id.toLatin1());
}

void tst_SharedUtils::theIdentifierIsReadEachTime()
{
    const Home home;
    const QString id = getUserID();
    QVERIFY(write(home.file(), identifier.toLatin1()));
    QCOMPARE(getUserID(), identifier);
    QVERIFY(QFile::remove(home.file()));
    const QString another = getUserID();
    QVERIFY2(isNewIdentifier(another) && another != id, qPrintable(another));
}

void tst_SharedUtils::theOverlayDoesNotHoldTheIdentifier()
{
    const Home home;
    const Overlay overlay;
    const QString id = getUserID();
    QCOMPARE(readFile(home.file()), id.toLatin1());
    QVERIFY(overlay.onDisk() == "(no such file)" || overlay.onDisk().isEmpty());
    CSettings::removeTemporarySettings();
    QCOMPARE(getUserID(), id);
    QCOMPARE(readFile(m_file), QByteArray());
}

void tst_SharedUtils::anIdentifierThatCannotBeWrittenIsReturned_data()
{
    QTest::addColumn<Step>("obstruct");
    QTest::addColumn<QString>("error");

    const auto home = [] { return QFile::decodeName(qgetenv("HOME")); };
    const auto folder = [home] { return home() + "/Library/Application Support/Vek Labs"; };
    const QFile::Permissions readOnlyFolder = QFile::ReadOwner | QFile::ExeOwner;
    QTest::newRow("a read-only home")
        << Step([=] { QVERIFY(QFile::setPermissions(home(), readOnlyFolder)); })
        << "No such file or directory";
    QTest::newRow("a read-only folder") << Step([=] {
        QVERIFY(QDir().mkpath(folder()));
        QVERIFY(QFile::setPermissions(folder(), readOnlyFolder));
    }) << "Permission denied";
    QTest::newRow("a damaged read-only file") << Step([=] {
        QVERIFY(write(folder() + "/VekUserID", "garbage"));
        QVERIFY(QFile::setPermissions(folder() + "/VekUserID", QFile::ReadOwner));
    }) << "Permission denied";
    QTest::newRow("a file that may not be touched") << Step([=] {
        QVERIFY(write(folder() + "/VekUserID", identifier.toLatin1()));
        QVERIFY(QFile::setPermissions(folder() + "/VekUserID", {}));
    }) << "Permission denied";
    QTest::newRow("a folder in its place")
        << Step([=] { QVERIFY(QDir().mkpath(folder() + "/VekUserID")); }) << "Is a directory";
    QTest::newRow("a file in the folder's place")
        << Step([=] { QVERIFY(write(folder(), "bytes")); }) << "Not a directory";
    QTest::newRow("a link to a file in a missing folder") << Step([=] {
        QVERIFY(QDir().mkpath(folder()));
        QVERIFY(QFile::link(home() + "/missing/file", folder() + "/VekUserID"));
    }) << "No such file or directory";
}

void tst_SharedUtils::anIdentifierThatCannotBeWrittenIsReturned()
{
    QFETCH(Step, obstruct);
    QFETCH(QString, error);

    const Home home;
    obstruct();
    RecordingLogger logger;
    const QString first = getUserID();
    const QString second = getUserID();
    QVERIFY2(isNewIdentifier(first), qPrintable(first));
    QVERIFY2(isNewIdentifier(second), qPrintable(second));
    QVERIFY(first != second);
    const QString line = "D Error during writing user ID to file " + home.path()
        + "/Library/Application Support/Vek Labs/VekUserID : " + error;
    QCOMPARE(logger.takeLines(), QStringList({line, line}));
}

void tst_SharedUtils::aPipeInPlaceOfTheIdentifierFileIsLeftAlone_data()
{
    QTest::addColumn<QString>("pipe");

    QTest::newRow("a pipe") << "/Library/Application Support/Vek Labs/VekUserID";
    QTest::newRow("a link to a pipe") << "/pipe";
}

/// Nobody is at its other end, so that whoever opens it waits for ever.
void tst_SharedUtils::aPipeInPlaceOfTheIdentifierFileIsLeftAlone()
{
    QFETCH(QString, pipe);

    const Home home;
    const QByteArray path = QFile::encodeName(home.path() + pipe);
    QVERIFY(QDir().mkpath(home.folder()));
    QCOMPARE(mkfifo(path.constData(), 0600), 0);
    if (home.path() + pipe != home.file())
        QVERIFY(QFile::link(home.path() + pipe, home.file()));
    RecordingLogger logger;

    const QString id = getUserID();

    QVERIFY2(isNewIdentifier(id), qPrintable(id));
    struct stat status = {};
    QCOMPARE(lstat(path.constData(), &status), 0);
    QVERIFY(S_ISFIFO(status.st_mode));
    const QStringList lines = logger.takeLines();
    QCOMPARE(lines.size(), 1);
    QVERIFY2(lines.first().startsWith("D Error during writing user ID to file " + home.path()
                                      + "/Library/Application Support/Vek Labs/VekUserID : "),
             qPrintable(lines.first()));
}

void tst_SharedUtils::withoutALoggerAFailedWriteGoesUnreported()
{
    const Home home;
    QVERIFY(QDir().mkpath(home.file()));
    const MessageCounter messages;
    QVERIFY(isNewIdentifier(getUserID()));
    QCOMPARE(messages.count(), 0);
}

void tst_SharedUtils::identifiersMadeAtOnceLeaveOneFile()
{
    const Home home;
    std::vector<QString> made(8);
    std::atomic<int> missing{8};
    std::vector<std::thread> threads;
    threads.reserve(made.size());
    for (QString& own : made) {
        threads.emplace_back([&own, &missing] {
            --missing;
            while (missing > 0)
                std::this_thread::yield();
            own = getUserID();
        });
    }
    for (std::thread& thread : threads)
        thread.join();
    for (const QString& own : made)
        QVERIFY2(isNewIdentifier(own), qPrintable(own));
    const QString left = getUserID();
    QVERIFY(std::find(made.begin(), made.end(), left) != made.end());
    QCOMPARE(readFile(home.file()), left.toLatin1());
}

void tst_SharedUtils::theCrashSenderIsFoundAndAwaited()
{
    const CrashSender sender("cd \"$(dirname \"$0\")\"\n"
                             "echo \"started with $# arguments\" >started\n"
                             "read answer <answer\n"
                             "echo \"$answer\" >ended\n");
    QCOMPARE(mkfifo(QFile::encodeName(sender.path("answer")).constData(), 0600), 0);
    const Variable path("PATH", "/nowhere/at/all:" + sender.folder() + ":/usr/bin:/bin");

    std::atomic<bool> returned{false};
    std::thread thread([&returned] {
        startCrashSender();
        returned = true;
    });
    QTRY_COMPARE(readFile(sender.path("started")), QByteArray("started with 0 arguments\n"));
    const bool returnedEarly = returned;
    QFile answer(sender.path("answer"));
    const bool answered = answer.open(QIODevice::WriteOnly) && answer.write("answered\n") > 0;
    answer.close();
    thread.join();
    QVERIFY(answered);
    QVERIFY(!returnedEarly);
    QCOMPARE(readFile(sender.path("ended")), QByteArray("answered\n"));
}

void tst_SharedUtils::anEndOfTheCrashSenderIsIgnored_data()
{
    QTest::addColumn<QByteArray>("end");

    QTest::newRow("success") << QByteArray("exit 0\n");
    QTest::newRow("failure") << QByteArray("exit 3\n");
    QTest::newRow("a crash") << QByteArray("kill -KILL $$\n");
}

void tst_SharedUtils::anEndOfTheCrashSenderIsIgnored()
{
    QFETCH(QByteArray, end);

    const CrashSender sender("echo once >>\"$(dirname \"$0\")/runs\"\n" + end);
    const Variable path("PATH", sender.folder() + ":/usr/bin:/bin");
    RecordingLogger logger;
    const MessageCounter messages;
    startCrashSender();
    QCOMPARE(readFile(sender.path("runs")), QByteArray("once\n"));
    QCOMPARE(messages.count(), 0);
    QCOMPARE(logger.takeLines(), QStringList());
}

void tst_SharedUtils::aMissingCrashSenderIsIgnored_data()
{
    QTest::addColumn<bool>("executable");
    QTest::addColumn<QString>("searched");

    QTest::newRow("in the current folder only") << true << "/nowhere/at/all";
    QTest::newRow("not a program") << false << QString();
}

void tst_SharedUtils::aMissingCrashSenderIsIgnored()
{
    QFETCH(bool, executable);
    QFETCH(QString, searched);

    const CrashSender sender("echo once >>\"$(dirname \"$0\")/runs\"\n");
    if (!executable)
        QVERIFY(QFile::setPermissions(sender.path("CrashSender"), QFile::ReadOwner));
    const CurrentFolder current(sender.folder());
    const Variable path("PATH", searched.isEmpty() ? sender.folder() : searched);
    RecordingLogger logger;
    const MessageCounter messages;
    startCrashSender();
    QVERIFY(!QFileInfo::exists(sender.path("runs")));
    QCOMPARE(messages.count(), 0);
    QCOMPARE(logger.takeLines(), QStringList());
}

QTEST_GUILESS_MAIN(tst_SharedUtils)
#include "tst_SharedUtils.moc"
