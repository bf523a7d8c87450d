#include "MacTest.h"

#include "ApplicationParametersHandler.h"
#include "Files.h"
#include "MessageCounter.h"
#include "RecordingLogger.h"

#include <QDir>
#include <QProcess>
#include <QProcessEnvironment>
#include <QRegularExpression>
#include <QTemporaryDir>
#include <QTimer>

#include <algorithm>
#include <csignal>
#include <functional>
#include <memory>
#include <vector>

#include <sys/prctl.h>
#include <sys/stat.h>
#include <unistd.h>

using Handler = CApplicationParametersHandler_Abstract;

namespace {

const QString announcement = QStringLiteral("APP_CAN_HANDLE_CMD_LINE_ARGSkrnv3");
const QString answer = QStringLiteral("CMD_LINE_ARGSkrnv3");
const QString ready = QStringLiteral("READY");
const QString report = QStringLiteral("REPORT");

char program[] = "program";
char* programOnly[] = {program, nullptr};

struct Message
{
    QString name;
    QString text;
    bool hasMore; ///< has a dictionary
};

QString toQString(NSString* text)
{
    return text ? QString::fromUtf8([text UTF8String]) : QString();
}

NSString* toNSString(const QString& text)
{
    return [NSString stringWithUTF8String:text.toUtf8().constData()];
}

void post(const QString& name, const QString& text = QString(), BOOL deliverImmediately = NO)
{
    NSAutoreleasePool* pool = [[NSAutoreleasePool alloc] init];
    [[NSDistributedNotificationCenter defaultCenter] postNotificationName:toNSString(name)
                                                                   object:toNSString(text)
                                                                 userInfo:nil
                                                       deliverImmediately:deliverImmediately];
    [pool release];
}

bool exists(const QString& path)
{
    struct stat status = {};
    return lstat(QFile::encodeName(path).constData(), &status) == 0;
}

/// What a receiver writes that has been handed \a arguments: its path stands before them.
QByteArray words(const QList<QByteArray>& arguments)
{
    QByteArray words = QByteArray(RECEIVER) + '\0';
    for (const QByteArray& argument : arguments)
        words += argument + '\0';
    return words;
}

bool isUuid(const QString& text)
{
    static const QRegularExpression form(
        QStringLiteral("\\A[0-9A-F]{8}-[0-9A-F]{4}-[0-9A-F]{4}-[0-9A-F]{4}-[0-9A-F]{12}\\z"));
    return form.match(text).hasMatch();
}

/// Ends with the test at the latest, however that ends.
class Process : public QProcess
{
protected:
    void setupChildProcess() override { prctl(PR_SET_PDEATHSIG, SIGKILL); }
};

bool hasEnded(QProcess& process)
{
    return process.state() == QProcess::NotRunning || process.waitForFinished();
}

/// The processes that were started with \a variable in their environment.
std::vector<pid_t> processesWith(const QByteArray& variable)
{
    std::vector<pid_t> processes;
    const QStringList entries = QDir(QStringLiteral("/proc")).entryList(QDir::Dirs);
    for (const QString& entry : entries) {
        QFile environment(QStringLiteral("/proc/%1/environ").arg(entry));
        if (environment.open(QIODevice::ReadOnly)
            && environment.readAll().split('\0').contains(variable)) {
            processes.push_back(entry.toInt());
        }
    }
    return processes;
}

} // namespace

/// The notifications that reach another process of the user.
@interface Witness : NSObject {
@public
    std::vector<Message> m_messages;
    std::function<void(const Message&)> m_onMessage;
}
- (void)onNotification:(NSNotification*)notification;
- (QStringList)names;
- (QStringList)textsOf:(const QString&)name;
@end

@implementation Witness

- (id)init
{
    self = [super init];
    for (const QString& name : {announcement, answer, ready, report}) {
        [[NSDistributedNotificationCenter defaultCenter] addObserver:self
                                                            selector:@selector(onNotification:)
                                                                name:toNSString(name)
                                                              object:nil];
    }
    return self;
}

- (void)dealloc
{
    [[NSDistributedNotificationCenter defaultCenter] removeObserver:self];
    [super dealloc];
}

- (void)onNotification:(NSNotification*)notification
{
    m_messages.push_back({toQString([notification name]), toQString([notification object]),
                          [notification userInfo] != nil});
    if (m_onMessage)
        m_onMessage(m_messages.back());
}

- (QStringList)names
{
    QStringList names;
    for (const Message& message : m_messages)
        names << message.name;
    return names;
}

- (QStringList)textsOf:(const QString&)name
{
    QStringList texts;
    for (const Message& message : m_messages) {
        if (message.name == name)
            texts << message.text;
    }
    return texts;
}

@end

/// Messages between processes, through a notification server of the test's own.
class tst_MacHandOverProcesses : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void init();
    void cleanup();
    void cleanupTestCase();

    void announcementReachesOthersAtOnce();
    void processTakesTheArguments_data();
    void processTakesTheArguments();
    void processWithArgumentsIsNotHandedAny();
    void emptyAnswerEndsListening();
    void secondAnswerIsIgnored();
    void answersTogetherGiveOneList();
    void oneOfTwoProcessesTakesTheArguments();
    void launcherAnswersAtOnce();

    void answerOfALauncherIsTaken();
    void answerThatWaitsWhenListeningEndsIsLeft();
    void answerThatWaitsAtDestructionIsLeft();
    void lateAnswerIsLeft();

private:
    QString path(const QString& name) const { return m_folder->filePath(name); }
    QString write(const QString& name, const QByteArray& content) const
    {
        if (!writeFile(path(name), content))
            qFatal("cannot write %s", qPrintable(path(name)));
        return path(name);
    }

    QProcess& startReceiver(const QStringList& arguments = QStringList());
    /// Has another process answer, which the server has passed on when this returns; its exit code.
    int launch(const QString& path);
    /// What the receivers have received, sorted, when all have ended.
    QList<QByteArray> received();

    Process m_server;
    QTimer m_runLoop;
    NSAutoreleasePool* m_pool = nil;
    Witness* m_witness = nil;
    std::unique_ptr<QTemporaryDir> m_folder;
    std::vector<std::unique_ptr<Process>> m_processes;
    std::unique_ptr<MessageCounter> m_messages;
    std::unique_ptr<RecordingLogger> m_logger;
};

void tst_MacHandOverProcesses::initTestCase()
{
    // Where the server and those who look for it meet.
    const QString meetingPlace = QFile::decodeName(qgetenv("TMP"));
    QVERIFY(QFile::exists(meetingPlace));
    const QString folder = toQString(NSTemporaryDirectory());
    QVERIFY2(folder.startsWith(meetingPlace), qPrintable(folder));

    m_server.setProcessChannelMode(QProcess::ForwardedChannels);
    m_server.start(QStringLiteral(NOTIFICATION_SERVER), {QStringLiteral("--no-fork")});
    QVERIFY(m_server.waitForStarted());
    // Its name there is "GDNCServer", encoded.
    QTRY_VERIFY_WITH_TIMEOUT(
        exists(folder + QStringLiteral("/NSMessagePort/names/R0ROQ1NlcnZlcg==")), 30000);

    // The centre's messages come through another loop than the test's.
    connect(&m_runLoop, &QTimer::timeout, this, [] {
        NSAutoreleasePool* pool = [[NSAutoreleasePool alloc] init];
        [[NSRunLoop currentRunLoop] runMode:NSDefaultRunLoopMode beforeDate:[NSDate distantPast]];
        [pool release];
    });
    m_runLoop.start(5);
}

void tst_MacHandOverProcesses::init()
{
    RecordingCocoa::instance().clear();
    RecordingCocoa::instance().distribute = true;
    m_folder = std::make_unique<QTemporaryDir>();
    QVERIFY(m_folder->isValid());
    m_messages = std::make_unique<MessageCounter>();
    m_logger = std::make_unique<RecordingLogger>();
    m_pool = [[NSAutoreleasePool alloc] init];
    m_witness = [[Witness alloc] init];
}

void tst_MacHandOverProcesses::cleanup()
{
    [[NSDistributedNotificationCenter defaultCenter] setSuspended:NO];
    [m_witness release];
    [m_pool release];
    for (const auto& process : m_processes)
        process->kill();
    m_processes.clear();
    // Whatever happens, nothing is said.
    const QStringList lines = m_logger->takeLines();
    const int messages = m_messages->count();
    m_logger.reset();
    m_messages.reset();
    QCOMPARE(lines, QStringList());
    QCOMPARE(messages, 0);
    QCOMPARE(liveCoreObjects(), 0);
}

void tst_MacHandOverProcesses::cleanupTestCase()
{
    m_runLoop.stop();
    const QProcess::ProcessState state = m_server.state();
    m_server.terminate();
    if (!hasEnded(m_server)) {
        m_server.kill();
        hasEnded(m_server);
    }
    // Who finds no server starts one.
    const std::vector<pid_t> left = processesWith("TMP=" + qgetenv("TMP"));
    for (const pid_t process : left)
        kill(process, SIGKILL);
    QVERIFY(left.empty());
    QCOMPARE(state, QProcess::Running);
}

QProcess& tst_MacHandOverProcesses::startReceiver(const QStringList& arguments)
{
    m_processes.push_back(std::make_unique<Process>());
    QProcess& process = *m_processes.back();
    process.start(QStringLiteral(RECEIVER), arguments);
    return process;
}

int tst_MacHandOverProcesses::launch(const QString& path)
{
    Process launcher;
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert(QStringLiteral("ANSWER"), path);
    launcher.setProcessEnvironment(environment);
    launcher.start(QStringLiteral(RECEIVER), QStringList());
    return hasEnded(launcher) && launcher.exitStatus() == QProcess::NormalExit ? launcher.exitCode()
                                                                               : -1;
}

QList<QByteArray> tst_MacHandOverProcesses::received()
{
    QList<QByteArray> outputs;
    for (const auto& process : m_processes) {
        if (!hasEnded(*process))
            outputs << "(still running)";
        else if (process->exitStatus() != QProcess::NormalExit || process->exitCode() != 0)
            outputs << "(failed)";
        else
            outputs << process->readAllStandardOutput() + process->readAllStandardError();
    }
    std::sort(outputs.begin(), outputs.end());
    return outputs;
}

void tst_MacHandOverProcesses::announcementReachesOthersAtOnce()
{
    [[NSDistributedNotificationCenter defaultCenter] setSuspended:YES];
    startReceiver();

    QTRY_COMPARE([m_witness names], QStringList({announcement}));
    const QString identity = m_witness->m_messages.front().text;
    QVERIFY2(isUuid(identity), qPrintable(identity));
    QVERIFY(!m_witness->m_messages.front().hasMore);

    // What came between needn't come at once.
    post(report, QString(), YES);
    QCOMPARE(received(), QList<QByteArray>({""}));
    QTRY_COMPARE([m_witness names], QStringList({announcement, report}));
}

void tst_MacHandOverProcesses::processTakesTheArguments_data()
{
    QTest::addColumn<bool>("deliverImmediately");

    QTest::newRow("at once") << true;
    QTest::newRow("or when it's convenient") << false;
}

void tst_MacHandOverProcesses::processTakesTheArguments()
{
    QFETCH(bool, deliverImmediately);
    const QString file =
        write(QString::fromUtf8("a file, ä 日本"), QByteArray("a\n\nb c\r\n--ä 📷\n"));
    startReceiver();
    QTRY_COMPARE([m_witness names], QStringList({announcement, ready}));

    post(answer, file, deliverImmediately);
    post(report);

    QCOMPARE(received(), QList<QByteArray>({words({"a", "b c\r", "--ä 📷"})}));
    QVERIFY(!exists(file));
}

void tst_MacHandOverProcesses::processWithArgumentsIsNotHandedAny()
{
    const QString file = write(QStringLiteral("file"), "a\n");
    startReceiver({QStringLiteral("picture.png")});
    QTRY_COMPARE([m_witness names], QStringList({ready}));

    post(answer, file);
    post(report);

    QCOMPARE(received(), QList<QByteArray>({""}));
    QVERIFY(exists(file));
}

void tst_MacHandOverProcesses::emptyAnswerEndsListening()
{
    const QString file = write(QStringLiteral("file"), "a\n");
    startReceiver();
    QTRY_COMPARE([m_witness names], QStringList({announcement, ready}));

    post(answer);
    post(answer, file);
    post(report);

    QCOMPARE(received(), QList<QByteArray>({""}));
    QVERIFY(exists(file));
}

void tst_MacHandOverProcesses::secondAnswerIsIgnored()
{
    const QString first = write(QStringLiteral("first"), "first\n");
    const QString second = write(QStringLiteral("second"), "second\n");
    startReceiver();
    QTRY_COMPARE([m_witness names], QStringList({announcement, ready}));

    post(answer, first);
    QTRY_VERIFY(!exists(first));
    post(answer, second);
    post(report);

    QCOMPARE(received(), QList<QByteArray>({words({"first"})}));
    QCOMPARE(readFile(second), QByteArray("second\n"));
}

void tst_MacHandOverProcesses::answersTogetherGiveOneList()
{
    const QString first = write(QStringLiteral("first"), "first\n");
    const QString second = write(QStringLiteral("second"), "second\n");
    QProcess& receiver = startReceiver();
    QTRY_COMPARE([m_witness names], QStringList({announcement, ready}));

    QCOMPARE(kill(pid_t(receiver.processId()), SIGSTOP), 0);
    post(answer, first);
    post(answer, second);
    QCOMPARE(kill(pid_t(receiver.processId()), SIGCONT), 0);
    QTRY_VERIFY(!exists(first));
    post(report);

    QCOMPARE(received(), QList<QByteArray>({words({"first"})}));
    QVERIFY(exists(second));
}

void tst_MacHandOverProcesses::oneOfTwoProcessesTakesTheArguments()
{
    const QString file = write(QStringLiteral("file"), "a\n");
    startReceiver();
    QProcess& other = startReceiver();
    QTRY_COMPARE([m_witness names].count(ready), 2);
    const QStringList identities = [m_witness textsOf:announcement];
    QCOMPARE(identities.size(), 2);
    QVERIFY(identities.first() != identities.last());

    // The message waits for the one that can't take it yet.
    QCOMPARE(kill(pid_t(other.processId()), SIGSTOP), 0);
    post(answer, file);
    QTRY_VERIFY(!exists(file));
    QCOMPARE(kill(pid_t(other.processId()), SIGCONT), 0);
    post(report);

    QCOMPARE(received(), QList<QByteArray>({"", words({"a"})}));
}

void tst_MacHandOverProcesses::launcherAnswersAtOnce()
{
    const QString file = write(QStringLiteral("file"), "a\n");
    m_witness->m_onMessage = [file](const Message& message) {
        if (message.name == announcement)
            post(answer, file, YES);
        else if (message.name == ready)
            post(report);
    };

    startReceiver();

    QTRY_VERIFY([m_witness names].contains(report));
    QCOMPARE(received(), QList<QByteArray>({words({"a"})}));
    QVERIFY(!exists(file));
}

void tst_MacHandOverProcesses::answerOfALauncherIsTaken()
{
    const QString file = write(QStringLiteral("file"), "a\n");
    const Handler handler(1, programOnly);

    QCOMPARE(launch(file), 0);

    QTRY_COMPARE(handler.receivedArguments(),
                 QStringList({QCoreApplication::applicationFilePath(), "a"}));
    QVERIFY(!exists(file));
    QCOMPARE([m_witness names], QStringList({announcement, answer}));
}

void tst_MacHandOverProcesses::answerThatWaitsWhenListeningEndsIsLeft()
{
    const QString file = write(QStringLiteral("file"), "a\n");
    const Handler handler(1, programOnly);

    QCOMPARE(launch(file), 0);
    handler.onArgumentsProcessed();
    QTRY_COMPARE([m_witness names], QStringList({announcement, answer}));

    QCOMPARE(handler.receivedArguments(), QStringList());
    QVERIFY(exists(file));
}

void tst_MacHandOverProcesses::answerThatWaitsAtDestructionIsLeft()
{
    const QString file = write(QStringLiteral("file"), "a\n");
    auto handler = std::make_unique<Handler>(1, programOnly);

    QCOMPARE(launch(file), 0);
    handler.reset();
    QTRY_COMPARE([m_witness names], QStringList({announcement, answer}));

    QVERIFY(exists(file));
}

void tst_MacHandOverProcesses::lateAnswerIsLeft()
{
    const QString file = write(QStringLiteral("file"), "a\n");
    auto handler = std::make_unique<Handler>(1, programOnly);
    QTRY_COMPARE([m_witness names], QStringList({announcement}));

    handler.reset();
    post(answer, file);
    QTRY_COMPARE([m_witness names], QStringList({announcement, answer}));

    QVERIFY(exists(file));
}

int main(int argc, char** argv)
{
    // Also this process looks for the server where no other is, and so do those that it starts.
    const QTemporaryDir meetingPlace;
    if (!meetingPlace.isValid())
        qFatal("cannot make a folder");
    for (const char* variable : {"TMP", "TEMP"})
        qputenv(variable, QFile::encodeName(meetingPlace.path()));
    [NSProcessInfo initializeWithArguments:argv count:argc environment:environ];
    return runMacTest<tst_MacHandOverProcesses>(argc, argv);
}

#include "tst_MacHandOverProcesses.moc"
