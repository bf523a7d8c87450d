#include "RecordingCocoa.h"

#include <QMenu>
#include <QWidget>

#import <objc/runtime.h>

#include <algorithm>
#include <array>
#include <cstring>

extern "C" {
NSString* const NSWindowDidEnterFullScreenNotification = @"NSWindowDidEnterFullScreenNotification";
NSString* const NSWindowDidExitFullScreenNotification = @"NSWindowDidExitFullScreenNotification";
}

RecordingCocoa& RecordingCocoa::instance()
{
    static auto* cocoa = new RecordingCocoa;
    return *cocoa;
}

void RecordingCocoa::clear()
{
    *this = RecordingCocoa();
}

QStringList RecordingCocoa::takeCalls()
{
    QStringList taken;
    taken.swap(calls);
    return taken;
}

namespace {

void record(const QString& call)
{
    RecordingCocoa::instance().record(call);
}

void record(RecordingObject* object, const QString& message)
{
    if ([object name])
        record(QString::fromUtf8([[object name] UTF8String]) + QLatin1Char(' ') + message);
}

QString yesOrNo(BOOL value)
{
    return value ? QStringLiteral("YES") : QStringLiteral("NO");
}

} // namespace

@implementation RecordingObject

- (id)initWithName:(NSString*)name
{
    self = [super init];
    if (self)
        m_name = [name copy];
    return self;
}

- (NSString*)name
{
    return m_name;
}

- (void)dealloc
{
    [m_name release];
    [super dealloc];
}

@end

@implementation RecordingButton

- (void)setEnabled:(BOOL)enabled
{
    record(self, QStringLiteral("setEnabled: ") + yesOrNo(enabled));
}

@end

@implementation RecordingScreen

- (NSDictionary*)deviceDescription
{
    return description;
}

@end

@implementation RecordingWindow

- (void)miniaturize:(id)sender
{
    record(self, QStringLiteral("miniaturize: ") + (sender == self ? "itself" : "another"));
}

- (void)deminiaturize:(id)sender
{
    record(self, QStringLiteral("deminiaturize: ") + (sender == self ? "itself" : "another"));
}

- (NSUInteger)styleMask
{
    return mask;
}

- (void)toggleFullScreen:(id)sender
{
    record(self, QStringLiteral("toggleFullScreen: ") + (sender ? "other" : "nil"));
}

- (NSUInteger)collectionBehavior
{
    return behavior;
}

- (void)setCollectionBehavior:(NSUInteger)newBehavior
{
    behavior = newBehavior;
    record(self, QStringLiteral("setCollectionBehavior: %1").arg(newBehavior));
}

- (NSButton*)standardWindowButton:(NSWindowButton)button
{
    record(self, QStringLiteral("standardWindowButton: %1").arg(button));
    return (NSButton*)closeButton;
}

- (void)setLevel:(NSInteger)level
{
    record(self, QStringLiteral("setLevel: %1").arg(level));
}

- (void)orderWindow:(NSWindowOrderingMode)place relativeTo:(NSInteger)otherWindow
{
    // GNUstep's numbers are others than the platform's.
    const QString order = place == NSWindowAbove ? QStringLiteral("NSWindowAbove")
        : place == NSWindowBelow                 ? QStringLiteral("NSWindowBelow")
                                                 : QStringLiteral("NSWindowOut");
    record(self, QStringLiteral("orderWindow: %1 relativeTo: %2").arg(order).arg(otherWindow));
}

- (NSScreen*)screen
{
    return (NSScreen*)ownScreen;
}

- (void)setAnimationBehavior:(NSInteger)animationBehavior
{
    record(self, QStringLiteral("setAnimationBehavior: %1").arg(animationBehavior));
}

@end

@implementation RecordingView

- (NSWindow*)window
{
    return (NSWindow*)ownWindow;
}

- (unsigned long long)windowId
{
    return reinterpret_cast<unsigned long long>(self);
}

@end

@implementation RecordingMenuItem

- (void)setEnabled:(BOOL)enabled
{
    record(self, QStringLiteral("setEnabled: ") + yesOrNo(enabled));
}

@end

@implementation RecordingMenu

- (NSArray*)itemArray
{
    return items;
}

- (void)cancelTracking
{
    record(self, QStringLiteral("cancelTracking"));
}

@end

@interface RecordingApplication : NSObject
@end

@implementation RecordingApplication

- (NSMenu*)mainMenu
{
    return (NSMenu*)RecordingCocoa::instance().mainMenu;
}

- (BOOL)isActive
{
    return RecordingCocoa::instance().applicationActive;
}

- (void)activateIgnoringOtherApps:(BOOL)flag
{
    record(QStringLiteral("application activateIgnoringOtherApps: ") + yesOrNo(flag));
}

- (void)stopModal
{
    record(QStringLiteral("application stopModal"));
}

@end

@interface RecordingWorkspace : NSObject
@end

@implementation RecordingWorkspace

- (NSArray*)launchedApplications
{
    return RecordingCocoa::instance().launchedApplications;
}

- (void)activateFileViewerSelectingURLs:(NSArray*)fileURLs
{
    QStringList urls;
    for (NSURL* url in fileURLs)
        urls << QString::fromUtf8([[url absoluteString] UTF8String]);
    record(QStringLiteral("activateFileViewerSelectingURLs: ") + urls.join(QLatin1Char(' ')));
}

@end

namespace {

using Init = id (*)(id, SEL);
using Dealloc = void (*)(id, SEL);

Init g_init = nullptr;
Dealloc g_dealloc = nullptr;

QList<id>& observers()
{
    static auto* living = new QList<id>;
    return *living;
}

/// By name, as they may not be loaded yet.
bool isLibrarysOwn(id object)
{
    static const std::array<const char*, 3> names = {"ApplicationResignObserver",
                                                     "MacOSNSApplicationNotificationResponder",
                                                     "MacOSNSWindowDelegate"};
    const char* name = object_getClassName(object);
    return std::any_of(names.begin(), names.end(),
                       [name](const char* own) { return std::strcmp(own, name) == 0; });
}

id init(id self, SEL command)
{
    if (isLibrarysOwn(self))
        observers() << self;
    return g_init(self, command);
}

void dealloc(id self, SEL command)
{
    if (isLibrarysOwn(self)) {
        observers().removeOne(self);
        record(QString::fromUtf8(object_getClassName(self)) + QStringLiteral(" dealloc"));
    }
    g_dealloc(self, command);
}

template <typename Function>
Function replaceMethod(Class owner, SEL method, Function replacement)
{
    return reinterpret_cast<Function>(method_setImplementation(
        class_getInstanceMethod(owner, method), reinterpret_cast<IMP>(replacement)));
}

} // namespace

QList<id> liveObservers()
{
    return observers();
}

/// In the place of the class methods of AppKit, which want a display.
@interface RecordingClassMethods : NSObject
@end

namespace {

void replaceClassMethod(Class owner, SEL method, SEL replacement)
{
    IMP implementation =
        method_getImplementation(class_getClassMethod([RecordingClassMethods class], replacement));
    method_setImplementation(class_getClassMethod(owner, method), implementation);
}

} // namespace

@implementation RecordingClassMethods

+ (void)load
{
    NSAutoreleasePool* pool = [[NSAutoreleasePool alloc] init];
    NSApp = (NSApplication*)[[RecordingApplication alloc] init];
    g_init = replaceMethod<Init>([NSObject class], @selector(init), init);
    g_dealloc = replaceMethod<Dealloc>([NSObject class], @selector(dealloc), dealloc);
    replaceClassMethod([NSApplication class], @selector(sharedApplication),
                       @selector(recordingSharedApplication));
    replaceClassMethod([NSScreen class], @selector(mainScreen), @selector(recordingMainScreen));
    replaceClassMethod([NSWorkspace class], @selector(sharedWorkspace),
                       @selector(recordingSharedWorkspace));
    replaceClassMethod([NSCursor class], @selector(hide), @selector(recordingHide));
    replaceClassMethod([NSCursor class], @selector(unhide), @selector(recordingUnhide));
    [pool release];
}

+ (id)recordingSharedApplication
{
    record(QStringLiteral("sharedApplication"));
    return NSApp;
}

+ (id)recordingMainScreen
{
    return RecordingCocoa::instance().mainScreen;
}

+ (id)recordingSharedWorkspace
{
    static RecordingWorkspace* workspace = [[RecordingWorkspace alloc] init];
    return workspace;
}

+ (void)recordingHide
{
    record(QStringLiteral("cursor hide"));
}

+ (void)recordingUnhide
{
    record(QStringLiteral("cursor unhide"));
}

@end

namespace {

/// Lives with the widget.
RecordingView* silentViewOf(const QWidget* widget)
{
    RecordingView* view = [[RecordingView alloc] init];
    view->ownWindow = [[RecordingWindow alloc] initWithName:nil];
    QHash<const QWidget*, RecordingView*>& views = RecordingCocoa::instance().views;
    views.insert(widget, view);
    QObject::connect(widget, &QObject::destroyed, [widget, view] {
        QHash<const QWidget*, RecordingView*>& all = RecordingCocoa::instance().views;
        if (all.value(widget) == view)
            all.remove(widget);
        [view->ownWindow release];
        [view release];
    });
    return view;
}

} // namespace

/// In the place of QWidget::winId() in the library: a handle is a view on the platform.
extern "C" WId __wrap__ZNK7QWidget5winIdEv(const QWidget* widget);
WId __wrap__ZNK7QWidget5winIdEv(const QWidget* widget)
{
    RecordingCocoa& cocoa = RecordingCocoa::instance();
    RecordingView* view = cocoa.views.value(widget);
    if (!view && cocoa.widgetsHaveViews)
        view = silentViewOf(widget);
    return WId(view);
}

NSMenu* QMenu::toNSMenu()
{
    return (NSMenu*)RecordingCocoa::instance().menus.value(this);
}
