#include "Logger.h"
#include "MessageCounter.h"
#include "RecordingLogger.h"
#include "Settings.h"
#include "TemporarySettings.h"

#include <QtTest>

#include <cstddef>
#include <cstring>
#include <string>
#include <type_traits>
#include <vector>

using namespace VEK_NAMESPACE;

namespace {

/// The entry of a virtual operation in its class's table, counted from 0. The Itanium C++ ABI,
/// which all our compilers follow, holds it in the first word of a pointer to the operation as 1
/// plus the offset in bytes.
template <typename Operation>
std::ptrdiff_t tableEntry(Operation operation)
{
    std::ptrdiff_t word = 0;
    std::memcpy(&word, &operation, sizeof(word));
    return (word - 1) / std::ptrdiff_t(sizeof(void*));
}

/// Keeps the bytes that arrive, and tells when it goes.
class ByteLogger : public ILoggerInterface
{
public:
    explicit ByteLogger(bool& alive)
        : m_alive(alive)
    {
        m_alive = true;
    }
    ~ByteLogger() override { m_alive = false; }

    void setup(const std::string&, const std::string&, char) override { ++setups; }
    void log(char level, const char* text) override { lines.push_back(level + std::string(text)); }
    QSharedPointer<ILoggerTrace> trace(const char*, const char*, int) override { return {}; }

    int setups = 0;
    std::vector<std::string> lines;

private:
    bool& m_alive;
};

class Trace : public ILoggerTrace
{
public:
    explicit Trace(bool& ended)
        : m_ended(ended)
    {}
    ~Trace() override { m_ended = true; }

private:
    bool& m_ended;
};

} // namespace

class tst_Logger : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void thereIsNoneAtLoad();
    void theOperationsStandInTheirOrder_data();
    void theOperationsStandInTheirOrder();
    void theOperationsHaveTheirTypes();
    void aTraceEndsWithItsLastPointer();
    void withoutALoggerNothingIsWritten();
    void textIsUtf8WithoutALineEnding();
    void theLibraryOnlyLogsToALoggerThatItDoesNotOwn();
};

void tst_Logger::thereIsNoneAtLoad()
{
    static_assert(std::is_same<decltype(g_logger), ILoggerInterface*>::value,
                  "g_logger is a plain pointer");
    QVERIFY(!g_logger);
}

void tst_Logger::theOperationsStandInTheirOrder_data()
{
    QTest::addColumn<qint64>("entry");
    QTest::addColumn<qint64>("expected");

    // The two entries of the destructor come first.
    QTest::newRow("setup") << qint64(tableEntry(&ILoggerInterface::setup)) << qint64(2);
    QTest::newRow("log") << qint64(tableEntry(&ILoggerInterface::log)) << qint64(3);
    QTest::newRow("trace") << qint64(tableEntry(&ILoggerInterface::trace)) << qint64(4);
}

void tst_Logger::theOperationsStandInTheirOrder()
{
    QFETCH(qint64, entry);
    QFETCH(qint64, expected);

    QCOMPARE(entry, expected);
}

void tst_Logger::theOperationsHaveTheirTypes()
{
    using Setup = void (ILoggerInterface::*)(const std::string&, const std::string&, char);
    using Log = void (ILoggerInterface::*)(char, const char*);
    using Trace = QSharedPointer<ILoggerTrace> (ILoggerInterface::*)(const char*, const char*, int);
    QVERIFY((std::is_same<decltype(&ILoggerInterface::setup), Setup>::value));
    QVERIFY((std::is_same<decltype(&ILoggerInterface::log), Log>::value));
    QVERIFY((std::is_same<decltype(&ILoggerInterface::trace), Trace>::value));
    QVERIFY(std::is_abstract<ILoggerInterface>::value);
    QVERIFY(std::has_virtual_destructor<ILoggerInterface>::value);
    QCOMPARE(sizeof(ILoggerInterface), sizeof(void*));
}

void tst_Logger::aTraceEndsWithItsLastPointer()
{
    bool ended = false;
    QSharedPointer<ILoggerTrace> first(new Trace(ended));
    QSharedPointer<ILoggerTrace> second = first;
    first.clear();
    QVERIFY(!ended);
    second.clear();
    QVERIFY(ended);
}

void tst_Logger::withoutALoggerNothingIsWritten()
{
    const MessageCounter messages;
    {
        CTemporarySettings overlay(nullptr);
        CSettings::setTemporarySettings(overlay);
        CSettings().logWhenTempSettingsDeleted();
    }
    CSettings::removeTemporarySettings();
    QCOMPARE(messages.count(), 0);
}

void tst_Logger::textIsUtf8WithoutALineEnding()
{
    bool alive = false;
    ByteLogger logger(alive);
    g_logger = &logger;
    {
        CTemporarySettings overlay(nullptr);
        overlay.setSharedSettingsPath(QString::fromUtf8("/größe/写真 %1.ini"));
        CSettings::setTemporarySettings(overlay);
    }
    g_logger = nullptr;

    const std::vector<std::string> expected = {
        "DInfo: settings are now stored in file: /gr\xc3\xb6\xc3\x9f"
        "e/\xe5\x86\x99\xe7\x9c\x9f %1.ini"};
    QVERIFY(logger.lines == expected);
}

void tst_Logger::theLibraryOnlyLogsToALoggerThatItDoesNotOwn()
{
    bool alive = false;
    ByteLogger logger(alive);
    g_logger = &logger;
    CSettings::removeTemporarySettings();
    QVERIFY(g_logger == &logger);
    g_logger = nullptr;

    QCOMPARE(logger.lines, std::vector<std::string>{"DInfo: settings are now stored in system"});
    QCOMPARE(logger.setups, 0);
    QVERIFY(alive);
}

QTEST_GUILESS_MAIN(tst_Logger)
#include "tst_Logger.moc"
