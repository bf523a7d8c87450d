#include "ArgumentsFile_p.h"
#import "Cocoa_p.h"
#include "CommonConstants.h"
#include "PlatformServices_p.h"
#import "Text_p.h"

/// The receiving end of a command line's hand-over. The handler isn't owned.
@interface NSAuxApplicationParametersNotificationController : NSObject {
    CApplicationParametersHandler_Abstract* m_handler;
    NSString* m_handlerUUID_str;
}
- (id)initWithHandler:(CApplicationParametersHandler_Abstract*)handler;
- (void)onParametersReceived:(NSNotification*)notification;
- (void)stopListening;
@end

@implementation NSAuxApplicationParametersNotificationController

- (id)initWithHandler:(CApplicationParametersHandler_Abstract*)handler
{
    self = [super init];
    if (!self)
        return nil;
    m_handler = handler;
    CFUUIDRef uuid = CFUUIDCreate(kCFAllocatorDefault);
    m_handlerUUID_str = (NSString*)CFUUIDCreateString(kCFAllocatorDefault, uuid);
    CFRelease(uuid);

    // Listening begins first, so that an immediate answer isn't lost.
    NSDistributedNotificationCenter* center = [NSDistributedNotificationCenter defaultCenter];
    [center addObserver:self
               selector:@selector(onParametersReceived:)
                   name:@"CMD_LINE_ARGSkrnv3"
                 object:nil];
    [center postNotificationName:@"APP_CAN_HANDLE_CMD_LINE_ARGSkrnv3"
                          object:m_handlerUUID_str
                        userInfo:nil
              deliverImmediately:YES];
    return self;
}

- (void)onParametersReceived:(NSNotification*)notification
{
    if (!m_handler)
        return;
    using namespace VEK_NAMESPACE;
    Private::receiveArguments(Platform::fromNSString([notification object]), *m_handler);
    [self stopListening];
}

/// The centre may deliver what waits before it lets an observer go; that comes too late.
- (void)stopListening
{
    m_handler = nullptr;
    [[NSDistributedNotificationCenter defaultCenter] removeObserver:self];
}

- (void)dealloc
{
    [self stopListening];
    [m_handlerUUID_str release];
    [super dealloc];
}

@end

namespace VEK_NAMESPACE {
namespace Platform {

namespace {

class ParametersObserver : public Observer
{
public:
    explicit ParametersObserver(CApplicationParametersHandler_Abstract& handler)
        : m_controller(
            [[NSAuxApplicationParametersNotificationController alloc] initWithHandler:&handler])
    {}

    ~ParametersObserver() override { [m_controller release]; }

    void stop() override { [m_controller stopListening]; }

private:
    NSAuxApplicationParametersNotificationController* const m_controller;
};

} // namespace

std::unique_ptr<Observer> observeParameters(CApplicationParametersHandler_Abstract& handler)
{
    return std::make_unique<ParametersObserver>(handler);
}

} // namespace Platform
} // namespace VEK_NAMESPACE
