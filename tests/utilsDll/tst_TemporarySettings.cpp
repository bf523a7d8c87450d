#include "CurrentFolder.h"
#include "MessageCounter.h"
#include "OrdinaryFileRights.h"
#include "RecordingLogger.h"
#include "Settings.h"
#include "TemporarySettings.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QRegularExpression>
#include <QScopedPointer>
#include <QTemporaryDir>
#include <QtTest>

#include <functional>

#include <unistd.h>

using namespace VEK_NAMESPACE;

namespace {

QByteArray contents(const QString& path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray("unreadable");
}

bool write(const QString& path, const QByteArray& bytes)
{
    QFile file(path);
    return file.open(QIODevice::WriteOnly) && file.write(bytes) == bytes.size();
}

QString folderOf(const QString& path)
{
    return QFileInfo(path).path();
}

/// Temporary folders can't be made while it lives, and nothing can be written in root's name.
class NoTemporaryFolder
{
public:
    NoTemporaryFolder()
    {
        qputenv("TMPDIR", "/nowhere/at/all");
        if (m_root && seteuid(65534) != 0)
            qFatal("can't give up root's rights");
    }
    ~NoTemporaryFolder()
    {
        if (m_root && seteuid(0) != 0)
            qFatal("can't take root's rights again");
        qputenv("TMPDIR", m_previous);
    }

private:
    Q_DISABLE_COPY(NoTemporaryFolder)

    const QByteArray m_previous = qgetenv("TMPDIR");
    const bool m_root = geteuid() == 0;
};

enum class DefaultFile
{
    Missing,
    Unreadable,
    Folder
};

using Step = std::function<void(CTemporarySettings&)>;

} // namespace

Q_DECLARE_METATYPE(DefaultFile)
Q_DECLARE_METATYPE(Step)

class tst_TemporarySettings : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();

    void theFileLiesInAFolderOfItsOwn();
    void itStartsEmptyWithoutADefaultFile();
    void everyChangeIsOnDiskAtOnce_data();
    void everyChangeIsOnDiskAtOnce();
    void valuesAndDefaultsAreRead();
    void arraysAreWrittenAndRead();
    void arraysWaitForASync();
    void changesFromOutsideAreReadAfterASync();

    void aSharedPathIsReportedAndNotUsed();
    void anEmptySharedPathBringsBackTheFile();

    void theDefaultFileLiesBesideTheLocation_data();
    void theDefaultFileLiesBesideTheLocation();
    void withoutALocationTheCurrentFolderIsSearched_data();
    void withoutALocationTheCurrentFolderIsSearched();
    void aDefaultFileThatCannotBeReadIsPassedOver_data();
    void aDefaultFileThatCannotBeReadIsPassedOver();
    void theDefaultFileIsNotChanged();
    void aReadOnlyDefaultFileGivesAStoreThatCanBeWritten();

    void twoObjectsHaveFoldersOfTheirOwn();
    void theNewestFileIsStillReportedWhenItIsGone();

    void destructionRemovesTheFolder_data();
    void destructionRemovesTheFolder();
    void theFolderIsGoneWhenDestroyedIsEmitted();

    void anInvalidFolderIsLoggedAndConstructionGoesOn();
    void withoutALoggerAnInvalidFolderGoesUnreported();
    void anOverlayWithAnInvalidFolderIsUsedAllTheSame();

    void theMetaObjectIsBare();

private:
    QTemporaryDir m_configurationHome;
};

void tst_TemporarySettings::initTestCase()
{
    qputenv("XDG_CONFIG_HOME", QFile::encodeName(m_configurationHome.path()));
    QVERIFY(takeOrdinaryFileRights());
}

void tst_TemporarySettings::theFileLiesInAFolderOfItsOwn()
{
    const CTemporarySettings settings(nullptr);
    const QString& path = settings.tempSettingsPath();
    const QRegularExpression form(
        QStringLiteral(
            "^%1/\\{[0-9a-f]{8}(-[0-9a-f]{4}){3}-[0-9a-f]{12}\\}\\.?[A-Za-z0-9]*/krnv3\\.ini$")
            .arg(QRegularExpression::escape(QDir::tempPath())));
    QVERIFY2(form.match(path).hasMatch(), qPrintable(path));
    QVERIFY(QFileInfo(folderOf(path)).isDir());
}

void tst_TemporarySettings::itStartsEmptyWithoutADefaultFile()
{
    const QTemporaryDir empty;
    const CurrentFolder folder(empty.path());
    RecordingLogger logger;
    const CTemporarySettings settings(nullptr);
    QVERIFY(!settings.contains(QStringLiteral("k")));
    QCOMPARE(settings.value(QStringLiteral("k")), QVariant());
    QCOMPARE(logger.takeLines(), QStringList());
}

void tst_TemporarySettings::everyChangeIsOnDiskAtOnce_data()
{
    QTest::addColumn<Step>("change");
    QTest::addColumn<QByteArray>("expected");

    QTest::newRow("setValue of a new key")
        << Step([](CTemporarySettings& settings) { settings.setValue(QStringLiteral("c"), 3); })
        << QByteArray("[General]\na=1\nc=3\n\n[g]\nb=2\n");
    QTest::newRow("setValue of an old key")
        << Step([](CTemporarySettings& settings) { settings.setValue(QStringLiteral("g/b"), 9); })
        << QByteArray("[General]\na=1\n\n[g]\nb=9\n");
    QTest::newRow("remove of a key")
        << Step([](CTemporarySettings& settings) { settings.remove(QStringLiteral("a")); })
        << QByteArray("[g]\nb=2\n");
    QTest::newRow("remove of a group")
        << Step([](CTemporarySettings& settings) { settings.remove(QStringLiteral("g")); })
        << QByteArray("[General]\na=1\n");
    QTest::newRow("clear") << Step([](CTemporarySettings& settings) { settings.clear(); })
                           << QByteArray();
}

void tst_TemporarySettings::everyChangeIsOnDiskAtOnce()
{
    QFETCH(Step, change);
    QFETCH(QByteArray, expected);

    CTemporarySettings settings(nullptr);
    settings.setValue(QStringLiteral("a"), 1);
    settings.setValue(QStringLiteral("g/b"), 2);
    QCOMPARE(contents(settings.tempSettingsPath()), QByteArray("[General]\na=1\n\n[g]\nb=2\n"));

    change(settings);
    QCOMPARE(contents(settings.tempSettingsPath()), expected);
}

void tst_TemporarySettings::valuesAndDefaultsAreRead()
{
    CTemporarySettings settings(nullptr);
    settings.setValue(QStringLiteral("k"), QStringLiteral("v"));
    QVERIFY(settings.contains(QStringLiteral("k")));
    QCOMPARE(settings.value(QStringLiteral("k")).toString(), QStringLiteral("v"));
    QCOMPARE(settings.value(QStringLiteral("k"), 7).toString(), QStringLiteral("v"));

    settings.remove(QStringLiteral("k"));
    QVERIFY(!settings.contains(QStringLiteral("k")));
    QCOMPARE(settings.value(QStringLiteral("k"), 7), QVariant(7));
}

void tst_TemporarySettings::arraysAreWrittenAndRead()
{
    CTemporarySettings settings(nullptr);
    settings.beginWriteArray(QStringLiteral("list"));
    for (int i = 0; i < 3; ++i) {
        settings.setArrayIndex(i);
        settings.setValue(QStringLiteral("k"), 10 * i);
    }
    settings.endArray();
    QCOMPARE(settings.value(QStringLiteral("list/size")).toInt(), 3);
    QCOMPARE(settings.value(QStringLiteral("list/3/k")).toInt(), 20);

    QCOMPARE(settings.beginReadArray(QStringLiteral("list")), 3);
    settings.setArrayIndex(1);
    QCOMPARE(settings.value(QStringLiteral("k")).toInt(), 10);
    settings.endArray();
    QCOMPARE(settings.beginReadArray(QStringLiteral("another")), 0);
    settings.endArray();

    settings.beginWriteArray(QStringLiteral("list"), 2);
    settings.endArray();
    QCOMPARE(settings.beginReadArray(QStringLiteral("list")), 2);
    settings.endArray();
}

void tst_TemporarySettings::arraysWaitForASync()
{
    CTemporarySettings settings(nullptr);
    settings.setValue(QStringLiteral("k"), 1);
    settings.beginWriteArray(QStringLiteral("list"), 2);
    settings.endArray();
    QCOMPARE(contents(settings.tempSettingsPath()), QByteArray("[General]\nk=1\n"));
    settings.sync();
    QCOMPARE(contents(settings.tempSettingsPath()),
             QByteArray("[General]\nk=1\n\n[list]\nsize=2\n"));
}

void tst_TemporarySettings::changesFromOutsideAreReadAfterASync()
{
    CTemporarySettings settings(nullptr);
    settings.setValue(QStringLiteral("k"), 1);
    QVERIFY(write(settings.tempSettingsPath(), "[General]\nk=1000\n"));
    settings.sync();
    QCOMPARE(settings.value(QStringLiteral("k")).toInt(), 1000);
}

void tst_TemporarySettings::aSharedPathIsReportedAndNotUsed()
{
    const QTemporaryDir shared;
    const QString sharedPath = shared.filePath(QStringLiteral("shared.ini"));
    CTemporarySettings settings(nullptr);
    const QString ownPath = settings.tempSettingsPath();
    settings.setValue(QStringLiteral("k"), 1);

    settings.setSharedSettingsPath(sharedPath);
    QCOMPARE(settings.tempSettingsPath(), sharedPath);
    QCOMPARE(settings.value(QStringLiteral("k")).toInt(), 1);
    settings.setValue(QStringLiteral("k"), 2);
    QCOMPARE(contents(ownPath), QByteArray("[General]\nk=2\n"));
    QVERIFY(!QFile::exists(sharedPath));
}

void tst_TemporarySettings::anEmptySharedPathBringsBackTheFile()
{
    CTemporarySettings settings(nullptr);
    const QString ownPath = settings.tempSettingsPath();
    settings.setSharedSettingsPath(QStringLiteral("/shared.ini"));
    settings.setSharedSettingsPath(QString());
    QCOMPARE(settings.tempSettingsPath(), ownPath);
}

void tst_TemporarySettings::theDefaultFileLiesBesideTheLocation_data()
{
    QTest::addColumn<QByteArray>("location");
    QTest::addColumn<bool>("found");

    // %1 is the default file's folder, and the current folder is the one above.
    QTest::newRow("a file that is there") << QByteArray("%1/neighbour") << true;
    QTest::newRow("a file that isn't") << QByteArray("%1/missing") << true;
    QTest::newRow("the default file itself")
        << QByteArray("%1/DefaultTemporarySettins.ini") << true;
    QTest::newRow("a folder with a separator") << QByteArray("%1/") << true;
    QTest::newRow("a folder without one") << QByteArray("%1") << false;
    QTest::newRow("a relative path") << QByteArray("defaults/missing") << true;
    QTest::newRow("a bare name") << QByteArray("missing") << false;
    QTest::newRow("a folder that isn't there") << QByteArray("%1/missing/file") << false;
}

void tst_TemporarySettings::theDefaultFileLiesBesideTheLocation()
{
    QFETCH(QByteArray, location);
    QFETCH(bool, found);

    const QTemporaryDir root;
    QVERIFY(QDir(root.path()).mkdir(QStringLiteral("defaults")));
    const QString defaults = root.filePath(QStringLiteral("defaults"));
    QVERIFY(write(defaults + QStringLiteral("/neighbour"), "[General]\nk=wrong\n"));
    QVERIFY(write(defaults + QStringLiteral("/DefaultTemporarySettins.ini"),
                  "[General]\nk=from the default file\n\n[g]\nn=2\n"));
    const CurrentFolder folder(root.path());

    location.replace("%1", defaults.toUtf8());
    const CTemporarySettings settings(location.constData());
    QCOMPARE(settings.value(QStringLiteral("k"), QStringLiteral("none")).toString(),
             found ? QStringLiteral("from the default file") : QStringLiteral("none"));
    QCOMPARE(settings.value(QStringLiteral("g/n"), 0).toInt(), found ? 2 : 0);
}

void tst_TemporarySettings::withoutALocationTheCurrentFolderIsSearched_data()
{
    QTest::addColumn<bool>("null");

    QTest::newRow("null") << true;
    QTest::newRow("empty") << false;
}

void tst_TemporarySettings::withoutALocationTheCurrentFolderIsSearched()
{
    QFETCH(bool, null);

    const QTemporaryDir root;
    QVERIFY(write(root.filePath(QStringLiteral("DefaultTemporarySettins.ini")),
                  "[General]\nk=from here\n"));
    const CurrentFolder folder(root.path());
    const CTemporarySettings settings(null ? nullptr : "");
    QCOMPARE(settings.value(QStringLiteral("k")).toString(), QStringLiteral("from here"));
}

void tst_TemporarySettings::aDefaultFileThatCannotBeReadIsPassedOver_data()
{
    QTest::addColumn<DefaultFile>("defaultFile");

    QTest::newRow("missing") << DefaultFile::Missing;
    QTest::newRow("unreadable") << DefaultFile::Unreadable;
    QTest::newRow("a folder of that name") << DefaultFile::Folder;
}

void tst_TemporarySettings::aDefaultFileThatCannotBeReadIsPassedOver()
{
    QFETCH(DefaultFile, defaultFile);

    const QTemporaryDir root;
    const QString path = root.filePath(QStringLiteral("DefaultTemporarySettins.ini"));
    if (defaultFile == DefaultFile::Folder)
        QVERIFY(QDir().mkdir(path));
    if (defaultFile == DefaultFile::Unreadable) {
        QVERIFY(write(path, "[General]\nk=unreadable\n"));
        QVERIFY(QFile::setPermissions(path, QFile::Permissions()));
    }
    const QByteArray location = root.filePath(QStringLiteral("any")).toUtf8();

    RecordingLogger logger;
    CTemporarySettings settings(location.constData());
    QCOMPARE(logger.takeLines(), QStringList());
    QVERIFY(!settings.contains(QStringLiteral("k")));
    settings.setValue(QStringLiteral("k"), 1);
    QCOMPARE(contents(settings.tempSettingsPath()), QByteArray("[General]\nk=1\n"));
}

void tst_TemporarySettings::theDefaultFileIsNotChanged()
{
    const QTemporaryDir root;
    const QString defaultFile = root.filePath(QStringLiteral("DefaultTemporarySettins.ini"));
    const QByteArray defaults = "; as delivered\n[General]\nk=1\n";
    QVERIFY(write(defaultFile, defaults));
    {
        CTemporarySettings settings(defaultFile.toUtf8().constData());
        settings.setValue(QStringLiteral("k"), 2);
        QCOMPARE(settings.value(QStringLiteral("k")).toInt(), 2);
        settings.clear();
    }
    QCOMPARE(contents(defaultFile), defaults);
}

void tst_TemporarySettings::aReadOnlyDefaultFileGivesAStoreThatCanBeWritten()
{
    const QTemporaryDir root;
    const QString defaultFile = root.filePath(QStringLiteral("DefaultTemporarySettins.ini"));
    QVERIFY(write(defaultFile, "[General]\nk=1\n"));
    QVERIFY(QFile::setPermissions(defaultFile, QFile::ReadOwner));

    CTemporarySettings settings(defaultFile.toUtf8().constData());
    const QFile::Permissions permissions = QFile::permissions(settings.tempSettingsPath());
    QVERIFY(permissions & QFile::WriteOwner);
    QCOMPARE(settings.value(QStringLiteral("k")).toInt(), 1);
    settings.setValue(QStringLiteral("k"), 2);
    QCOMPARE(contents(settings.tempSettingsPath()), QByteArray("[General]\nk=2\n"));
    QCOMPARE(contents(defaultFile), QByteArray("[General]\nk=1\n"));
}

void tst_TemporarySettings::twoObjectsHaveFoldersOfTheirOwn()
{
    CTemporarySettings older(nullptr);
    const QString olderPath = older.tempSettingsPath();
    CTemporarySettings newer(nullptr);
    const QString newerPath = newer.tempSettingsPath();
    QVERIFY(folderOf(olderPath) != folderOf(newerPath));
    QCOMPARE(older.tempSettingsPath(), newerPath);

    older.setValue(QStringLiteral("k"), QStringLiteral("older"));
    newer.setValue(QStringLiteral("k"), QStringLiteral("newer"));
    QCOMPARE(contents(olderPath), QByteArray("[General]\nk=older\n"));
    QCOMPARE(contents(newerPath), QByteArray("[General]\nk=newer\n"));
}

void tst_TemporarySettings::theNewestFileIsStillReportedWhenItIsGone()
{
    const CTemporarySettings older(nullptr);
    QString newerPath;
    {
        const CTemporarySettings newer(nullptr);
        newerPath = newer.tempSettingsPath();
    }
    QVERIFY(!QFile::exists(folderOf(newerPath)));
    QCOMPARE(older.tempSettingsPath(), newerPath);
}

void tst_TemporarySettings::destructionRemovesTheFolder_data()
{
    QTest::addColumn<Step>("use");

    QTest::newRow("without any use") << Step([](CTemporarySettings&) {});
    QTest::newRow("with a file") << Step(
        [](CTemporarySettings& settings) { settings.setValue(QStringLiteral("k"), 1); });
    QTest::newRow("after an array that wasn't synced") << Step([](CTemporarySettings& settings) {
        settings.beginWriteArray(QStringLiteral("list"), 2);
        settings.endArray();
    });
    QTest::newRow("within an array") << Step([](CTemporarySettings& settings) {
        settings.beginWriteArray(QStringLiteral("list"));
        settings.setArrayIndex(0);
        settings.setValue(QStringLiteral("k"), 1);
    });
    QTest::newRow("with other files in it") << Step([](CTemporarySettings& settings) {
        const QString folder = folderOf(settings.tempSettingsPath());
        QVERIFY(QDir(folder).mkdir(QStringLiteral("more")));
        QVERIFY(write(folder + QStringLiteral("/more/file"), "bytes"));
    });
    QTest::newRow("when it is gone already") << Step([](CTemporarySettings& settings) {
        settings.setValue(QStringLiteral("k"), 1);
        QVERIFY(QDir(folderOf(settings.tempSettingsPath())).removeRecursively());
    });
    QTest::newRow("with a shared path") << Step([](CTemporarySettings& settings) {
        settings.setSharedSettingsPath(QDir::tempPath() + QStringLiteral("/shared.ini"));
    });
}

void tst_TemporarySettings::destructionRemovesTheFolder()
{
    QFETCH(Step, use);

    QString folder;
    {
        CTemporarySettings settings(nullptr);
        folder = folderOf(settings.tempSettingsPath());
        use(settings);
    }
    // What is still to be written would be written from the event loop.
    QCoreApplication::processEvents();
    QVERIFY(!QFileInfo::exists(folder));
}

void tst_TemporarySettings::theFolderIsGoneWhenDestroyedIsEmitted()
{
    QScopedPointer<CTemporarySettings> settings(new CTemporarySettings(nullptr));
    settings->setValue(QStringLiteral("k"), 1);
    const QString folder = folderOf(settings->tempSettingsPath());
    int emissions = 0;
    bool folderExists = true;
    connect(settings.data(), &QObject::destroyed, this, [&] {
        ++emissions;
        folderExists = QFileInfo::exists(folder);
    });
    settings.reset();
    QCOMPARE(emissions, 1);
    QVERIFY(!folderExists);
}

void tst_TemporarySettings::anInvalidFolderIsLoggedAndConstructionGoesOn()
{
    const NoTemporaryFolder missing;
    RecordingLogger logger;
    {
        CTemporarySettings settings(nullptr);
        const QStringList lines = logger.takeLines();
        QCOMPARE(lines.size(), 1);
        const QRegularExpression form(
            QStringLiteral("^E ASSERT_X in .+/PluginShell/modules/utilsDll/TemporarySettings\\.cpp "
                           "[0-9]+: Temporary folder is not valid!$"));
        QVERIFY2(form.match(lines.first()).hasMatch(), qPrintable(lines.first()));

        QCOMPARE(settings.tempSettingsPath(), QStringLiteral("/krnv3.ini"));
        QCOMPARE(settings.value(QStringLiteral("k"), 7), QVariant(7));
        settings.setValue(QStringLiteral("k"), 1);
    }
    QVERIFY(!QFile::exists(QStringLiteral("/krnv3.ini")));
    const CTemporarySettings next(nullptr);
    QVERIFY(!next.contains(QStringLiteral("k")));
}

void tst_TemporarySettings::withoutALoggerAnInvalidFolderGoesUnreported()
{
    const NoTemporaryFolder missing;
    const MessageCounter messages;
    {
        CTemporarySettings settings(nullptr);
        settings.setValue(QStringLiteral("k"), 1);
        settings.remove(QStringLiteral("k"));
        settings.clear();
        settings.sync();
    }
    QCOMPARE(messages.count(), 0);
}

void tst_TemporarySettings::anOverlayWithAnInvalidFolderIsUsedAllTheSame()
{
    CSettings settings;
    settings.setValue(QStringLiteral("invalidFolder"), QStringLiteral("persistent"));

    const NoTemporaryFolder missing;
    CTemporarySettings overlay(nullptr);
    CSettings::setTemporarySettings(overlay);
    QVERIFY(settings.usingTemporarySettings());
    QCOMPARE(settings.value(QStringLiteral("invalidFolder"), QStringLiteral("none")).toString(),
             QStringLiteral("none"));
    settings.setValue(QStringLiteral("another"), 1);
    QVERIFY(!CSettings(nullptr, true).contains(QStringLiteral("another")));
}

void tst_TemporarySettings::theMetaObjectIsBare()
{
    const QMetaObject& meta = CTemporarySettings::staticMetaObject;
    QCOMPARE(meta.className(), "vek::CTemporarySettings");
    QCOMPARE(meta.superClass(), &QObject::staticMetaObject);
    QCOMPARE(meta.methodCount(), meta.methodOffset());
    QCOMPARE(meta.propertyCount(), meta.propertyOffset());
}

QTEST_GUILESS_MAIN(tst_TemporarySettings)
#include "tst_TemporarySettings.moc"
