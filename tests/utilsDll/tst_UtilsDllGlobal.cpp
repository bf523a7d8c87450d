#include "UtilsDllGlobal.h"

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QProcess>
#include <QTranslator>
#include <QtTest>

#include <dlfcn.h>

#include <cstdio>
#include <cstring>

// Every library's resource trees pass through this program's own two functions, also those that are
// registered at load.

namespace {

using ResourceFunction = bool (*)(int, const uchar*, const uchar*, const uchar*);

struct Calls
{
    int count = 0;
    int versions[16] = {};
    const uchar* trees[16] = {};
};

Calls registrations;
Calls removals;
bool printRemovals = false;

/// Whether the tree is one of the library's.
bool record(Calls& calls, int version, const uchar* tree)
{
    Dl_info place;
    if (!dladdr(tree, &place) || !std::strstr(place.dli_fname, "UtilsDllkrnv3"))
        return false;
    if (calls.count < 16) {
        calls.versions[calls.count] = version;
        calls.trees[calls.count] = tree;
    }
    ++calls.count;
    return true;
}

ResourceFunction qtFunction(const char* mangledName)
{
    return reinterpret_cast<ResourceFunction>(dlsym(RTLD_NEXT, mangledName));
}

} // namespace

Q_DECL_EXPORT bool qRegisterResourceData(int version, const uchar* tree, const uchar* names,
                                         const uchar* data);
bool qRegisterResourceData(int version, const uchar* tree, const uchar* names, const uchar* data)
{
    record(registrations, version, tree);
    return qtFunction("_Z21qRegisterResourceDataiPKhS0_S0_")(version, tree, names, data);
}

Q_DECL_EXPORT bool qUnregisterResourceData(int version, const uchar* tree, const uchar* names,
                                           const uchar* data);
bool qUnregisterResourceData(int version, const uchar* tree, const uchar* names, const uchar* data)
{
    if (record(removals, version, tree) && printRemovals) {
        std::printf("removal %d\n", removals.count);
        std::fflush(stdout);
    }
    return qtFunction("_Z23qUnregisterResourceDataiPKhS0_S0_")(version, tree, names, data);
}

namespace {

const int atLoad = 2;

QByteArray contents(const QString& path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

using Function = int (*)();

} // namespace

Q_DECLARE_METATYPE(Function)

class tst_UtilsDllGlobal : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void cleanup();

    void bothTreesAreRegisteredAtLoadInFormatVersionOne();
    void theMainTreeIsReadable_data();
    void theMainTreeIsReadable();
    void theTranslationsAreReadable_data();
    void theTranslationsAreReadable();
    void eachFunctionMakesOneCallInFormatVersionOne_data();
    void eachFunctionMakesOneCallInFormatVersionOne();
    void registeringAgainLeavesTheTreeUsable_data();
    void registeringAgainLeavesTheTreeUsable();
    void aTreeThatWasCleanedUpComesBack_data() { registeringAgainLeavesTheTreeUsable_data(); }
    void aTreeThatWasCleanedUpComesBack();
    void theTreesAreRemovedAtExit();
    void theEmptyFunctionIsThere();
};

void tst_UtilsDllGlobal::cleanup()
{
    qInitResources_translations();
    qInitResources_vek();
}

void tst_UtilsDllGlobal::bothTreesAreRegisteredAtLoadInFormatVersionOne()
{
    QVERIFY(registrations.count >= atLoad);
    QCOMPARE(registrations.versions[0], 1);
    QCOMPARE(registrations.versions[1], 1);
    QVERIFY(registrations.trees[0] != registrations.trees[1]);
}

void tst_UtilsDllGlobal::theMainTreeIsReadable_data()
{
    QTest::addColumn<QString>("name");

    QTest::newRow("mac.qss") << QStringLiteral("qss/mac.qss");
    QTest::newRow("win.qss") << QStringLiteral("qss/win.qss");
}

void tst_UtilsDllGlobal::theMainTreeIsReadable()
{
    QFETCH(QString, name);

    const QByteArray original =
        contents(QFINDTESTDATA(QStringLiteral("../../PluginShell/resources/") + name));
    QVERIFY(!original.isEmpty());
    QCOMPARE(contents(QStringLiteral(":/") + name), original);
}

void tst_UtilsDllGlobal::theTranslationsAreReadable_data()
{
    QTest::addColumn<QString>("file");
    QTest::addColumn<QString>("cancel");

    QTest::newRow("German") << QStringLiteral("qt_de.qm") << QStringLiteral("Abbrechen");
    QTest::newRow("French") << QStringLiteral("qt_fr.qm") << QStringLiteral("Annuler");
    QTest::newRow("Japanese") << QStringLiteral("qt_ja.qm") << QString::fromUtf8("キャンセル");
}

void tst_UtilsDllGlobal::theTranslationsAreReadable()
{
    QFETCH(QString, file);
    QFETCH(QString, cancel);

    QTranslator translator;
    QVERIFY(translator.load(QStringLiteral(":/translations/") + file));
    QCOMPARE(translator.translate("QPlatformTheme", "Cancel"), cancel);
}

void tst_UtilsDllGlobal::eachFunctionMakesOneCallInFormatVersionOne_data()
{
    QTest::addColumn<Function>("function");
    QTest::addColumn<bool>("registers");

    QTest::newRow("qCleanupResources_translations")
        << Function(qCleanupResources_translations) << false;
    QTest::newRow("qInitResources_translations") << Function(qInitResources_translations) << true;
    QTest::newRow("qCleanupResources_vek") << Function(qCleanupResources_vek) << false;
    QTest::newRow("qInitResources_vek") << Function(qInitResources_vek) << true;
}

void tst_UtilsDllGlobal::eachFunctionMakesOneCallInFormatVersionOne()
{
    QFETCH(Function, function);
    QFETCH(bool, registers);

    registrations = Calls();
    removals = Calls();
    QCOMPARE(function(), 1);
    QCOMPARE(registrations.count, registers ? 1 : 0);
    QCOMPARE(removals.count, registers ? 0 : 1);
    QCOMPARE((registers ? registrations : removals).versions[0], 1);
}

void tst_UtilsDllGlobal::registeringAgainLeavesTheTreeUsable_data()
{
    QTest::addColumn<Function>("init");
    QTest::addColumn<Function>("remove");
    QTest::addColumn<QString>("path");
    QTest::addColumn<QString>("otherPath");

    const QString main = QStringLiteral(":/qss/mac.qss");
    const QString translations = QStringLiteral(":/translations/qt_de.qm");
    QTest::newRow("main") << Function(qInitResources_vek) << Function(qCleanupResources_vek) << main
                          << translations;
    QTest::newRow("translations") << Function(qInitResources_translations)
                                  << Function(qCleanupResources_translations) << translations
                                  << main;
}

void tst_UtilsDllGlobal::registeringAgainLeavesTheTreeUsable()
{
    QFETCH(Function, init);
    QFETCH(QString, path);

    QCOMPARE(init(), 1);
    QVERIFY(!contents(path).isEmpty());
    QVERIFY(QDir(QStringLiteral(":/")).exists());
    QVERIFY(QDir(QStringLiteral(":/")).entryList().contains(path.section(QLatin1Char('/'), 1, 1)));
}

void tst_UtilsDllGlobal::aTreeThatWasCleanedUpComesBack()
{
    QFETCH(Function, init);
    QFETCH(Function, remove);
    QFETCH(QString, path);
    QFETCH(QString, otherPath);

    QCOMPARE(remove(), 1);
    QVERIFY(!QFile::exists(path));
    QVERIFY(QFile::exists(otherPath));
    QCOMPARE(remove(), 1);
    QCOMPARE(init(), 1);
    QVERIFY(QFile::exists(path));
    QVERIFY(QFile::exists(otherPath));
}

void tst_UtilsDllGlobal::theTreesAreRemovedAtExit()
{
    QProcess process;
    process.start(QCoreApplication::applicationFilePath(), {QStringLiteral("--exit")});
    QVERIFY(process.waitForFinished(60000));
    QCOMPARE(process.readAllStandardOutput(), QByteArray("end\nremoval 1\nremoval 2\n"));
    QCOMPARE(process.exitStatus(), QProcess::NormalExit);
    QCOMPARE(process.exitCode(), 0);
}

void tst_UtilsDllGlobal::theEmptyFunctionIsThere()
{
    void (*const function)() = fakeCoverageThreadSafeObjectFunction;
    function();

    Dl_info place;
    QVERIFY(dladdr(reinterpret_cast<void*>(function), &place));
    QVERIFY2(std::strstr(place.dli_fname, "UtilsDllkrnv3"), place.dli_fname);
}

int main(int argc, char* argv[])
{
    QCoreApplication application(argc, argv);
    if (application.arguments().contains(QStringLiteral("--exit"))) {
        std::puts("end");
        std::fflush(stdout);
        printRemovals = true;
        return 0;
    }

    tst_UtilsDllGlobal test;
    return QTest::qExec(&test, argc, argv);
}

#include "tst_UtilsDllGlobal.moc"
