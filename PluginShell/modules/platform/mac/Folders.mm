#import "Cocoa_p.h"
#include "CommonConstants.h"
#include "PlatformServices_p.h"
#import "Text_p.h"
#include "posix/PasswordEntry_p.h"

#include <unistd.h>

namespace VEK_NAMESPACE {
namespace Platform {

QString systemFolder()
{
    return QStringLiteral("/Library/Application Support/Vek Labs/krnv3/");
}

std::optional<QString> homeFolder()
{
    return homeFolderOfUser(getuid());
}

std::optional<QString> sessionUserHomeFolder()
{
    CFDictionaryRef session = CGSessionCopyCurrentDictionary();
    if (!session)
        return std::nullopt;
    std::optional<QString> home;
    @autoreleasepool {
        const auto* user = static_cast<CFStringRef>(
            CFDictionaryGetValue(session, CFSTR("kCGSSessionUserNameKey")));
        if (user)
            home = fromNSString(NSHomeDirectoryForUser((NSString*)user));
    }
    CFRelease(session);
    return home;
}

} // namespace Platform
} // namespace VEK_NAMESPACE
