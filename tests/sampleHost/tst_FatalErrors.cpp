// Why the sample host can't go on, told by the system's own alert. Each row is a process of its
// own, which is this program once more, with a program in its PATH that records what it is to show.

#include "FatalErrors.h"
#include "Files.h"
#include "LanguageManager.h"
#include "Settings.h"
#include "TemporarySettings.h"

#include <QByteArrayList>
#include <QCoreApplication>
#include <QDir>
#include <QProcess>
#include <QProcessEnvironment>
#include <QTemporaryDir>
#include <QTest>

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <limits>
#include <memory>
#include <new>
#include <optional>
#include <stdexcept>
#include <thread>

#include <sys/resource.h>

using namespace VEK_NAMESPACE;

namespace {

const char memoryText[] =
    "Vek Marlowick 3 must close because there is not enough memory available.\n"
    "Please close some other programs and try to start Vek Marlowick 3 again.";
const char exceptionText[] = "Vek Marlowick 3 must close because of an unhandled exception.";
const char spaceText[] =
    "Vek Marlowick 3 cannot start since there is not enough free space on your system disk.";

} // namespace

class tst_FatalErrors : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();

    void the_user_is_told_data();
    void the_user_is_told();
    void in_the_language_of_the_moment_data();
    void in_the_language_of_the_moment();
    void without_a_program_it_is_written();
    void too_little_space_is_told_data();
    void too_little_space_is_told();
    void caught_exceptions_and_memory_that_is_there_tell_nothing();
    void afterwards_nothing_is_told();

private:
    QString path(const char* name) const { return m_folder->filePath(QLatin1String(name)); }

    /// Starts a process that does what \a what says and waits for its end.
    void run(const QStringList& what);
    /// The alerts' titles and texts, one after the other.
    QByteArrayList shown() const;

    std::unique_ptr<QTemporaryDir> m_folder;
    QProcessEnvironment m_environment;
    std::unique_ptr<QProcess> m_process;
};

void tst_FatalErrors::init()
{
    m_folder = std::make_unique<QTemporaryDir>();
    const QString program = path("bin/zenity");
    QVERIFY(writeFile(program,
                      "#!/bin/sh\nfor word in \"$@\"; do printf '%s\\0' \"$word\"; done >>'"
                          + QFile::encodeName(path("words")) + "'\n"));
    QVERIFY(QFile::setPermissions(program, QFile::ReadOwner | QFile::ExeOwner));
    m_environment = QProcessEnvironment::systemEnvironment();
    m_environment.insert(QStringLiteral("PATH"), path("bin"));
    m_environment.insert(QStringLiteral("DISPLAY"), QStringLiteral(":99"));
}

void tst_FatalErrors::run(const QStringList& what)
{
    m_process = std::make_unique<QProcess>();
    m_process->setProcessEnvironment(m_environment);
    m_process->start(QCoreApplication::applicationFilePath(),
                     QStringList(QStringLiteral("--then")) + what);
    QVERIFY(m_process->waitForFinished(60000));
}

QByteArrayList tst_FatalErrors::shown() const
{
    QByteArrayList texts;
    if (!QFile::exists(path("words")))
        return texts;
    const QByteArrayList words = readFile(path("words")).split('\0');
    for (const QByteArray& word : words) {
        for (const QByteArray& option : {QByteArray("--title="), QByteArray("--text=")}) {
            if (word.startsWith(option))
                texts << word.mid(option.size());
        }
    }
    return texts;
}

void tst_FatalErrors::the_user_is_told_data()
{
    QTest::addColumn<QString>("what");
    QTest::addColumn<QByteArray>("text");
    QTest::addColumn<bool>("aborts");
    QTest::newRow("no memory") << "memory" << QByteArray(memoryText) << false;
    QTest::newRow("no memory in a thread")
        << "memory in a thread" << QByteArray(memoryText) << false;
    QTest::newRow("an exception") << "exception" << QByteArray(exceptionText) << true;
    QTest::newRow("an exception in a thread")
        << "exception in a thread" << QByteArray(exceptionText) << true;
    QTest::newRow("something thrown that is no exception")
        << "number" << QByteArray(exceptionText) << true;
}

void tst_FatalErrors::the_user_is_told()
{
    QFETCH(QString, what);
    QFETCH(QByteArray, text);
    QFETCH(bool, aborts);
    run({what});
    QCOMPARE(shown(), QByteArrayList({"Error", text}));
    QCOMPARE(m_process->exitStatus(), aborts ? QProcess::CrashExit : QProcess::NormalExit);
    if (!aborts)
        QCOMPARE(m_process->exitCode(), EXIT_FAILURE);
    QCOMPARE(m_process->readAllStandardOutput(), QByteArray());
}

void tst_FatalErrors::in_the_language_of_the_moment_data()
{
    QTest::addColumn<QStringList>("languages"); ///< rows of the languages in the preferences
    QTest::addColumn<QByteArrayList>("texts");
    QTest::newRow("German") << QStringList{"0"}
                            << QByteArrayList{"Fehler",
                                              "Vek Marlowick 3 muss wegen eines unbehandelten "
                                              "Ausnahmefehlers beendet werden."};
    QTest::newRow("French") << QStringList{"2"}
                            << QByteArrayList{"Erreur",
                                              "Vek Marlowick 3 doit se fermer à cause d’une "
                                              "exception non gérée."};
    QTest::newRow("Japanese") << QStringList{"3"}
                              << QByteArrayList{"エラー",
                                                "処理されない例外が発生したため、Vek Marlowick 3 "
                                                "を終了します。"};
    QTest::newRow("back to English")
        << QStringList{"0", "3", "1"} << QByteArrayList{"Error", exceptionText};
}

void tst_FatalErrors::in_the_language_of_the_moment()
{
    QFETCH(QStringList, languages);
    QFETCH(QByteArrayList, texts);
    QStringList what;
    for (const QString& language : qAsConst(languages))
        what << QStringLiteral("language") << language;
    run(what << QStringLiteral("exception"));
    QCOMPARE(shown(), texts);
}

void tst_FatalErrors::without_a_program_it_is_written()
{
    m_environment.insert(QStringLiteral("PATH"), path("none"));
    run({QStringLiteral("memory")});
    QCOMPARE(m_process->exitCode(), EXIT_FAILURE);
    QCOMPARE(m_process->readAllStandardError(),
             QByteArray("Error: ") + memoryText + QByteArray("\n"));
    QCOMPARE(shown(), QByteArrayList());
}

void tst_FatalErrors::too_little_space_is_told_data()
{
    QTest::addColumn<QString>("folder");
    QTest::addColumn<QString>("bytes");
    QTest::addColumn<bool>("fits");
    const QString huge = QString::number(std::numeric_limits<qint64>::max());
    const QString here = QDir::tempPath();
    QTest::newRow("a little") << here << "1" << true;
    QTest::newRow("far too much") << here << huge << false;
    QTest::newRow("far too much in a folder that isn't there yet")
        << here + QStringLiteral("/a/b/c") << huge << false;
    QTest::newRow("a little in a folder that isn't there yet")
        << here + QStringLiteral("/a/b/c") << "1" << true;
    QTest::newRow("a file system without any space") << "/proc/none"
                                                     << "1" << false;
}

void tst_FatalErrors::too_little_space_is_told()
{
    QFETCH(QString, folder);
    QFETCH(QString, bytes);
    QFETCH(bool, fits);
    run({QStringLiteral("space"), folder, bytes});
    QCOMPARE(m_process->exitCode(), 0);
    QCOMPARE(m_process->readAllStandardOutput(), QByteArray(fits ? "fits\n" : "does not fit\n"));
    QCOMPARE(shown(), fits ? QByteArrayList() : QByteArrayList({"Error", spaceText}));
}

void tst_FatalErrors::caught_exceptions_and_memory_that_is_there_tell_nothing()
{
    run({QStringLiteral("nothing")});
    QCOMPARE(m_process->exitStatus(), QProcess::NormalExit);
    QCOMPARE(m_process->exitCode(), 0);
    QCOMPARE(shown(), QByteArrayList());
}

void tst_FatalErrors::afterwards_nothing_is_told()
{
    run({QStringLiteral("afterwards"), QStringLiteral("exception")});
    QCOMPARE(m_process->exitStatus(), QProcess::CrashExit);
    QCOMPARE(shown(), QByteArrayList());
}

namespace {

/// More than any machine has. A sanitizer's allocator asks no handler, so there it is asked here.
void takeMemory()
{
#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
    std::get_new_handler()();
#else
    volatile std::size_t size = std::numeric_limits<std::ptrdiff_t>::max();
    ::operator delete(::operator new(size));
#endif
}

[[noreturn]] void throwException()
{
    throw std::runtime_error("nobody catches it");
}

void inAThread(void (*function)())
{
    std::thread(function).join();
}

int doInTurn(QStringList what)
{
    const rlimit noCore = {0, 0};
    setrlimit(RLIMIT_CORE, &noCore);
    CTemporarySettings settings(nullptr);
    CSettings::setTemporarySettings(settings);
    CLanguageManager::instance()->loadLanguageForApp();
    std::optional<FatalErrors> errors(std::in_place);

    while (!what.isEmpty()) {
        const QString next = what.takeFirst();
        if (next == QLatin1String("language")) {
            CLanguageManager::instance()->changeLanguage(what.takeFirst().toInt());
            QCoreApplication::sendPostedEvents();
        } else if (next == QLatin1String("memory")) {
            takeMemory();
        } else if (next == QLatin1String("memory in a thread")) {
            inAThread(takeMemory);
        } else if (next == QLatin1String("exception")) {
            throwException();
        } else if (next == QLatin1String("exception in a thread")) {
            inAThread(throwException);
        } else if (next == QLatin1String("number")) {
            throw 5;
        } else if (next == QLatin1String("space")) {
            const QString folder = what.takeFirst();
            const bool fits = errors->hasFreeSpace(folder, what.takeFirst().toLongLong());
            std::puts(fits ? "fits" : "does not fit");
        } else if (next == QLatin1String("afterwards")) {
            errors.reset();
        } else if (next == QLatin1String("nothing")) {
            try {
                throwException();
            } catch (const std::exception&) {
                delete new int;
            }
        }
    }
    CSettings::removeTemporarySettings();
    return 0;
}

} // namespace

int main(int argc, char** argv)
{
    QCoreApplication application(argc, argv);
    if (argc > 2 && std::strcmp(argv[1], "--then") == 0)
        return doInTurn(QCoreApplication::arguments().mid(2));
    tst_FatalErrors test;
    return QTest::qExec(&test, argc, argv);
}

#include "tst_FatalErrors.moc"
