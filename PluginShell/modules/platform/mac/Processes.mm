#import "Cocoa_p.h"
#include "CommonConstants.h"
#include "PlatformServices_p.h"
#include "PropertyListCheck_p.h"
#import "Text_p.h"

#include <array>

#include <unistd.h>

namespace VEK_NAMESPACE {
namespace Platform {

namespace {

NSBundle* bundleOf(const QString& identifier)
{
    return [NSBundle bundleWithIdentifier:toNSString(identifier)];
}

} // namespace

QString bundlePath(const QString& identifier)
{
    @autoreleasepool {
        return fromNSString([bundleOf(identifier) bundlePath]);
    }
}

QString bundleResourcePath(const QString& identifier)
{
    @autoreleasepool {
        return fromNSString([bundleOf(identifier) resourcePath]);
    }
}

QString processName()
{
    @autoreleasepool {
        return fromNSString([[NSProcessInfo processInfo] processName]);
    }
}

qint64 currentProcess()
{
    return getpid();
}

std::optional<qint64> findApplication(const QString& displayName)
{
    std::optional<qint64> process;
    @autoreleasepool {
        NSString* name = toNSString(displayName);
        for (NSDictionary* application in [[NSWorkspace sharedWorkspace] launchedApplications]) {
            if ([name isEqualToString:[application objectForKey:@"NSApplicationName"]]) {
                process = [[application objectForKey:@"NSApplicationProcessIdentifier"] intValue];
                break;
            }
        }
    }
    return process;
}

QString executablePath(qint64 process)
{
    std::array<char, 4096> path{};
    if (proc_pidpath(int(process), path.data(), path.size()) <= 0)
        return {};
    return QString::fromUtf8(path.data(), int(qstrnlen(path.data(), path.size())));
}

QString propertyListText(const QString& file, const QString& key)
{
    if (!isPropertyListFile(file))
        return {};
    @autoreleasepool {
        NSData* data = [[NSFileManager defaultManager] contentsAtPath:toNSString(file)];
        const auto content =
            QByteArray::fromRawData(static_cast<const char*>([data bytes]), int([data length]));
        if (!isHarmlessPropertyList(content))
            return {};
        id list = nil;
        @try {
            list = [NSPropertyListSerialization propertyListWithData:data
                                                             options:NSPropertyListImmutable
                                                              format:nullptr
                                                               error:nullptr];
        } @catch (NSException*) {
            // Of a damaged binary list, some Foundations tell in this way.
        }
        if (![list isKindOfClass:[NSDictionary class]])
            return {};
        id text = [list objectForKey:toNSString(key)];
        return [text isKindOfClass:[NSString class]] ? fromNSString(text) : QString();
    }
}

std::optional<Screen> mainScreen()
{
    @autoreleasepool {
        NSDictionary* description = [[NSScreen mainScreen] deviceDescription];
        if (!description)
            return std::nullopt;
        const NSSize points = [[description objectForKey:NSDeviceSize] sizeValue];
        const CGSize millimetres =
            CGDisplayScreenSize([[description objectForKey:@"NSScreenNumber"] unsignedIntValue]);
        return Screen{{points.width, points.height}, {millimetres.width, millimetres.height}};
    }
}

} // namespace Platform
} // namespace VEK_NAMESPACE
