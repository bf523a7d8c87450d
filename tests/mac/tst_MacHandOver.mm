#include "MacTest.h"

#include "ApplicationParametersHandler.h"
#include "Files.h"
#include "MessageCounter.h"
#include "OrdinaryFileRights.h"
#include "RecordingLogger.h"

#include <QRegularExpression>
#include <QTemporaryDir>

#include <memory>
#include <vector>

#include <sys/stat.h>

#import <objc/runtime.h>

using Handler = CApplicationParametersHandler_Abstract;

@protocol ParametersController
- (id)initWithHandler:(const void*)handler;
- (void)onParametersReceived:(NSNotification*)notification;
@end

namespace {

NSString* const answer = @"CMD_LINE_ARGSkrnv3";

const char controllerName[] = "NSAuxApplicationParametersNotificationController";
const QString deallocation = QStringLiteral("controller dealloc");
const QString removal =
    QStringLiteral("distributed removeObserver: NSAuxApplicationParametersNotificationController");

char program[] = "program";
char* programOnly[] = {program, nullptr};

IMP g_dealloc = nullptr;
IMP g_readFile = nullptr;
IMP g_removeFile = nullptr;

void record(const QString& call)
{
    RecordingCocoa::instance().record(call);
}

QString fileName(NSString* path)
{
    return QFileInfo(QString::fromUtf8([path UTF8String])).fileName();
}

QString given(NSError** error)
{
    return error ? QStringLiteral("other") : QStringLiteral("nil");
}

void recordDealloc(id self, SEL command)
{
    record(deallocation);
    reinterpret_cast<void (*)(id, SEL)>(g_dealloc)(self, command);
}

id recordReading(id self, SEL command, NSString* path, NSStringEncoding encoding, NSError** error)
{
    record(QStringLiteral("stringWithContentsOfFile: %1 encoding: %2 error: %3")
               .arg(fileName(path))
               .arg(int(encoding))
               .arg(given(error)));
    return reinterpret_cast<id (*)(id, SEL, NSString*, NSStringEncoding, NSError**)>(g_readFile)(
        self, command, path, encoding, error);
}

BOOL recordRemoval(id self, SEL command, NSString* path, NSError** error)
{
    record(QStringLiteral("removeItemAtPath: %1 error: %2").arg(fileName(path), given(error)));
    return reinterpret_cast<BOOL (*)(id, SEL, NSString*, NSError**)>(g_removeFile)(self, command,
                                                                                   path, error);
}

id listener(int index = 0)
{
    return RecordingCocoa::instance().distributedListeners.value(index).observer;
}

int listenerCount()
{
    return RecordingCocoa::instance().distributedListeners.size();
}

QStringList calls()
{
    return RecordingCocoa::instance().takeCalls();
}

NSString* toNSString(const QString& text)
{
    return [NSString stringWithUTF8String:text.toUtf8().constData()];
}

/// As a launcher does; how many it reached.
int sendAnswer(const QString& path)
{
    NSAutoreleasePool* pool = [[NSAutoreleasePool alloc] init];
    const int reached = notifyDistributed(answer, toNSString(path));
    [pool release];
    return reached;
}

bool exists(const QString& path)
{
    struct stat status = {};
    return lstat(QFile::encodeName(path).constData(), &status) == 0;
}

/// The program's path, which stands before what has been received.
QStringList commandLine(const QStringList& arguments)
{
    return QStringList(QCoreApplication::applicationFilePath()) + arguments;
}

bool isUuid(const QString& text)
{
    static const QRegularExpression form(
        QStringLiteral("\\A[0-9A-F]{8}-[0-9A-F]{4}-[0-9A-F]{4}-[0-9A-F]{4}-[0-9A-F]{12}\\z"));
    return form.match(text).hasMatch();
}

NSString* identityOf(id controller)
{
    void* identity = nullptr;
    object_getInstanceVariable(controller, "m_handlerUUID_str", &identity);
    return reinterpret_cast<NSString*>(identity);
}

QString identityTextOf(id controller)
{
    return QString::fromUtf8([identityOf(controller) UTF8String]);
}

} // namespace

/// A handler and its controller, with nobody at the other end but the test.
class tst_MacHandOver : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void init();
    void cleanup();

    void controllersClass();
    void announcesItself();
    void eachHandlerHasAnIdentityOfItsOwn();
    void argumentsOfItsOwnKeepItOut_data();
    void argumentsOfItsOwnKeepItOut();

    void takesTheArguments_data();
    void takesTheArguments();
    void takesManyArguments();
    void answerWithoutArgumentsEndsListening_data();
    void answerWithoutArgumentsEndsListening();
    void answerWithoutAnObjectEndsListening();
    void fileThatCannotBeDeletedIsReadAllTheSame();
    void secondAnswerIsIgnored();
    void answerThatWasOnItsWayIsIgnored();
    void answerThatWasOnItsWayWhenListeningEndedIsIgnored();
    void notificationIsNotKept();
    void controllerWithoutAHandlerTakesNothing();
    void twoHandlersAtOnce();

    void endsListeningOnRequest();
    void endsListeningOnRequestAfterTheAnswer();
    void destructionEndsListening();
    void destructionAfterTheAnswer();

private:
    QString path(const QString& name) const { return m_folder->filePath(name); }
    QString write(const QString& name, const QByteArray& content) const
    {
        if (!writeFile(path(name), content))
            qFatal("cannot write %s", qPrintable(path(name)));
        return path(name);
    }

    std::unique_ptr<QTemporaryDir> m_folder;
    std::unique_ptr<MessageCounter> m_messages;
    std::unique_ptr<RecordingLogger> m_logger;
    NSAutoreleasePool* m_pool = nil;
};

void tst_MacHandOver::initTestCase()
{
    Class controller = objc_getClass(controllerName);
    QVERIFY(controller);
    g_dealloc = method_setImplementation(class_getInstanceMethod(controller, @selector(dealloc)),
                                         reinterpret_cast<IMP>(recordDealloc));
    g_readFile = method_setImplementation(
        class_getClassMethod([NSString class], @selector(stringWithContentsOfFile:encoding:error:)),
        reinterpret_cast<IMP>(recordReading));
    g_removeFile = method_setImplementation(
        class_getInstanceMethod([NSFileManager class], @selector(removeItemAtPath:error:)),
        reinterpret_cast<IMP>(recordRemoval));
}

void tst_MacHandOver::init()
{
    RecordingCocoa::instance().clear();
    m_folder = std::make_unique<QTemporaryDir>();
    QVERIFY(m_folder->isValid());
    m_messages = std::make_unique<MessageCounter>();
    m_logger = std::make_unique<RecordingLogger>();
    m_pool = [[NSAutoreleasePool alloc] init];
}

void tst_MacHandOver::cleanup()
{
    [m_pool release];
    // Whatever happens, nothing is said, and nothing is left.
    const QStringList lines = m_logger->takeLines();
    const int messages = m_messages->count();
    m_logger.reset();
    m_messages.reset();
    QCOMPARE(lines, QStringList());
    QCOMPARE(messages, 0);
    QCOMPARE(liveCoreObjects(), 0);
    QCOMPARE(listenerCount(), 0);
}

void tst_MacHandOver::controllersClass()
{
    Class controller = NSClassFromString(@"NSAuxApplicationParametersNotificationController");
    QVERIFY(controller);
    QCOMPARE([controller superclass], [NSObject class]);

    unsigned int count = 0;
    QStringList selectors;
    Method* methods = class_copyMethodList(controller, &count);
    for (unsigned int i = 0; i < count; ++i)
        selectors << QString::fromLatin1(sel_getName(method_getName(methods[i])));
    free(methods);
    for (const char* selector : {"initWithHandler:", "onParametersReceived:", "dealloc"})
        QVERIFY2(selectors.contains(QLatin1String(selector)), selector);

    QStringList fields;
    Ivar* ivars = class_copyIvarList(controller, &count);
    for (unsigned int i = 0; i < count; ++i) {
        QByteArray type = ivar_getTypeEncoding(ivars[i]);
        type.truncate(type.indexOf('=') < 0 ? type.size() : type.indexOf('='));
        fields << QString::fromLatin1(type + ' ' + ivar_getName(ivars[i]));
    }
    free(ivars);
    QCOMPARE(fields,
             QStringList({"^{CApplicationParametersHandler_Abstract m_handler",
                          "@\"NSString\" m_handlerUUID_str"}));
}

void tst_MacHandOver::announcesItself()
{
    const Handler handler(1, programOnly);

    QCOMPARE(listenerCount(), 1);
    const QString identity = identityTextOf(listener());
    QVERIFY2(isUuid(identity), qPrintable(identity));
    // It listens before it tells anybody.
    QCOMPARE(
        calls(),
        QStringList({"CFUUIDCreate NULL", "CFUUIDCreateString NULL",
                     "distributed addObserver: NSAuxApplicationParametersNotificationController "
                     "selector: onParametersReceived: name: CMD_LINE_ARGSkrnv3 object: nil",
                     "distributed post: APP_CAN_HANDLE_CMD_LINE_ARGSkrnv3 object: " + identity
                         + " userInfo: nil deliverImmediately: 1"}));
    QCOMPARE(handler.receivedArguments(), QStringList());

    QCOMPARE([listener() retainCount], NSUInteger(1));
    QCOMPARE([identityOf(listener()) retainCount], NSUInteger(1));
    QCOMPARE(liveCoreObjects(), 1); // the text, but not what it was made of
}

void tst_MacHandOver::eachHandlerHasAnIdentityOfItsOwn()
{
    constexpr int count = 20;
    std::vector<std::unique_ptr<Handler>> handlers;
    for (int i = 0; i < count; ++i)
        handlers.push_back(std::make_unique<Handler>(1, programOnly));

    QStringList identities;
    for (int i = 0; i < count; ++i)
        identities << identityTextOf(listener(i));
    for (const QString& identity : qAsConst(identities))
        QVERIFY2(isUuid(identity), qPrintable(identity));
    QCOMPARE(identities.removeDuplicates(), 0);
    QCOMPARE(liveCoreObjects(), count);
}

void tst_MacHandOver::argumentsOfItsOwnKeepItOut_data()
{
    QTest::addColumn<int>("argc");

    QTest::newRow("one") << 2;
    QTest::newRow("several") << 5;
    QTest::newRow("not even a program") << 0;
    QTest::newRow("a negative count") << -1;
}

void tst_MacHandOver::argumentsOfItsOwnKeepItOut()
{
    QFETCH(int, argc);
    const QString file = write(QStringLiteral("file"), "a\n");
    {
        const Handler handler(argc, nullptr); // which isn't read
        QCOMPARE(sendAnswer(file), 0);
        handler.onArgumentsProcessed();
        QCOMPARE(handler.receivedArguments(), QStringList());
    }
    QCOMPARE(calls(), QStringList());
    QVERIFY(exists(file));
}

void tst_MacHandOver::takesTheArguments_data()
{
    QTest::addColumn<QByteArray>("content");
    QTest::addColumn<QStringList>("arguments");

    const auto addRow = [](const char* title, const QByteArray& content,
                           const QStringList& arguments) {
        QTest::newRow(title) << content << arguments;
    };
    addRow("an empty line is dropped", "a\n\nb\n", {"a", "b"});
    addRow("the last line feed may be missing", "a\nb", {"a", "b"});
    addRow("a carriage return stays", "a\r\nb\n", {"a\r", "b"});
    addRow("in their order", "b\na\nb\n", {"b", "a", "b"});
    addRow("spaces and options stay", " \n--help\n-x y\n", {" ", "--help", "-x y"});
    addRow("beyond ASCII", QByteArray("ä\n日本\n📷\n"),
           {QString::fromUtf8("ä"), QString::fromUtf8("日本"), QString::fromUtf8("📷")});
    addRow("an argument ends at a zero byte", QByteArray("a\0b\nc\n", 6), {"a", "c"});
}

void tst_MacHandOver::takesTheArguments()
{
    QFETCH(QByteArray, content);
    QFETCH(QStringList, arguments);
    const QString file = write(QString::fromUtf8("a file, ä #%20 日本"), content);
    const Handler handler(1, programOnly);
    const QStringList& received = handler.receivedArguments();
    calls();

    QCOMPARE(sendAnswer(file), 1);

    QCOMPARE(received, commandLine(arguments));
    QCOMPARE(calls(),
             QStringList({QString::fromUtf8("stringWithContentsOfFile: a file, ä #%20 日本 "
                                            "encoding: 4 error: nil"),
                          QString::fromUtf8("removeItemAtPath: a file, ä #%20 日本 error: nil"),
                          removal}));
    QVERIFY(!exists(file));
    QCOMPARE(listenerCount(), 0);
}

void tst_MacHandOver::takesManyArguments()
{
    QByteArray content;
    for (int i = 1; i <= 100000; ++i)
        content += QByteArray::number(i) + '\n';
    const QString file = write(QStringLiteral("file"), content);
    const Handler handler(1, programOnly);

    QCOMPARE(sendAnswer(file), 1);

    QCOMPARE(handler.receivedArguments().size(), 100001);
    QCOMPARE(handler.receivedArguments().at(1), QStringLiteral("1"));
    QCOMPARE(handler.receivedArguments().last(), QStringLiteral("100000"));
    QVERIFY(!exists(file));
}

void tst_MacHandOver::answerWithoutArgumentsEndsListening_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<QStringList>("messages");

    const auto addRow = [](const char* title, const char* name, const QStringList& messages) {
        QTest::newRow(title) << name << messages;
    };
    const QString reading = QStringLiteral("stringWithContentsOfFile: %1 encoding: 4 error: nil");
    const QString deletion = QStringLiteral("removeItemAtPath: %1 error: nil");
    addRow("no path", "", {removal});
    addRow("a missing file", "missing", {deletion.arg("missing"), removal});
    addRow("an empty file", "empty", {reading.arg("empty"), deletion.arg("empty"), removal});
    addRow("only empty lines", "lines", {reading.arg("lines"), deletion.arg("lines"), removal});
    addRow("text that isn't UTF-8", "latin1",
           {reading.arg("latin1"), deletion.arg("latin1"), removal});
    addRow("text that isn't UTF-8 in its last line", "truncated",
           {reading.arg("truncated"), deletion.arg("truncated"), removal});
    addRow("a file that mustn't be read", "unreadable",
           {reading.arg("unreadable"), deletion.arg("unreadable"), removal});
    addRow("a pipe that nobody writes to", "pipe", {deletion.arg("pipe"), removal});
    addRow("a link to nothing", "dangling", {deletion.arg("dangling"), removal});
    addRow("a folder, which stays", "folder", {removal});
}

void tst_MacHandOver::answerWithoutArgumentsEndsListening()
{
    QFETCH(QString, name);
    QFETCH(QStringList, messages);
    write(QStringLiteral("empty"), "");
    write(QStringLiteral("lines"), "\n\n\n");
    write(QStringLiteral("latin1"), "\xE4\n");
    write(QStringLiteral("truncated"), "a\nb\xC3");
    QVERIFY(QFile::setPermissions(write(QStringLiteral("unreadable"), "a\n"), QFile::WriteOwner));
    QCOMPARE(mkfifo(QFile::encodeName(path(QStringLiteral("pipe"))).constData(), 0600), 0);
    QVERIFY(QFile::link(QStringLiteral("nothing"), path(QStringLiteral("dangling"))));
    const QString inFolder = write(QStringLiteral("folder/file"), "a\n");
    const QString second = write(QStringLiteral("second"), "second\n");
    const Handler handler(1, programOnly);
    calls();

    QCOMPARE(sendAnswer(name.isEmpty() ? name : path(name)), 1);

    QCOMPARE(calls(), messages);
    QCOMPARE(handler.receivedArguments(), QStringList());
    if (!name.isEmpty())
        QCOMPARE(exists(path(name)), name == QLatin1String("folder"));
    QVERIFY(exists(inFolder));
    QCOMPARE(sendAnswer(second), 0);
    QVERIFY(exists(second));
}

void tst_MacHandOver::answerWithoutAnObjectEndsListening()
{
    const Handler handler(1, programOnly);
    calls();

    QCOMPARE(notifyDistributed(answer, nil), 1);

    QCOMPARE(calls(), QStringList({removal}));
    QCOMPARE(handler.receivedArguments(), QStringList());
}

void tst_MacHandOver::fileThatCannotBeDeletedIsReadAllTheSame()
{
    const QString file = write(QStringLiteral("folder/file"), "a\n");
    const QString folder = path(QStringLiteral("folder"));
    QVERIFY(QFile::setPermissions(folder, QFile::ReadOwner | QFile::ExeOwner));
    const Handler handler(1, programOnly);
    calls();

    QCOMPARE(sendAnswer(file), 1);

    QVERIFY(QFile::setPermissions(folder, QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner));
    QCOMPARE(handler.receivedArguments(), commandLine({"a"}));
    QCOMPARE(calls(),
             QStringList({"stringWithContentsOfFile: file encoding: 4 error: nil",
                          "removeItemAtPath: file error: nil", removal}));
    QVERIFY(exists(file));
}

void tst_MacHandOver::secondAnswerIsIgnored()
{
    const QString second = write(QStringLiteral("second"), "second\n");
    const Handler handler(1, programOnly);
    QCOMPARE(sendAnswer(write(QStringLiteral("first"), "first\n")), 1);

    QCOMPARE(sendAnswer(second), 0);

    QCOMPARE(handler.receivedArguments(), commandLine({"first"}));
    QCOMPARE(readFile(second), QByteArray("second\n"));
}

void tst_MacHandOver::notificationIsNotKept()
{
    RecordingObject* other = [[RecordingObject alloc] initWithName:@"other"];
    NSMutableString* text = [[NSMutableString alloc]
        initWithUTF8String:write(QStringLiteral("file"), "a\n").toUtf8().constData()];
    const Handler handler(1, programOnly);

    NSAutoreleasePool* pool = [[NSAutoreleasePool alloc] init];
    [(id<ParametersController>)listener()
        onParametersReceived:[NSNotification
                                 notificationWithName:answer
                                               object:text
                                             userInfo:[NSDictionary
                                                          dictionaryWithObject:other
                                                                        forKey:@"other"]]];
    [pool release];

    QCOMPARE(handler.receivedArguments(), commandLine({"a"}));
    QCOMPARE([text retainCount], NSUInteger(1));
    QCOMPARE([other retainCount], NSUInteger(1));
    [text release];
    [other release];
}

void tst_MacHandOver::controllerWithoutAHandlerTakesNothing()
{
    const QString file = write(QStringLiteral("file"), "a\n");
    id controller =
        [(id<ParametersController>)[objc_getClass(controllerName) alloc] initWithHandler:nullptr];
    calls();

    QCOMPARE(sendAnswer(file), 1);

    QCOMPARE(calls(), QStringList());
    QVERIFY(exists(file));
    QCOMPARE(listenerCount(), 1);
    [controller release];
    QCOMPARE(calls(), QStringList({deallocation, removal}));
}

/// The centre may have it in hand when the first one ends the listening.
void tst_MacHandOver::answerThatWasOnItsWayIsIgnored()
{
    NSNotification* notification = [NSNotification
        notificationWithName:answer
                      object:toNSString(write(QStringLiteral("second"), "second\n"))];
    const Handler handler(1, programOnly);
    id<ParametersController> controller = listener();
    QCOMPARE(sendAnswer(write(QStringLiteral("first"), "first\n")), 1);
    calls();

    [controller onParametersReceived:notification];
    handler.onArgumentsProcessed();
    [controller onParametersReceived:notification];

    QCOMPARE(calls(), QStringList({removal}));
    QCOMPARE(handler.receivedArguments(), commandLine({"first"}));
    QVERIFY(exists(path(QStringLiteral("second"))));
}

void tst_MacHandOver::answerThatWasOnItsWayWhenListeningEndedIsIgnored()
{
    NSNotification* notification =
        [NSNotification notificationWithName:answer
                                      object:toNSString(write(QStringLiteral("file"), "a\n"))];
    const Handler handler(1, programOnly);
    id<ParametersController> controller = listener();
    handler.onArgumentsProcessed();
    calls();

    [controller onParametersReceived:notification];

    QCOMPARE(calls(), QStringList());
    QCOMPARE(handler.receivedArguments(), QStringList());
    QVERIFY(exists(path(QStringLiteral("file"))));
}

void tst_MacHandOver::twoHandlersAtOnce()
{
    const QString file = write(QStringLiteral("file"), "a\n");
    const Handler first(1, programOnly);
    const Handler second(1, programOnly);
    calls();

    QCOMPARE(sendAnswer(file), 2);

    QCOMPARE(first.receivedArguments(), commandLine({"a"}));
    QCOMPARE(second.receivedArguments(), QStringList());
    QCOMPARE(calls(),
             QStringList({"stringWithContentsOfFile: file encoding: 4 error: nil",
                          "removeItemAtPath: file error: nil", removal,
                          "removeItemAtPath: file error: nil", removal}));
    QCOMPARE(listenerCount(), 0);
}

void tst_MacHandOver::endsListeningOnRequest()
{
    const QString file = write(QStringLiteral("file"), "a\n");
    {
        const Handler handler(1, programOnly);
        calls();

        handler.onArgumentsProcessed();

        QCOMPARE(calls(), QStringList({removal}));
        QCOMPARE(sendAnswer(file), 0);
        QCOMPARE(handler.receivedArguments(), QStringList());
        QCOMPARE(liveCoreObjects(), 1); // it stays, but doesn't listen
        handler.onArgumentsProcessed();
        QCOMPARE(calls(), QStringList({removal}));
    }
    QCOMPARE(calls(), QStringList({deallocation, removal}));
    QVERIFY(exists(file));
}

void tst_MacHandOver::endsListeningOnRequestAfterTheAnswer()
{
    const Handler handler(1, programOnly);
    QCOMPARE(sendAnswer(write(QStringLiteral("file"), "a\n")), 1);
    calls();

    handler.onArgumentsProcessed();

    QCOMPARE(calls(), QStringList({removal}));
    QCOMPARE(handler.receivedArguments(), commandLine({"a"}));
}

void tst_MacHandOver::destructionEndsListening()
{
    const QString file = write(QStringLiteral("file"), "a\n");
    auto handler = std::make_unique<Handler>(1, programOnly);
    calls();

    handler.reset();

    QCOMPARE(calls(), QStringList({deallocation, removal}));
    QCOMPARE(liveCoreObjects(), 0);
    QCOMPARE(sendAnswer(file), 0);
    QVERIFY(exists(file));
}

void tst_MacHandOver::destructionAfterTheAnswer()
{
    auto handler = std::make_unique<Handler>(1, programOnly);
    QCOMPARE(sendAnswer(write(QStringLiteral("file"), "a\n")), 1);
    calls();

    handler.reset();

    QCOMPARE(calls(), QStringList({deallocation, removal}));
}

int main(int argc, char** argv)
{
    if (!takeOrdinaryFileRights())
        qFatal("the permissions of files don't hold for this process");
    return runMacTest<tst_MacHandOver>(argc, argv);
}

#include "tst_MacHandOver.moc"
