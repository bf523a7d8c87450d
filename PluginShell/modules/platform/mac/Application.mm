#include "ApplicationActivation.h"
#import "Cocoa_p.h"
#include "CommonConstants.h"
#import "NativeWindow_p.h"
#include "PlatformServices_p.h"
#import "Text_p.h"
#include "WindowServices.h"

#include <QMenu>

/// Lets a window, which isn't owned, float above others as long as the application is active.
@interface MacOSNSApplicationNotificationResponder : NSObject {
    NSWindow* m_win;
}
- (id)initWithWnd:(NSWindow*)window;
- (void)appDidBecomeActive:(NSNotification*)notification;
- (void)appWillResignActive:(NSNotification*)notification;
- (void)setWnd:(NSWindow*)window;
@end

@implementation MacOSNSApplicationNotificationResponder

- (id)initWithWnd:(NSWindow*)window
{
    self = [super init];
    if (self) {
        m_win = window;
        NSNotificationCenter* center = [NSNotificationCenter defaultCenter];
        NSApplication* application = [NSApplication sharedApplication];
        [center addObserver:self
                   selector:@selector(appDidBecomeActive:)
                       name:NSApplicationDidBecomeActiveNotification
                     object:application];
        [center addObserver:self
                   selector:@selector(appWillResignActive:)
                       name:NSApplicationWillResignActiveNotification
                     object:application];
    }
    return self;
}

- (void)appDidBecomeActive:(NSNotification*)notification
{
    (void)notification;
    if (m_win)
        [m_win setLevel:CGWindowLevelForKey(kCGFloatingWindowLevelKey)];
}

- (void)appWillResignActive:(NSNotification*)notification
{
    (void)notification;
    if (m_win)
        [m_win setLevel:CGWindowLevelForKey(kCGNormalWindowLevelKey)];
}

- (void)setWnd:(NSWindow*)window
{
    m_win = window;
}

- (void)dealloc
{
    [[NSNotificationCenter defaultCenter] removeObserver:self];
    [super dealloc];
}

@end

/// Closes the popups when the application is no longer active and when a window is minimised.
@interface ApplicationResignObserver : NSObject
- (void)applicationDidResignActive;
- (void)windowWillMiniaturize;
- (void)deactivateTopLevelWidgets;
@end

@implementation ApplicationResignObserver

- (id)init
{
    self = [super init];
    if (self) {
        NSNotificationCenter* center = [NSNotificationCenter defaultCenter];
        [center addObserver:self
                   selector:@selector(applicationDidResignActive)
                       name:NSApplicationDidResignActiveNotification
                     object:nil];
        [center addObserver:self
                   selector:@selector(windowWillMiniaturize)
                       name:NSWindowWillMiniaturizeNotification
                     object:nil];
    }
    return self;
}

- (void)applicationDidResignActive
{
    [self deactivateTopLevelWidgets];
}

- (void)windowWillMiniaturize
{
    [self deactivateTopLevelWidgets];
}

- (void)deactivateTopLevelWidgets
{
    TopLevelWindowDeactivator::deactivateAllTopLevelWidgets();
}

- (void)dealloc
{
    [[NSNotificationCenter defaultCenter] removeObserver:self];
    [super dealloc];
}

@end

namespace VEK_NAMESPACE {
namespace Platform {

namespace {

class PopupDeactivation : public Watch
{
public:
    /// A direct dealloc, so that the observer goes whoever has retained it; that is meant.
    ~PopupDeactivation() override { [m_observer dealloc]; }

private:
    ApplicationResignObserver* const m_observer = [[ApplicationResignObserver alloc] init];
};

class NotificationResponder : public FloatingWhileActive
{
public:
    explicit NotificationResponder(NSWindow* window)
        : m_responder([[MacOSNSApplicationNotificationResponder alloc] initWithWnd:window])
    {}

    ~NotificationResponder() override { [m_responder release]; }

    void setWindow(WindowId view) override { [m_responder setWnd:windowOf(view)]; }

private:
    MacOSNSApplicationNotificationResponder* const m_responder;
};

} // namespace

bool isApplicationActive()
{
    return [NSApp isActive];
}

void activateApplication(const QWidget& window)
{
    (void)window; // all windows of the process come to the front
    [NSApp activateIgnoringOtherApps:YES];
}

std::unique_ptr<Watch> observeResign()
{
    return std::make_unique<PopupDeactivation>();
}

std::unique_ptr<FloatingWhileActive> floatWhileActive(WindowId view)
{
    return std::make_unique<NotificationResponder>(windowOf(view));
}

void setMenuBarEnabled(bool enable)
{
    for (NSMenuItem* item in [[[NSApplication sharedApplication] mainMenu] itemArray])
        [item setEnabled:enable];
}

void removeSpecialEditMenuItems()
{
    NSUserDefaults* defaults = [NSUserDefaults standardUserDefaults];
    [defaults setBool:YES forKey:@"NSDisabledCharacterPaletteMenuItem"];
    [defaults setBool:YES forKey:@"NSDisabledDictationMenuItem"];
}

void cancelMenuTracking(QMenu& menu)
{
    [menu.toNSMenu() cancelTracking];
}

void endModalSession()
{
    [[NSApplication sharedApplication] stopModal];
}

void showCursor(bool show)
{
    if (show)
        [NSCursor unhide];
    else
        [NSCursor hide];
}

void launch(const char* path)
{
    NSString* program = [NSString stringWithUTF8String:path];
    if (!program)
        return;
    @try {
        [NSTask launchedTaskWithLaunchPath:program arguments:[NSArray array]];
    } @catch (NSException*) { // NOLINT(bugprone-empty-catch): nothing is there to be launched
    }
}

QString systemVersionText()
{
    @autoreleasepool {
        return fromNSString([[NSProcessInfo processInfo] operatingSystemVersionString]);
    }
}

std::array<long, 3> versionNumbers(const QString& version)
{
    std::array<long, 3> numbers{};
    @autoreleasepool {
        NSScanner* scanner = [NSScanner scannerWithString:toNSString(version)];
        [scanner setCharactersToBeSkipped:[NSCharacterSet
                                              characterSetWithCharactersInString:@". \t\n\v\f\r"]];
        for (long& number : numbers) {
            NSInteger scanned = 0;
            number = [scanner scanInteger:&scanned] ? scanned : -1;
        }
    }
    return numbers;
}

} // namespace Platform
} // namespace VEK_NAMESPACE

UTILSDLL_EXPORT bool auxMacOsIsOperatingSystemAtLeastVersion(NSString* version, long major,
                                                             long minor, long patch)
{
    return auxMacOsIsOperatingSystemAtLeastVersion(VEK_NAMESPACE::Platform::fromNSString(version),
                                                   major, minor, patch);
}
