#include "MessageCounter.h"
#include "RecordingLogger.h"
#include "Settings.h"
#include "TemporarySettings.h"

#include <QCoreApplication>
#include <QFile>
#include <QPointer>
#include <QScopedPointer>
#include <QTemporaryDir>
#include <QtTest>

#include <functional>
#include <future>
#include <thread>
#include <vector>

using namespace VEK_NAMESPACE;

namespace {

const QString g = QStringLiteral("g");
const QString k = QStringLiteral("k");
const QString list = QStringLiteral("list");

const QString storedInSystem = QStringLiteral("D Info: settings are now stored in system");
const QString persistentAgain = QStringLiteral("D Persistent settings will be used");

QString storedInFile(const QString& path)
{
    return QStringLiteral("D Info: settings are now stored in file: ") + path;
}

/// What one object logs at the end of the overlay in \a path.
QStringList endOf(const QString& path)
{
    return {QStringLiteral("D Temporary settings file is to be destoyed: ") + path,
            persistentAgain};
}

QString configurationHome()
{
    return QFile::decodeName(qgetenv("XDG_CONFIG_HOME"));
}

QString fixedPath()
{
    return configurationHome() + QStringLiteral("/Vek Labs/krnv3/Data.plist");
}

QByteArray contents(const QString& path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray("unreadable");
}

QVariant persistentValue(const QString& key)
{
    return CSettings(nullptr, true).value(key, QStringLiteral("none"));
}

void setPersistentValue(const QString& key, const QVariant& value)
{
    CSettings(nullptr, true).setValue(key, value);
}

/// An overlay that is installed for its life.
class Overlay : public CTemporarySettings
{
public:
    Overlay()
        : CTemporarySettings(nullptr)
        , path(tempSettingsPath())
    {
        CSettings::setTemporarySettings(*this);
    }

    QByteArray onDisk() const { return contents(path); }

    const QString path;
};

using Make = std::function<CSettings*(QObject* parent)>;
using Step = std::function<void(CSettings&)>;
using Remove = std::function<void()>;

} // namespace

Q_DECLARE_METATYPE(Make)
Q_DECLARE_METATYPE(Step)
Q_DECLARE_METATYPE(Remove)

class tst_Settings : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void cleanup();

    // Without an overlay
    void changesReachTheFixedFile_data();
    void changesReachTheFixedFile();
    void readsFollowTheOpenGroup();
    void groupsNest();
    void arraysAreWrittenAndRead();
    void writesAreOnDiskAtTheLatestWhenTheObjectIsGone();

    // Under an overlay
    void changesReachTheOverlayAtOnce_data();
    void changesReachTheOverlayAtOnce();
    void readsUnderAnOverlay();
    void valueTakesTheBareKeyUnderAnOverlay();
    void overlayGroupsDoNotNest();
    void overlayArraysAreWrittenAndRead();
    void overlayArraysIgnoreTheGroup();
    void overlayArraysWaitForASync();
    void valuesStayInTheirStore();
    void successiveCallsMayUseDifferentStores();
    void persistentOnlyObjectsIgnoreTheOverlay();

    // Installing and removing
    void installingIsLoggedWithThePath();
    void removingIsLoggedAndBringsBackThePersistentStore_data();
    void removingIsLoggedAndBringsBackThePersistentStore();
    void deletingTheOverlayBringsBackThePersistentStore();
    void theOverlayBelongsToItsMaker();
    void theOverlayInstalledLastIsUsed();
    void anotherOverlaysEndChangesNothing();

    // The end of an overlay is logged
    void whoLogsTheEnd_data();
    void whoLogsTheEnd();
    void theEndIsLoggedOnceByEachObject();
    void theEndIsLoggedWithTheSharedPath();
    void anOverlayThatWasRemovedIsLoggedWithItsPath();
    void anObjectThatIsGoneLogsNothing();
    void connectSlotsConnectsAnObjectThatWasThereBefore();
    void connectSlotsConnectsOncePerCall();
    void connectSlotsWithoutAnOverlayConnectsNothing();
    void anObjectOfAnotherThreadLogsThere();
    void theLinesCanBeAskedFor();
    void withoutALoggerTheEndGoesUnreported();

    // What a change does to an existing object
    void installingRedirectsTheNextOperation();
    void installingHidesAnOpenGroup();
    void installingHidesAnOpenArray();
    void groupsUnderAnOverlayDoNotTouchThePersistentStore();
    void anOverlaysGroupOutlivesItInReads();
    void endGroupAfterTheOverlayKeepsTheOverlaysGroup();
    void aGroupOfTheNextOverlayReplacesTheLastOnes();

    // Construction
    void constructorsAndTheirFiles_data();
    void constructorsAndTheirFiles();
    void aFileOfItsOwnIsRedirected();
    void anObjectHasNoParent_data() { constructorsAndTheirFiles_data(); }
    void anObjectHasNoParent();
    void aParentMayDieFirst_data() { constructorsAndTheirFiles_data(); }
    void aParentMayDieFirst();
    void theMetaObjectIsBare();

    void objectsOnSeveralThreadsShareTheFile();

private:
    QTemporaryDir m_configurationHome;
};

void tst_Settings::initTestCase()
{
    // Before the first use of settings, which settles their place.
    qputenv("XDG_CONFIG_HOME", QFile::encodeName(m_configurationHome.path()));
    setPersistentValue(k, 1);
    QCOMPARE(contents(fixedPath()), QByteArray("[General]\nk=1\n"));
    cleanup();
}

void tst_Settings::cleanup()
{
    CSettings::removeTemporarySettings();
    CSettings().remove(QString());
    QCOMPARE(contents(fixedPath()), QByteArray());
}

void tst_Settings::changesReachTheFixedFile_data()
{
    QTest::addColumn<Step>("change");
    QTest::addColumn<QByteArray>("expected");

    QTest::newRow("setValue") << Step([](CSettings& settings) { settings.setValue(k, 1); })
                              << QByteArray("[General]\na=1\nk=1\n\n[g]\na=2\nk=3\n");
    QTest::newRow("setValue in a group") << Step([](CSettings& settings) {
        settings.beginGroup(g);
        settings.setValue(k, 1);
        settings.endGroup();
    }) << QByteArray("[General]\na=1\n\n[g]\na=2\nk=1\n");
    QTest::newRow("setValue behind a group") << Step([](CSettings& settings) {
        settings.beginGroup(g);
        settings.endGroup();
        settings.setValue(k, 1);
    }) << QByteArray("[General]\na=1\nk=1\n\n[g]\na=2\nk=3\n");
    QTest::newRow("remove") << Step([](CSettings& settings) {
        settings.remove(QStringLiteral("a"));
    }) << QByteArray("[g]\na=2\nk=3\n");
    QTest::newRow("remove in a group") << Step([](CSettings& settings) {
        settings.beginGroup(g);
        settings.remove(QStringLiteral("a"));
        settings.endGroup();
    }) << QByteArray("[General]\na=1\n\n[g]\nk=3\n");
    QTest::newRow("an array") << Step([](CSettings& settings) {
        settings.beginWriteArray(list);
        settings.setArrayIndex(1);
        settings.setValue(k, 1);
        settings.endArray();
    }) << QByteArray("[General]\na=1\n\n[g]\na=2\nk=3\n\n[list]\n2\\k=1\nsize=2\n");
}

void tst_Settings::changesReachTheFixedFile()
{
    QFETCH(Step, change);
    QFETCH(QByteArray, expected);

    CSettings settings;
    settings.setValue(QStringLiteral("a"), 1);
    settings.setValue(QStringLiteral("g/a"), 2);
    settings.setValue(QStringLiteral("g/k"), 3);
    settings.sync();
    QCOMPARE(contents(fixedPath()), QByteArray("[General]\na=1\n\n[g]\na=2\nk=3\n"));

    change(settings);
    settings.sync();
    QCOMPARE(contents(fixedPath()), expected);
}

void tst_Settings::readsFollowTheOpenGroup()
{
    CSettings settings;
    settings.setValue(QStringLiteral("g/k"), 1);
    QVERIFY(!settings.usingTemporarySettings());
    QVERIFY(!settings.contains(k));
    QCOMPARE(settings.value(k), QVariant());
    QCOMPARE(settings.value(k, 7), QVariant(7));

    settings.beginGroup(g);
    QVERIFY(settings.contains(k));
    QCOMPARE(settings.value(k, 7), QVariant(1));
    QVERIFY(!settings.contains(QStringLiteral("g/k")));
    QCOMPARE(settings.value(QStringLiteral("g/k"), 7), QVariant(7));
    settings.endGroup();
    QVERIFY(settings.contains(QStringLiteral("g/k")));
}

void tst_Settings::groupsNest()
{
    CSettings settings;
    QCOMPARE(settings.group(), QString());
    settings.beginGroup(g);
    settings.beginGroup(QStringLiteral("h"));
    QCOMPARE(settings.group(), QStringLiteral("g/h"));
    settings.endGroup();
    QCOMPARE(settings.group(), g);
    settings.endGroup();
    QCOMPARE(settings.group(), QString());
}

void tst_Settings::arraysAreWrittenAndRead()
{
    CSettings settings;
    settings.beginWriteArray(list, 3);
    settings.setArrayIndex(0);
    settings.setValue(k, 10);
    settings.setArrayIndex(1);
    settings.setValue(k, 20);
    settings.endArray();

    QCOMPARE(settings.beginReadArray(list), 3);
    settings.setArrayIndex(1);
    QCOMPARE(settings.value(k, 0).toInt(), 20);
    settings.endArray();
    QCOMPARE(settings.value(QStringLiteral("list/1/k"), 0).toInt(), 10);
}

void tst_Settings::writesAreOnDiskAtTheLatestWhenTheObjectIsGone()
{
    setPersistentValue(QStringLiteral("a"), 1);
    const QByteArray before = "[General]\na=1\n";
    {
        CSettings settings;
        settings.setValue(k, 1);
        settings.remove(QStringLiteral("a"));
        QCOMPARE(contents(fixedPath()), before);
    }
    QCOMPARE(contents(fixedPath()), QByteArray("[General]\nk=1\n"));
}

void tst_Settings::changesReachTheOverlayAtOnce_data()
{
    QTest::addColumn<QString>("group");
    QTest::addColumn<Step>("change");
    QTest::addColumn<QByteArray>("expected");

    const Step set = [](CSettings& settings) { settings.setValue(k, 1); };
    const Step remove = [](CSettings& settings) { settings.remove(QStringLiteral("a")); };
    QTest::newRow("setValue") << QString() << set
                              << QByteArray("[General]\na=1\nk=1\n\n[g]\na=2\n");
    QTest::newRow("setValue in a group")
        << g << set << QByteArray("[General]\na=1\n\n[g]\na=2\nk=1\n");
    QTest::newRow("remove") << QString() << remove << QByteArray("[g]\na=2\n");
    QTest::newRow("remove in a group") << g << remove << QByteArray("[General]\na=1\n");
}

void tst_Settings::changesReachTheOverlayAtOnce()
{
    QFETCH(QString, group);
    QFETCH(Step, change);
    QFETCH(QByteArray, expected);

    const Overlay overlay;
    CSettings settings;
    settings.setValue(QStringLiteral("a"), 1);
    settings.setValue(QStringLiteral("g/a"), 2);
    QCOMPARE(overlay.onDisk(), QByteArray("[General]\na=1\n\n[g]\na=2\n"));

    settings.beginGroup(group);
    change(settings);
    QCOMPARE(overlay.onDisk(), expected);
    QCOMPARE(contents(fixedPath()), QByteArray());
}

void tst_Settings::readsUnderAnOverlay()
{
    Overlay overlay;
    overlay.setValue(k, 1);
    const CSettings settings;
    QVERIFY(settings.usingTemporarySettings());
    QVERIFY(settings.contains(k));
    QVERIFY(!settings.contains(g));
    QCOMPARE(settings.value(k, 7), QVariant(1));
    QCOMPARE(settings.value(g, 7), QVariant(7));
    QCOMPARE(settings.value(g), QVariant());
}

void tst_Settings::valueTakesTheBareKeyUnderAnOverlay()
{
    const Overlay overlay;
    CSettings settings;
    settings.beginGroup(g);
    settings.setValue(k, 1);
    QVERIFY(settings.contains(k));
    QCOMPARE(settings.value(k, QStringLiteral("default")).toString(), QStringLiteral("default"));
    QCOMPARE(settings.value(QStringLiteral("g/k")).toInt(), 1);
    QVERIFY(!settings.contains(QStringLiteral("g/k")));
    settings.endGroup();
    QVERIFY(settings.contains(QStringLiteral("g/k")));
    QVERIFY(!settings.contains(k));
}

void tst_Settings::overlayGroupsDoNotNest()
{
    const Overlay overlay;
    CSettings settings;
    QCOMPARE(settings.group(), QString());
    settings.beginGroup(QStringLiteral("a"));
    settings.beginGroup(QStringLiteral("b"));
    QCOMPARE(settings.group(), QStringLiteral("b"));
    settings.setValue(k, 1);
    QCOMPARE(overlay.onDisk(), QByteArray("[b]\nk=1\n"));

    settings.endGroup();
    QCOMPARE(settings.group(), QString());
    settings.setValue(k, 2);
    QCOMPARE(overlay.onDisk(), QByteArray("[General]\nk=2\n\n[b]\nk=1\n"));

    settings.endGroup();
    QCOMPARE(settings.group(), QString());

    // Each object has a group of its own.
    settings.beginGroup(QStringLiteral("a"));
    QCOMPARE(CSettings().group(), QString());
}

void tst_Settings::overlayArraysAreWrittenAndRead()
{
    const Overlay overlay;
    CSettings settings;
    settings.beginWriteArray(list);
    for (int i = 0; i < 2; ++i) {
        settings.setArrayIndex(i);
        settings.setValue(k, 10 * i);
    }
    settings.endArray();
    settings.sync();
    QCOMPARE(overlay.onDisk(), QByteArray("[list]\n1\\k=0\n2\\k=10\nsize=2\n"));

    QCOMPARE(settings.beginReadArray(list), 2);
    settings.setArrayIndex(1);
    QVERIFY(settings.contains(k));
    QCOMPARE(settings.value(k).toInt(), 10);
    settings.endArray();
    QVERIFY(!settings.contains(k));
    QCOMPARE(settings.beginReadArray(g), 0);
    settings.endArray();
    QCOMPARE(contents(fixedPath()), QByteArray());
}

void tst_Settings::overlayArraysIgnoreTheGroup()
{
    const Overlay overlay;
    CSettings settings;
    settings.beginGroup(g);
    settings.beginWriteArray(list, 1);
    settings.setArrayIndex(0);
    settings.setValue(k, 1);
    settings.endArray();
    settings.sync();
    QCOMPARE(overlay.onDisk(), QByteArray("[list]\n1\\g\\k=1\nsize=1\n"));
    QCOMPARE(settings.beginReadArray(list), 1);
    settings.endArray();
}

void tst_Settings::overlayArraysWaitForASync()
{
    const Overlay overlay;
    CSettings settings;
    settings.setValue(k, 1);
    settings.beginWriteArray(list, 2);
    settings.endArray();
    QCOMPARE(overlay.onDisk(), QByteArray("[General]\nk=1\n"));
    settings.sync();
    QCOMPARE(overlay.onDisk(), QByteArray("[General]\nk=1\n\n[list]\nsize=2\n"));
}

void tst_Settings::valuesStayInTheirStore()
{
    setPersistentValue(k, QStringLiteral("persistent"));
    {
        const Overlay overlay;
        QVERIFY(!CSettings().contains(k));
        CSettings().setValue(g, QStringLiteral("temporary"));
        QCOMPARE(contents(fixedPath()), QByteArray("[General]\nk=persistent\n"));
    }
    QCOMPARE(CSettings().value(k).toString(), QStringLiteral("persistent"));
    QVERIFY(!CSettings().contains(g));
}

void tst_Settings::successiveCallsMayUseDifferentStores()
{
    CSettings settings;
    settings.setValue(k, QStringLiteral("persistent"));
    for (int i = 0; i < 2; ++i) {
        {
            const Overlay overlay;
            QVERIFY(settings.usingTemporarySettings());
            QVERIFY(!settings.contains(k));
            settings.setValue(k, QStringLiteral("temporary"));
            QCOMPARE(settings.value(k).toString(), QStringLiteral("temporary"));
        }
        QVERIFY(!settings.usingTemporarySettings());
        QCOMPARE(settings.value(k).toString(), QStringLiteral("persistent"));
    }
}

void tst_Settings::persistentOnlyObjectsIgnoreTheOverlay()
{
    Overlay overlay;
    overlay.setValue(k, QStringLiteral("temporary"));
    const QByteArray onDisk = "[General]\nk=temporary\n";

    CSettings settings(nullptr, true);
    QVERIFY(!settings.usingTemporarySettings());
    QVERIFY(!settings.contains(k));
    QCOMPARE(settings.value(k, 7), QVariant(7));

    settings.setValue(k, QStringLiteral("persistent"));
    QVERIFY(settings.contains(k));
    QCOMPARE(settings.value(k).toString(), QStringLiteral("persistent"));

    settings.beginGroup(g);
    settings.beginGroup(QStringLiteral("h"));
    QCOMPARE(settings.group(), QStringLiteral("g/h"));
    settings.setValue(k, 1);
    QCOMPARE(settings.value(k).toInt(), 1);
    settings.endGroup();
    QCOMPARE(settings.group(), g);
    settings.endGroup();

    settings.beginWriteArray(list);
    settings.setArrayIndex(0);
    settings.setValue(k, 1);
    settings.endArray();
    QCOMPARE(settings.beginReadArray(list), 1);
    settings.endArray();

    settings.sync();
    QCOMPARE(contents(fixedPath()),
             QByteArray("[General]\nk=persistent\n\n[g]\nh\\k=1\n\n[list]\n1\\k=1\nsize=1\n"));
    settings.remove(g);
    settings.remove(list);
    settings.sync();
    QCOMPARE(contents(fixedPath()), QByteArray("[General]\nk=persistent\n"));
    overlay.sync();
    QCOMPARE(overlay.onDisk(), onDisk);
}

void tst_Settings::installingIsLoggedWithThePath()
{
    RecordingLogger logger;
    CTemporarySettings overlay(nullptr);
    const QString path = overlay.tempSettingsPath();
    CSettings::setTemporarySettings(overlay);
    QCOMPARE(logger.takeLines(), QStringList(storedInFile(path)));

    overlay.setSharedSettingsPath(QStringLiteral("/shared/by all.ini"));
    CSettings::setTemporarySettings(overlay);
    QCOMPARE(
        logger.takeLines(),
        QStringList(QStringLiteral("D Info: settings are now stored in file: /shared/by all.ini")));
}

void tst_Settings::removingIsLoggedAndBringsBackThePersistentStore_data()
{
    QTest::addColumn<Remove>("remove");

    QTest::newRow("by a null reference") << Remove([] {
        CTemporarySettings* none = nullptr;
        // A documented way of removal.
        CSettings::setTemporarySettings(*none); // NOLINT(clang-analyzer-core.NonNullParamChecker)
    });
    QTest::newRow("by name") << Remove(CSettings::removeTemporarySettings);
}

void tst_Settings::removingIsLoggedAndBringsBackThePersistentStore()
{
    QFETCH(Remove, remove);

    setPersistentValue(k, QStringLiteral("persistent"));
    RecordingLogger logger;
    CSettings before;
    const Overlay overlay;
    CSettings under;
    under.setValue(k, QStringLiteral("temporary"));
    logger.takeLines();

    remove();
    QCOMPARE(logger.takeLines(), QStringList(storedInSystem));
    for (CSettings* settings : {&before, &under}) {
        QVERIFY(!settings->usingTemporarySettings());
        QCOMPARE(settings->value(k).toString(), QStringLiteral("persistent"));
    }
    QCOMPARE(overlay.value(k).toString(), QStringLiteral("temporary"));

    remove();
    QCOMPARE(logger.takeLines(), QStringList(storedInSystem));
}

void tst_Settings::deletingTheOverlayBringsBackThePersistentStore()
{
    CSettings settings;
    {
        const Overlay overlay;
        QVERIFY(settings.usingTemporarySettings());
    }
    QVERIFY(!settings.usingTemporarySettings());
    settings.setValue(k, 1);
    settings.sync();
    QCOMPARE(contents(fixedPath()), QByteArray("[General]\nk=1\n"));
}

void tst_Settings::theOverlayBelongsToItsMaker()
{
    const QPointer<Overlay> overlay = new Overlay;
    CSettings::removeTemporarySettings();
    QVERIFY(overlay);
    CSettings::setTemporarySettings(*overlay);
    {
        CSettings settings;
        settings.setValue(k, 1);
    }
    QVERIFY(overlay);
    QCOMPARE(overlay->parent(), nullptr);
    delete overlay;
}

void tst_Settings::theOverlayInstalledLastIsUsed()
{
    CSettings settings;
    const Overlay first;
    settings.setValue(k, QStringLiteral("first"));
    const Overlay second;
    QVERIFY(!settings.contains(k));
    settings.setValue(k, QStringLiteral("second"));
    QCOMPARE(first.onDisk(), QByteArray("[General]\nk=first\n"));
    QCOMPARE(second.onDisk(), QByteArray("[General]\nk=second\n"));
}

void tst_Settings::anotherOverlaysEndChangesNothing()
{
    QScopedPointer<Overlay> first(new Overlay);
    const Overlay second;
    const CSettings settings;
    CSettings().setValue(k, 1);
    first.reset();
    QVERIFY(settings.usingTemporarySettings());
    QCOMPARE(settings.value(k).toInt(), 1);
}

void tst_Settings::whoLogsTheEnd_data()
{
    QTest::addColumn<Make>("make");
    QTest::addColumn<bool>("underTheOverlay");

    const Make usual = [](QObject*) { return new CSettings; };
    const Make persistentOnly = [](QObject*) { return new CSettings(nullptr, true); };
    const Make scope = [](QObject*) { return new CSettings(QSettings::UserScope); };
    const Make ownFile = [](QObject*) {
        return new CSettings(configurationHome() + QStringLiteral("/own.ini"),
                             QSettings::IniFormat);
    };
    QTest::newRow("built under the overlay") << usual << true;
    QTest::newRow("persistent-only, built under it") << persistentOnly << true;
    QTest::newRow("with a scope, built under it") << scope << true;
    QTest::newRow("on a file of its own, built under it") << ownFile << true;
    QTest::newRow("built before the overlay") << usual << false;
    QTest::newRow("persistent-only, built before it") << persistentOnly << false;
    QTest::newRow("with a scope, built before it") << scope << false;
    QTest::newRow("on a file of its own, built before it") << ownFile << false;
}

void tst_Settings::whoLogsTheEnd()
{
    QFETCH(Make, make);
    QFETCH(bool, underTheOverlay);

    RecordingLogger logger;
    QScopedPointer<CSettings> settings;
    QString path;
    {
        if (!underTheOverlay)
            settings.reset(make(nullptr));
        const Overlay overlay;
        if (underTheOverlay)
            settings.reset(make(nullptr));
        path = overlay.path;
        settings->value(k);
        logger.takeLines();
    }
    QCOMPARE(logger.takeLines(), underTheOverlay ? endOf(path) : QStringList());
}

void tst_Settings::theEndIsLoggedOnceByEachObject()
{
    RecordingLogger logger;
    QScopedPointer<Overlay> overlay(new Overlay);
    const QString path = overlay->path;
    const CSettings first;
    const CSettings second(nullptr, true);
    logger.takeLines();
    overlay.reset();
    QCOMPARE(logger.takeLines(), endOf(path) + endOf(path));

    // A later overlay is none of theirs.
    overlay.reset(new Overlay);
    logger.takeLines();
    overlay.reset();
    QCOMPARE(logger.takeLines(), QStringList());
}

void tst_Settings::theEndIsLoggedWithTheSharedPath()
{
    RecordingLogger logger;
    QScopedPointer<Overlay> overlay(new Overlay);
    overlay->setSharedSettingsPath(QStringLiteral("/shared.ini"));
    const CSettings settings;
    logger.takeLines();
    overlay.reset();
    QCOMPARE(
        logger.takeLines(),
        (QStringList{QStringLiteral("D Temporary settings file is to be destoyed: /shared.ini"),
                     persistentAgain}));
}

void tst_Settings::anOverlayThatWasRemovedIsLoggedWithItsPath()
{
    RecordingLogger logger;
    QScopedPointer<Overlay> overlay(new Overlay);
    const QString path = overlay->path;
    const CSettings settings;
    CSettings::removeTemporarySettings();
    logger.takeLines();
    overlay.reset();
    QCOMPARE(logger.takeLines(), endOf(path));
}

void tst_Settings::anObjectThatIsGoneLogsNothing()
{
    RecordingLogger logger;
    {
        const Overlay overlay;
        {
            const CSettings settings;
        }
        logger.takeLines();
    }
    QCOMPARE(logger.takeLines(), QStringList());
}

void tst_Settings::connectSlotsConnectsAnObjectThatWasThereBefore()
{
    RecordingLogger logger;
    CSettings settings;
    QString path;
    {
        const Overlay overlay;
        path = overlay.path;
        settings.connectSlots();
        logger.takeLines();
    }
    QCOMPARE(logger.takeLines(), endOf(path));
}

void tst_Settings::connectSlotsConnectsOncePerCall()
{
    RecordingLogger logger;
    QScopedPointer<Overlay> overlay(new Overlay);
    const QString path = overlay->path;
    CSettings settings;
    settings.connectSlots();
    logger.takeLines();
    overlay.reset();
    QCOMPARE(logger.takeLines(), endOf(path) + endOf(path));
}

void tst_Settings::connectSlotsWithoutAnOverlayConnectsNothing()
{
    RecordingLogger logger;
    CSettings settings;
    settings.connectSlots();
    {
        const Overlay overlay;
        logger.takeLines();
    }
    QCOMPARE(logger.takeLines(), QStringList());
}

void tst_Settings::anObjectOfAnotherThreadLogsThere()
{
    RecordingLogger logger;
    QScopedPointer<Overlay> overlay(new Overlay);
    const QString path = overlay->path;
    std::promise<void> built;
    std::promise<void> overlayGone;
    std::thread thread([&] {
        CSettings settings;
        built.set_value();
        overlayGone.get_future().wait();
        QCoreApplication::sendPostedEvents(&settings);
    });
    built.get_future().wait();
    logger.takeLines();
    overlay.reset();
    const QStringList linesHere = logger.takeLines();
    overlayGone.set_value();
    thread.join();
    QCOMPARE(linesHere, QStringList());
    QCOMPARE(logger.takeLines(), endOf(path));
}

void tst_Settings::theLinesCanBeAskedFor()
{
    RecordingLogger logger;
    const Overlay overlay;
    CSettings settings;
    logger.takeLines();
    settings.logWhenTempSettingsDeleted();
    QCOMPARE(logger.takeLines(), endOf(overlay.path));
    QVERIFY(settings.usingTemporarySettings());

    CSettings::removeTemporarySettings();
    logger.takeLines();
    settings.logWhenTempSettingsDeleted();
    const QStringList lines = logger.takeLines();
    QCOMPARE(lines.size(), 2);
    QVERIFY(
        lines.first().startsWith(QStringLiteral("D Temporary settings file is to be destoyed: ")));
    QCOMPARE(lines.last(), persistentAgain);
}

void tst_Settings::withoutALoggerTheEndGoesUnreported()
{
    const MessageCounter messages;
    {
        QScopedPointer<Overlay> overlay(new Overlay);
        CSettings settings;
        overlay.reset();
        settings.logWhenTempSettingsDeleted();
    }
    QCOMPARE(messages.count(), 0);
}

void tst_Settings::installingRedirectsTheNextOperation()
{
    CSettings settings;
    CSettings persistentOnly(nullptr, true);
    const Overlay overlay;
    settings.setValue(k, 1);
    persistentOnly.setValue(k, 2);
    persistentOnly.sync();
    QCOMPARE(overlay.onDisk(), QByteArray("[General]\nk=1\n"));
    QCOMPARE(contents(fixedPath()), QByteArray("[General]\nk=2\n"));
}

void tst_Settings::installingHidesAnOpenGroup()
{
    CSettings settings;
    settings.beginGroup(g);
    {
        const Overlay overlay;
        QCOMPARE(settings.group(), QString());
        settings.setValue(k, 1);
        QCOMPARE(overlay.onDisk(), QByteArray("[General]\nk=1\n"));
        QVERIFY(settings.contains(k));
        QCOMPARE(settings.value(k).toInt(), 1);
        settings.endGroup();
    }
    QCOMPARE(settings.group(), g);
    settings.setValue(k, 2);
    settings.sync();
    QCOMPARE(contents(fixedPath()), QByteArray("[g]\nk=2\n"));
    settings.endGroup();
    QCOMPARE(settings.group(), QString());
}

void tst_Settings::installingHidesAnOpenArray()
{
    CSettings settings;
    settings.beginWriteArray(list);
    settings.setArrayIndex(1);
    {
        const Overlay overlay;
        settings.setValue(k, 1);
        QCOMPARE(overlay.onDisk(), QByteArray("[General]\nk=1\n"));
    }
    settings.setValue(k, 2);
    settings.endArray();
    settings.sync();
    QCOMPARE(contents(fixedPath()), QByteArray("[list]\n2\\k=2\nsize=2\n"));
}

void tst_Settings::groupsUnderAnOverlayDoNotTouchThePersistentStore()
{
    CSettings settings;
    settings.beginGroup(QStringLiteral("opened before"));
    {
        const Overlay overlay;
        settings.beginGroup(g);
        QCOMPARE(settings.group(), g);
        settings.endGroup();
        QCOMPARE(settings.group(), QString());
        settings.endGroup();
        settings.beginGroup(QStringLiteral("left open"));
    }
    QCOMPARE(settings.group(), QStringLiteral("opened before"));
    settings.endGroup();
    settings.setValue(k, 1);
    settings.sync();
    QCOMPARE(contents(fixedPath()), QByteArray("[General]\nk=1\n"));
}

void tst_Settings::anOverlaysGroupOutlivesItInReads()
{
    setPersistentValue(QStringLiteral("g/k"), QStringLiteral("in the group"));
    setPersistentValue(QStringLiteral("g/other"), 1);

    CSettings settings;
    {
        const Overlay overlay;
        settings.beginGroup(g);
    }
    QCOMPARE(settings.group(), QString());
    QCOMPARE(settings.value(k).toString(), QStringLiteral("in the group"));
    QVERIFY(!settings.contains(k));
    QVERIFY(settings.contains(QStringLiteral("g/k")));

    settings.setValue(k, QStringLiteral("bare"));
    QCOMPARE(settings.value(k).toString(), QStringLiteral("in the group"));
    QCOMPARE(persistentValue(k).toString(), QStringLiteral("bare"));

    settings.remove(QStringLiteral("other"));
    QCOMPARE(persistentValue(QStringLiteral("g/other")).toInt(), 1);
    settings.remove(k);
    QCOMPARE(persistentValue(k).toString(), QStringLiteral("none"));
    QCOMPARE(persistentValue(QStringLiteral("g/k")).toString(), QStringLiteral("in the group"));
}

void tst_Settings::endGroupAfterTheOverlayKeepsTheOverlaysGroup()
{
    setPersistentValue(QStringLiteral("g/k"), QStringLiteral("in the group"));

    CSettings settings;
    {
        const Overlay overlay;
        settings.beginGroup(g);
    }
    QTest::ignoreMessage(QtWarningMsg, "QSettings::endGroup: No matching beginGroup()");
    settings.endGroup();
    QCOMPARE(settings.value(k).toString(), QStringLiteral("in the group"));

    settings.beginGroup(QStringLiteral("persistent"));
    QCOMPARE(settings.group(), QStringLiteral("persistent"));
    settings.setValue(QStringLiteral("g/k"), QStringLiteral("in both groups"));
    QCOMPARE(settings.value(k).toString(), QStringLiteral("in both groups"));
    settings.endGroup();
    QCOMPARE(settings.value(k).toString(), QStringLiteral("in the group"));
}

void tst_Settings::aGroupOfTheNextOverlayReplacesTheLastOnes()
{
    CSettings settings;
    {
        const Overlay overlay;
        settings.beginGroup(g);
    }
    const Overlay overlay;
    QCOMPARE(settings.group(), g);
    settings.setValue(k, 1);
    settings.endGroup();
    settings.setValue(k, 2);
    QCOMPARE(overlay.onDisk(), QByteArray("[General]\nk=2\n\n[g]\nk=1\n"));
}

void tst_Settings::constructorsAndTheirFiles_data()
{
    QTest::addColumn<Make>("make");
    QTest::addColumn<bool>("fixedFile");
    QTest::addColumn<bool>("redirected");

    QTest::newRow("parent alone") << Make([](QObject* parent) { return new CSettings(parent); })
                                  << true << true;
    QTest::newRow("persistentOnly false")
        << Make([](QObject* parent) { return new CSettings(parent, false); }) << true << true;
    QTest::newRow("persistentOnly true")
        << Make([](QObject* parent) { return new CSettings(parent, true); }) << true << false;
    QTest::newRow("system scope") << Make([](QObject* parent) {
        return new CSettings(QSettings::SystemScope, parent);
    }) << true << true;
    QTest::newRow("user scope") << Make([](QObject* parent) {
        return new CSettings(QSettings::UserScope, parent);
    }) << true << true;
    QTest::newRow("file name") << Make([](QObject* parent) {
        return new CSettings(configurationHome() + QStringLiteral("/own.ini"), QSettings::IniFormat,
                             parent);
    }) << false << true;
}

void tst_Settings::constructorsAndTheirFiles()
{
    QFETCH(Make, make);
    QFETCH(bool, fixedFile);
    QFETCH(bool, redirected);

    const QScopedPointer<CSettings> settings(make(nullptr));
    settings->setValue(k, 1);
    settings->sync();
    QCOMPARE(contents(fixedPath()), QByteArray(fixedFile ? "[General]\nk=1\n" : ""));
    {
        const Overlay overlay;
        QCOMPARE(settings->usingTemporarySettings(), redirected);
        const QScopedPointer<CSettings> under(make(nullptr));
        QCOMPARE(under->usingTemporarySettings(), redirected);
    }
    QVERIFY(!settings->usingTemporarySettings());
    QCOMPARE(settings->value(k).toInt(), 1);

    settings->remove(k);
}

void tst_Settings::aFileOfItsOwnIsRedirected()
{
    const QTemporaryDir folder;
    const QString path = folder.filePath(QStringLiteral("own.ini"));
    CSettings settings(path, QSettings::IniFormat);
    settings.setValue(k, QStringLiteral("own"));
    settings.sync();
    QCOMPARE(contents(path), QByteArray("[General]\nk=own\n"));
    QCOMPARE(contents(fixedPath()), QByteArray());
    {
        const Overlay overlay;
        QVERIFY(!settings.contains(k));
        settings.setValue(k, QStringLiteral("temporary"));
        QCOMPARE(overlay.onDisk(), QByteArray("[General]\nk=temporary\n"));
        QCOMPARE(contents(path), QByteArray("[General]\nk=own\n"));
    }
    QCOMPARE(settings.value(k).toString(), QStringLiteral("own"));
}

void tst_Settings::anObjectHasNoParent()
{
    QFETCH(Make, make);

    QObject parent;
    {
        const QScopedPointer<CSettings> settings(make(&parent));
        QCOMPARE(settings->parent(), nullptr);
        QCOMPARE(parent.children().size(), 1);
        QVERIFY(parent.findChild<QSettings*>());
        QVERIFY(!parent.findChild<CSettings*>());
    }
    QCOMPARE(parent.children().size(), 0);
}

void tst_Settings::aParentMayDieFirst()
{
    QFETCH(Make, make);

    QScopedPointer<QObject> parent(new QObject);
    const QScopedPointer<CSettings> settings(make(parent.data()));
    settings->setValue(k, 1);
    parent.reset();
    QCOMPARE(settings->value(k).toInt(), 1);
    settings->remove(k);
    settings->sync();
    QVERIFY(!settings->contains(k));
}

void tst_Settings::theMetaObjectIsBare()
{
    const QMetaObject& meta = CSettings::staticMetaObject;
    QCOMPARE(meta.className(), "vek::CSettings");
    QCOMPARE(meta.superClass(), &QObject::staticMetaObject);
    QCOMPARE(meta.methodCount(), meta.methodOffset());
    QCOMPARE(meta.propertyCount(), meta.propertyOffset());
}

void tst_Settings::objectsOnSeveralThreadsShareTheFile()
{
    std::vector<std::thread> threads;
    for (const char* key : {"a", "b", "c", "d"}) {
        threads.emplace_back([key] {
            for (int i = 1; i <= 20; ++i)
                CSettings().setValue(QLatin1String(key), i);
        });
    }
    for (std::thread& thread : threads)
        thread.join();
    QCOMPARE(contents(fixedPath()), QByteArray("[General]\na=20\nb=20\nc=20\nd=20\n"));
}

QTEST_GUILESS_MAIN(tst_Settings)
#include "tst_Settings.moc"
