#pragma once

#import "Cocoa_p.h"
#include "UtilsDllGlobal.h"

#include <QString>

namespace VEK_NAMESPACE {
namespace Platform {

/// Autoreleased.
inline NSString* toNSString(const QString& text)
{
    return [NSString stringWithCharacters:reinterpret_cast<const unichar*>(text.utf16())
                                   length:NSUInteger(text.size())];
}

/// Null for nil.
inline QString fromNSString(NSString* text)
{
    return QString::fromUtf8([text UTF8String]);
}

} // namespace Platform
} // namespace VEK_NAMESPACE
