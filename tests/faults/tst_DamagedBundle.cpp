// The sample host in a bundle of which a part is damaged: it runs all the same, at most without a
// log.

#include "Files.h"
#include "HostUnderFault.h"

#include <QCoreApplication>
#include <QDir>
#include <QTemporaryDir>

#include <functional>
#include <memory>
#include <vector>

#include <unistd.h>

namespace {

QByteArray propertyList(const QByteArray& dictionary)
{
    return "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<plist version=\"1.0\">\n<dict>\n"
        + dictionary + "</dict>\n</plist>\n";
}

const QByteArray identifier("<key>CFBundleIdentifier</key>\n"
                            "<string>com.vek.krnv3.standalone</string>\n");

const char logger[] = "/Frameworks/libLoggerDllkrnv3.so";

} // namespace

using Damage = std::function<bool(const QString& contents)>;

/// A copy of the sample host's bundle in a home of its own, to which some damage is done, and an
/// acceptance run of it.
class DamagedBundle
{
public:
    /// Whether the run has begun.
    bool start(const Damage& damage)
    {
        for (const char* folder : {"MacOS", "Frameworks", "Resources/Resources"}) {
            if (!QDir().mkpath(contents() + QLatin1Char('/') + QLatin1String(folder)))
                return false;
        }
        const QString host = contents() + QStringLiteral("/MacOS/Host");
        const QString original = QFileInfo(QFileInfo(QStringLiteral(SAMPLE_HOST)).path()).path();
        if (!QFile::copy(QStringLiteral(SAMPLE_HOST), host)
            || !QFile::copy(original + QStringLiteral("/Info.plist"),
                            contents() + QStringLiteral("/Info.plist"))
            || !QFile::copy(QStringLiteral(LOGGER_LIBRARY), contents() + QLatin1String(logger))
            || !writeFile(path("passwd"),
                          "tester:x:" + QByteArray::number(getuid())
                              + ":0:Tester:" + QFile::encodeName(m_dir.path()) + ":/bin/sh\n")
            || !writeFile(path("case.js"), "scripting.log('hello')") || !damage(contents())) {
            return false;
        }
        QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
        environment.insert(QStringLiteral("NSS_WRAPPER_PASSWD"), path("passwd"));
        m_run = std::make_unique<HostUnderFault>(
            host, QStringList{QStringLiteral("--script"), path("case.js")}, environment);
        return true;
    }

    HostUnderFault& run() { return *m_run; }
    QByteArray report() const { return readFile(path("caseReport.txt")); }
    bool hasLog() const
    {
        return QFile::exists(path("Library/Vek_Labs/Vek Marlowick 3/Logs/Marlowick.log"));
    }

private:
    QString path(const char* name) const { return m_dir.filePath(QLatin1String(name)); }
    QString contents() const { return path("VekMarlowick3.app/Contents"); }

    QTemporaryDir m_dir;
    std::unique_ptr<HostUnderFault> m_run;
};

class tst_DamagedBundle : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void the_host_runs_data();
    void the_host_runs();

private:
    std::vector<std::unique_ptr<DamagedBundle>> m_bundles;
};

void tst_DamagedBundle::the_host_runs_data()
{
    QTest::addColumn<int>("bundle");
    QTest::addColumn<bool>("log");

    // Each run takes seconds, mostly idle: all of them are started here, and each row waits for its
    // own.
    const auto addRow = [this](const char* title, const Damage& damage, bool log) {
        m_bundles.push_back(std::make_unique<DamagedBundle>());
        if (!m_bundles.back()->start(damage))
            qFatal("can't make the bundle with %s", title);
        QTest::newRow(title) << int(m_bundles.size()) - 1 << log;
    };
    const auto list = [](const QByteArray& bytes) {
        return [bytes](const QString& contents) {
            return writeFile(contents + QStringLiteral("/Info.plist"), bytes);
        };
    };
    const auto library = [](const QByteArray& bytes) {
        return [bytes](const QString& contents) {
            return writeFile(contents + QLatin1String(logger), bytes);
        };
    };

    addRow(
        "no damage", [](const QString&) { return true; }, true);
    addRow("a property list that is as short as can be", list(propertyList(identifier)), true);

    addRow(
        "no property list",
        [](const QString& contents) {
            return QFile::remove(contents + QStringLiteral("/Info.plist"));
        },
        false);
    addRow("an empty property list", list(QByteArray()), false);
    addRow("a property list that is no text", list(QByteArray("\x00\xff\xfe\x80", 4).repeated(500)),
           false);
    addRow("half a property list", list(propertyList(identifier).left(120)), false);
    addRow("a binary property list without its end", list(QByteArray("bplist00\xd1\x01\x02", 11)),
           false);
    addRow("a binary property list with a table beyond its end",
           list(QByteArray("bplist00\xd0", 9) + QByteArray(6, '\0') + QByteArray(26, '\xff')),
           false);
    addRow("a property list without an identifier", list(propertyList("")), false);
    addRow("an identifier that is a number",
           list(propertyList("<key>CFBundleIdentifier</key>\n<integer>1</integer>\n")), false);
    addRow("a property list deeper than any stack",
           list(propertyList("<key>a</key>\n" + QByteArray("<array>").repeated(500000)
                             + QByteArray("</array>").repeated(500000))),
           false);
    addRow(
        "a folder in the property list's place",
        [](const QString& contents) {
            return QFile::remove(contents + QStringLiteral("/Info.plist"))
                && QDir(contents).mkdir(QStringLiteral("Info.plist"));
        },
        false);

    addRow(
        "no logger library",
        [](const QString& contents) { return QFile::remove(contents + QLatin1String(logger)); },
        false);
    addRow("a logger library without its function",
           library(readFile(QStringLiteral(LOGGER_WITHOUT_FUNCTION))), false);
    addRow("a logger library whose function gives none",
           library(readFile(QStringLiteral(LOGGER_WITHOUT_INSTANCE))), false);
    addRow("an empty logger library", library(QByteArray()), false);
    addRow("a logger library that is no library", library("no library"), false);
}

void tst_DamagedBundle::the_host_runs()
{
    QFETCH(int, bundle);
    QFETCH(bool, log);
    DamagedBundle& damaged = *m_bundles.at(size_t(bundle));
    QCOMPARE(damaged.run().exitCode(), 0);
    QCOMPARE(damaged.run().errors(), QString());
    QVERIFY(damaged.report().endsWith("\nhello\nPASS\n"));
    QCOMPARE(damaged.hasLog(), log);
}

QTEST_GUILESS_MAIN(tst_DamagedBundle)

#include "tst_DamagedBundle.moc"
