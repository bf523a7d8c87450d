#include "RecordingCocoa.h"

#import <objc/runtime.h>

#include <algorithm>
#include <cstdlib>

// Foundation has them in every build, and declares them in some only.
extern "C" {
BOOL GSDebugAllocationActive(BOOL active);
Class* GSDebugAllocationClassList(void);
int GSDebugAllocationCount(Class c);
}

namespace {

void record(const QString& call)
{
    RecordingCocoa::instance().record(call);
}

QString text(NSString* string)
{
    return string ? QString::fromUtf8([string UTF8String]) : QStringLiteral("nil");
}

QString className(id object)
{
    return object ? text(NSStringFromClass([object class])) : QStringLiteral("nil");
}

/// What it is called, what it says, or whose it is.
QString describe(id object)
{
    if ([object isKindOfClass:[RecordingObject class]])
        return text([object name]);
    if ([object isKindOfClass:[NSString class]])
        return text(object);
    return className(object);
}

/// GNUstep has observers of its own, and asks until after the end of main().
bool isLibrarysOwn(id observer)
{
    static const auto& classes =
        *new QStringList{QStringLiteral("ApplicationResignObserver"),
                         QStringLiteral("MacOSNSApplicationNotificationResponder"),
                         QStringLiteral("MacOSNSWindowDelegate")};
    return classes.contains(className(observer));
}

template <typename Function>
Function replaceMethod(Class owner, SEL method, Function replacement)
{
    return reinterpret_cast<Function>(method_setImplementation(
        class_getInstanceMethod(owner, method), reinterpret_cast<IMP>(replacement)));
}

using AddObserver = void (*)(id, SEL, id, SEL, NSString*, id);
using RemoveObserver = void (*)(id, SEL, id);
using VersionString = NSString* (*)(id, SEL);
using SetBool = void (*)(id, SEL, BOOL, NSString*);
using UrlForDirectory = NSURL* (*)(id, SEL, NSSearchPathDirectory, NSSearchPathDomainMask, NSURL*,
                                   BOOL, NSError**);
using AttributesOfItem = NSDictionary* (*)(id, SEL, NSString*, NSError**);
using CurrentCalendar = id (*)(id, SEL);
using Components = NSDateComponents* (*)(id, SEL, NSUInteger, NSDate*);

AddObserver g_addObserver = nullptr;
RemoveObserver g_removeObserver = nullptr;
VersionString g_versionString = nullptr;
SetBool g_setBool = nullptr;
AttributesOfItem g_attributesOfItem = nullptr;
CurrentCalendar g_currentCalendar = nullptr;
Components g_components = nullptr;

void addObserver(id self, SEL command, id observer, SEL selector, NSString* name, id object)
{
    if (isLibrarysOwn(observer)) {
        record(QStringLiteral("center addObserver: %1 selector: %2 name: %3 object: %4")
                   .arg(className(observer), text(NSStringFromSelector(selector)), text(name),
                        describe(object)));
    }
    g_addObserver(self, command, observer, selector, name, object);
}

void removeObserver(id self, SEL command, id observer)
{
    if (isLibrarysOwn(observer))
        record(QStringLiteral("center removeObserver: ") + className(observer));
    g_removeObserver(self, command, observer);
}

NSString* versionString(id self, SEL command)
{
    const std::optional<QString>& version = RecordingCocoa::instance().versionString;
    if (!version)
        return g_versionString(self, command);
    return [NSString stringWithUTF8String:version->toUtf8().constData()];
}

void setBool(id self, SEL command, BOOL value, NSString* key)
{
    record(QStringLiteral("setBool: %1 forKey: %2").arg(value).arg(text(key)));
    g_setBool(self, command, value, key);
}

NSURL* urlForDirectory(id, SEL, NSSearchPathDirectory directory, NSSearchPathDomainMask domain,
                       NSURL* url, BOOL create, NSError** error)
{
    record(QStringLiteral(
               "URLForDirectory: %1 inDomain: %2 appropriateForURL: %3 create: %4 error: %5")
               .arg(QString::number(int(directory)), QString::number(int(domain)), text([url path]),
                    QString::number(create),
                    error ? QStringLiteral("other") : QStringLiteral("nil")));
    return RecordingCocoa::instance().trash;
}

NSDictionary* attributesOfItem(id self, SEL command, NSString* path, NSError** error)
{
    NSDictionary* attributes = g_attributesOfItem(self, command, path, error);
    NSDate* creationDate = RecordingCocoa::instance().creationDate;
    if (!attributes || !creationDate)
        return attributes;
    NSMutableDictionary* changed = [NSMutableDictionary dictionaryWithDictionary:attributes];
    [changed setObject:creationDate forKey:NSFileCreationDate];
    return changed;
}

id currentCalendar(id self, SEL command)
{
    record(QStringLiteral("NSCalendar currentCalendar"));
    return g_currentCalendar(self, command);
}

NSDateComponents* components(id self, SEL command, NSUInteger units, NSDate* date)
{
    record(QStringLiteral("calendar components: %1").arg(units));
    return RecordingCocoa::instance().calendarSplits ? g_components(self, command, units, date)
                                                     : nil;
}

} // namespace

int liveObjects()
{
    GSDebugAllocationActive(YES);
    int count = 0;
    Class* classes = GSDebugAllocationClassList();
    for (Class* owner = classes; *owner; ++owner)
        count += GSDebugAllocationCount(*owner);
    std::free(classes);
    return count;
}

@implementation NSAppleScript (Recording)

- (id)initWithSource:(NSString*)source
{
    self = [super init];
    record(QStringLiteral("NSAppleScript initWithSource: ") + text(source));
    if (RecordingCocoa::instance().scriptCompiles)
        return self;
    [self release];
    return nil;
}

- (NSAppleEventDescriptor*)executeAndReturnError:(NSDictionary**)errorInfo
{
    record(QStringLiteral("NSAppleScript executeAndReturnError: ") + (errorInfo ? "other" : "nil"));
    if (!RecordingCocoa::instance().scriptSucceeds)
        return nil;
    return (NSAppleEventDescriptor*)[[[NSObject alloc] init] autorelease];
}

- (void)dealloc
{
    record(QStringLiteral("NSAppleScript dealloc"));
    [super dealloc];
}

@end

/// Writes down what the real centre would do, which reaches every process.
@interface RecordingDistributedCenter : NSObject
@end

@implementation RecordingDistributedCenter

- (void)addObserver:(id)observer selector:(SEL)selector name:(NSString*)name object:(id)object
{
    record(QStringLiteral("distributed addObserver: %1 selector: %2 name: %3 object: %4")
               .arg(className(observer), text(NSStringFromSelector(selector)), text(name),
                    describe(object)));
    RecordingCocoa::instance().distributedListeners.append({observer, selector, name});
}

- (void)removeObserver:(id)observer
{
    record(QStringLiteral("distributed removeObserver: ") + className(observer));
    QVector<DistributedListener>& listeners = RecordingCocoa::instance().distributedListeners;
    listeners.erase(std::remove_if(listeners.begin(), listeners.end(),
                                   [observer](const DistributedListener& listener) {
                                       return listener.observer == observer;
                                   }),
                    listeners.end());
}

- (void)postNotificationName:(NSString*)name
                      object:(NSString*)object
                    userInfo:(NSDictionary*)userInfo
          deliverImmediately:(BOOL)deliverImmediately
{
    record(QStringLiteral("distributed post: %1 object: %2 userInfo: %3 deliverImmediately: %4")
               .arg(text(name), text(object), className(userInfo))
               .arg(deliverImmediately));
}

@end

int notifyDistributed(NSString* name, NSString* object)
{
    NSAutoreleasePool* pool = [[NSAutoreleasePool alloc] init];
    NSNotification* notification = [NSNotification notificationWithName:name object:object];
    int told = 0;
    // Who listens may end it when told.
    const QVector<DistributedListener> listeners = RecordingCocoa::instance().distributedListeners;
    for (const DistributedListener& listener : listeners) {
        if ([listener.name isEqualToString:name]) {
            [listener.observer performSelector:listener.selector withObject:notification];
            ++told;
        }
    }
    [pool release];
    return told;
}

@interface RecordingDistributedCenterMethods : NSObject
@end

@implementation RecordingDistributedCenterMethods

+ (void)load
{
    NSAutoreleasePool* pool = [[NSAutoreleasePool alloc] init];
    Class center = [NSNotificationCenter class];
    g_addObserver = replaceMethod<AddObserver>(center, @selector(addObserver:selector:name:object:),
                                               addObserver);
    g_removeObserver =
        replaceMethod<RemoveObserver>(center, @selector(removeObserver:), removeObserver);
    g_versionString = replaceMethod<VersionString>(
        [NSProcessInfo class], @selector(operatingSystemVersionString), versionString);
    g_setBool = replaceMethod<SetBool>([NSUserDefaults class], @selector(setBool:forKey:), setBool);
    replaceMethod<UrlForDirectory>([NSFileManager class],
                                   @selector(URLForDirectory:
                                                    inDomain:appropriateForURL:create:error:),
                                   urlForDirectory);
    g_attributesOfItem = replaceMethod<AttributesOfItem>(
        [NSFileManager class], @selector(attributesOfItemAtPath:error:), attributesOfItem);
    g_components =
        replaceMethod<Components>([NSCalendar class], @selector(components:fromDate:), components);
    g_currentCalendar = replaceMethod<CurrentCalendar>(object_getClass([NSCalendar class]),
                                                       @selector(currentCalendar), currentCalendar);
    method_setImplementation(
        class_getClassMethod([NSDistributedNotificationCenter class], @selector(defaultCenter)),
        method_getImplementation(class_getClassMethod(self, @selector(recordingDefaultCenter))));
    [pool release];
}

+ (id)recordingDefaultCenter
{
    if (RecordingCocoa::instance().distribute)
        return [NSDistributedNotificationCenter
            notificationCenterForType:NSLocalNotificationCenterType];
    static RecordingDistributedCenter* center = [[RecordingDistributedCenter alloc] init];
    return center;
}

@end
