// An application that takes a command line that is handed over. It posts "READY" to the distributed
// centre when its handler stands, and at "REPORT" it writes what it has received to its output:
// each word, ended by a zero byte.

#include "ApplicationParametersHandler.h"
#include "RecordingCocoa.h"

#include <QCoreApplication>

#include <cstdio>
#include <cstdlib>

@interface ReportRequest : NSObject {
@public
    bool m_arrived;
}
- (void)onRequest:(NSNotification*)notification;
@end

@implementation ReportRequest

- (void)onRequest:(NSNotification*)notification
{
    Q_UNUSED(notification)
    m_arrived = true;
}

@end

namespace {

/// Nobody waits for a report that long.
constexpr NSTimeInterval longestWait = 60;

int run(int argc, char** argv)
{
    const QCoreApplication application(argc, argv);
    RecordingCocoa::instance().distribute = true;
    NSDistributedNotificationCenter* center = [NSDistributedNotificationCenter defaultCenter];
    if (const char* path = std::getenv("ANSWER")) {
        [center postNotificationName:@"CMD_LINE_ARGSkrnv3"
                              object:[NSString stringWithUTF8String:path]
                            userInfo:nil
                  deliverImmediately:NO];
        return 0;
    }

    ReportRequest* request = [[[ReportRequest alloc] init] autorelease];
    [center addObserver:request selector:@selector(onRequest:) name:@"REPORT" object:nil];
    const CApplicationParametersHandler_Abstract handler(argc, argv);
    [center postNotificationName:@"READY" object:nil userInfo:nil deliverImmediately:NO];

    NSDate* end = [NSDate dateWithTimeIntervalSinceNow:longestWait];
    while (!request->m_arrived && [end timeIntervalSinceNow] > 0)
        [[NSRunLoop currentRunLoop] runMode:NSDefaultRunLoopMode beforeDate:end];
    [center removeObserver:request];
    if (!request->m_arrived)
        return 1;

    for (const QString& word : handler.receivedArguments()) {
        const QByteArray text = word.toUtf8();
        std::fwrite(text.constData(), 1, size_t(text.size()) + 1, stdout);
    }
    return std::fflush(stdout) == 0 ? 0 : 1;
}

} // namespace

int main(int argc, char** argv)
{
    NSAutoreleasePool* pool = [[NSAutoreleasePool alloc] init];
    const int status = run(argc, argv);
    [pool release];
    return status;
}
