#import "Cocoa_p.h"
#include "CommonConstants.h"
#import "NativeWindow_p.h"
#include "PlatformServices_p.h"
#include "WindowServices.h"

/// Tells a handler when its window has entered and left full screen. Neither is owned.
@interface MacOSNSWindowDelegate : NSObject {
    NSWindow* m_win;
    CWindowFullScreenModeSwitchHandler_Abstract* m_handler;
}
- (id)initWithWindowScreenModeSwitchHandler:(CWindowFullScreenModeSwitchHandler_Abstract*)handler
                                     window:(NSWindow*)window;
- (void)windowDidEnterFullScreen:(NSNotification*)notification;
- (void)windowDidExitFullScreen:(NSNotification*)notification;
@end

@implementation MacOSNSWindowDelegate

- (id)initWithWindowScreenModeSwitchHandler:(CWindowFullScreenModeSwitchHandler_Abstract*)handler
                                     window:(NSWindow*)window
{
    self = [super init];
    if (self) {
        m_win = window;
        m_handler = handler;
    }
    return self;
}

- (void)windowDidEnterFullScreen:(NSNotification*)notification
{
    (void)notification;
    m_handler->onEnterFullScreen();
}

- (void)windowDidExitFullScreen:(NSNotification*)notification
{
    (void)notification;
    m_handler->onExitFullScreen();
}

@end

namespace VEK_NAMESPACE {
namespace Platform {

namespace {

CGWindowLevelKey keyOf(WindowLevel level)
{
    switch (level) {
    case WindowLevel::Normal:
        break;
    case WindowLevel::Floating:
        return kCGFloatingWindowLevelKey;
    case WindowLevel::ModalPanel:
        return kCGModalPanelWindowLevelKey;
    }
    return kCGNormalWindowLevelKey;
}

void addCollectionBehavior(NSWindow* window, NSWindowCollectionBehavior behavior)
{
    [window setCollectionBehavior:[window collectionBehavior] | behavior];
}

class FullScreenObserver : public Observer
{
public:
    explicit FullScreenObserver(MacOSNSWindowDelegate* delegate)
        : m_delegate(delegate)
    {}

    /// Leaves the notification centre alone: that is what stop() is for.
    ~FullScreenObserver() override { [m_delegate release]; }

    void stop() override { [[NSNotificationCenter defaultCenter] removeObserver:m_delegate]; }

private:
    MacOSNSWindowDelegate* const m_delegate;
};

} // namespace

bool isWindow(WindowId view)
{
    return windowOf(view) != nil;
}

void minimizeWindow(WindowId view)
{
    NSWindow* window = windowOf(view);
    [window miniaturize:window];
}

void restoreMinimizedWindow(WindowId view)
{
    NSWindow* window = windowOf(view);
    [window deminiaturize:window];
}

bool isFullScreen(WindowId view)
{
    return ([windowOf(view) styleMask] & NSFullScreenWindowMask) != 0;
}

void toggleFullScreen(WindowId view)
{
    [windowOf(view) toggleFullScreen:nil];
}

void allowFullScreen(WindowId view)
{
    addCollectionBehavior(windowOf(view), NSWindowCollectionBehaviorFullScreenPrimary);
}

std::unique_ptr<Observer> observeFullScreen(WindowId view,
                                            CWindowFullScreenModeSwitchHandler_Abstract* handler)
{
    NSWindow* window = windowOf(view);
    if (!window)
        return nullptr;
    MacOSNSWindowDelegate* delegate =
        [[MacOSNSWindowDelegate alloc] initWithWindowScreenModeSwitchHandler:handler window:window];
    NSNotificationCenter* center = [NSNotificationCenter defaultCenter];
    [center addObserver:delegate
               selector:@selector(windowDidEnterFullScreen:)
                   name:NSWindowDidEnterFullScreenNotification
                 object:window];
    [center addObserver:delegate
               selector:@selector(windowDidExitFullScreen:)
                   name:NSWindowDidExitFullScreenNotification
                 object:window];
    return std::make_unique<FullScreenObserver>(delegate);
}

void setWindowLevel(WindowId view, WindowLevel level)
{
    if (NSWindow* window = windowOf(view))
        [window setLevel:CGWindowLevelForKey(keyOf(level))];
}

void orderWindowFront(WindowId view)
{
    [windowOf(view) orderWindow:NSWindowAbove relativeTo:0];
}

void orderWindowBack(WindowId view)
{
    [windowOf(view) orderWindow:NSWindowBelow relativeTo:0];
}

void setCloseButtonEnabled(WindowId view, bool enable)
{
    [[windowOf(view) standardWindowButton:NSWindowCloseButton] setEnabled:enable];
}

void setWindowAnimationEnabled(WindowId view, bool enable)
{
    [windowOf(view) setAnimationBehavior:enable ? NSWindowAnimationBehaviorDefault
                                                : NSWindowAnimationBehaviorNone];
}

void setManagedInExpose(WindowId view)
{
    if (NSWindow* window = windowOf(view))
        addCollectionBehavior(window, NSWindowCollectionBehaviorManaged);
}

std::optional<unsigned> displayNumber(WindowId view)
{
    NSNumber* number = [[[windowOf(view) screen] deviceDescription] objectForKey:@"NSScreenNumber"];
    if (!number)
        return std::nullopt;
    return unsigned([number longValue]);
}

} // namespace Platform
} // namespace VEK_NAMESPACE
