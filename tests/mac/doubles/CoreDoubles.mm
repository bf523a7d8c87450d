#include "RecordingCocoa.h"

#include <QFile>
#include <QFileInfo>
#include <QSet>

#include <algorithm>
#include <cstring>

#include <unistd.h>

namespace {

QSet<CFTypeRef>& live()
{
    static auto& objects = *new QSet<CFTypeRef>;
    return objects;
}

void record(const QString& call)
{
    RecordingCocoa::instance().record(call);
}

template <typename Reference>
Reference giveOut(id object)
{
    live().insert(object);
    return reinterpret_cast<Reference>(object);
}

/// To its last unit, also after a zero.
QString text(CFStringRef string)
{
    if (!string)
        return QStringLiteral("NULL");
    NSString* characters = (NSString*)string;
    QString copy;
    for (NSUInteger i = 0; i < [characters length]; ++i)
        copy += QChar(ushort([characters characterAtIndex:i]));
    return copy;
}

QString isNull(const void* pointer)
{
    return pointer ? QStringLiteral("other") : QStringLiteral("NULL");
}

} // namespace

/// A string that tells when it goes: the platform's strings are objects, and may be released as
/// such.
@interface CountedString : NSString {
    NSString* m_text;
}
- (id)initWithText:(NSString*)text;
@end

@implementation CountedString

- (id)initWithText:(NSString*)text
{
    self = [super init];
    if (self)
        m_text = [text copy];
    return self;
}

- (NSUInteger)length
{
    return [m_text length];
}

- (unichar)characterAtIndex:(NSUInteger)index
{
    return [m_text characterAtIndex:index];
}

- (void)dealloc
{
    live().remove(self);
    [m_text release];
    [super dealloc];
}

@end

int liveCoreObjects()
{
    return live().size();
}

extern "C" {

const CFAllocatorRef kCFAllocatorDefault = nullptr;

void CFRelease(CFTypeRef cf)
{
    if (!live().contains(cf)) {
        record(QStringLiteral("CFRelease of what isn't there"));
        return;
    }
    id object = reinterpret_cast<id>(const_cast<void*>(cf));
    const bool last = [object retainCount] == 1;
    [object release];
    if (last)
        live().remove(cf);
}

const void* CFDictionaryGetValue(CFDictionaryRef theDict, const void* key)
{
    if (!live().contains(theDict)) {
        record(QStringLiteral("CFDictionaryGetValue of what isn't there"));
        return nullptr;
    }
    record(QStringLiteral("CFDictionaryGetValue %1").arg(text(static_cast<CFStringRef>(key))));
    return [(NSDictionary*)theDict objectForKey:(NSString*)key];
}

CFStringRef CFStringCreateWithCharacters(CFAllocatorRef alloc, const UniChar* chars,
                                         CFIndex numChars)
{
    NSString* string = [[NSString alloc] initWithCharacters:chars length:NSUInteger(numChars)];
    CountedString* counted = [[CountedString alloc] initWithText:string];
    [string release];
    record(QStringLiteral("CFStringCreateWithCharacters %1 %2")
               .arg(isNull(alloc), text((CFStringRef)counted)));
    const QString& uncreatable = RecordingCocoa::instance().uncreatableString;
    if (!uncreatable.isNull() && text((CFStringRef)counted) == uncreatable) {
        [counted release];
        return nullptr;
    }
    return giveOut<CFStringRef>(counted);
}

CFUUIDRef CFUUIDCreate(CFAllocatorRef alloc)
{
    record(QStringLiteral("CFUUIDCreate %1").arg(isNull(alloc)));
    return giveOut<CFUUIDRef>([[NSUUID alloc] init]);
}

CFStringRef CFUUIDCreateString(CFAllocatorRef alloc, CFUUIDRef uuid)
{
    record(QStringLiteral("CFUUIDCreateString %1").arg(isNull(alloc)));
    return giveOut<CFStringRef>([[CountedString alloc]
        initWithText:[[reinterpret_cast<NSUUID*>(uuid) UUIDString] uppercaseString]]);
}

SInt32 CFUserNotificationDisplayAlert(CFTimeInterval timeout, CFOptionFlags flags, CFURLRef iconURL,
                                      CFURLRef soundURL, CFURLRef localizationURL,
                                      CFStringRef alertHeader, CFStringRef alertMessage,
                                      CFStringRef defaultButtonTitle,
                                      CFStringRef alternateButtonTitle,
                                      CFStringRef otherButtonTitle, CFOptionFlags* responseFlags)
{
    const QStringList arguments{QString::number(timeout),
                                QString::number(flags),
                                isNull(iconURL),
                                isNull(soundURL),
                                isNull(localizationURL),
                                QStringLiteral("[%1]").arg(text(alertHeader)),
                                QStringLiteral("[%1]").arg(text(alertMessage)),
                                text(defaultButtonTitle),
                                text(alternateButtonTitle),
                                text(otherButtonTitle),
                                isNull(responseFlags)};
    record(QStringLiteral("CFUserNotificationDisplayAlert ") + arguments.join(QLatin1Char(' ')));
    *responseFlags = 0;
    return 0;
}

/// The values that the platform has.
CGWindowLevel CGWindowLevelForKey(CGWindowLevelKey key)
{
    record(QStringLiteral("CGWindowLevelForKey %1").arg(key));
    switch (key) {
    case kCGFloatingWindowLevelKey:
        return 3;
    case kCGModalPanelWindowLevelKey:
        return 8;
    default:
        return 0;
    }
}

CGSize CGDisplayScreenSize(CGDirectDisplayID display)
{
    record(QStringLiteral("CGDisplayScreenSize %1").arg(display));
    return RecordingCocoa::instance().displaySizes.value(display, NSMakeSize(0, 0));
}

CFDictionaryRef CGSessionCopyCurrentDictionary(void)
{
    const RecordingCocoa& cocoa = RecordingCocoa::instance();
    record(QStringLiteral("CGSessionCopyCurrentDictionary"));
    if (!cocoa.hasSession)
        return nullptr;
    NSMutableDictionary* session = [[NSMutableDictionary alloc] init];
    [session setObject:@"other" forKey:@"kCGSSessionOtherKey"];
    if (cocoa.sessionUser)
        [session setObject:cocoa.sessionUser forKey:@"kCGSSessionUserNameKey"];
    return giveOut<CFDictionaryRef>(session);
}

int proc_pidpath(int pid, void* buffer, uint32_t buffersize)
{
    auto* bytes = static_cast<char*>(buffer);
    const bool zeroed = std::all_of(bytes, bytes + buffersize, [](char byte) { return byte == 0; });
    record(QStringLiteral("proc_pidpath %1 %2, %3")
               .arg(pid == getpid() ? QStringLiteral("itself") : QString::number(pid))
               .arg(buffersize)
               .arg(zeroed ? QStringLiteral("zeroed") : QStringLiteral("not zeroed")));
    const RecordingCocoa& cocoa = RecordingCocoa::instance();
    const QByteArray path = cocoa.executables.contains(pid)
        ? cocoa.executables.value(pid)
        : QFile::encodeName(QFileInfo(QStringLiteral("/proc/%1/exe").arg(pid)).symLinkTarget());
    if (path.isEmpty() || uint32_t(path.size()) >= buffersize)
        return 0;
    std::memcpy(buffer, path.constData(), size_t(path.size())); // and no zero byte
    return cocoa.executableResult.value_or(path.size());
}

} // extern "C"
