#import "Cocoa_p.h"
#include "CommonConstants.h"
#include "PlatformServices_p.h"

namespace VEK_NAMESPACE {
namespace Platform {

namespace {

/// A text for an alert is a platform string, and nothing else.
CFStringRef stringOf(const AlertText* text)
{
    return reinterpret_cast<CFStringRef>(text);
}

} // namespace

AlertTextPointer makeAlertText(const QString& text)
{
    CFStringRef string = CFStringCreateWithCharacters(
        kCFAllocatorDefault, reinterpret_cast<const UniChar*>(text.utf16()), text.size());
    return AlertTextPointer(const_cast<AlertText*>(reinterpret_cast<const AlertText*>(string)));
}

void AlertTextDeleter::operator()(AlertText* text) const
{
    if (text)
        CFRelease(stringOf(text));
}

void showAlert(const AlertText& title, const AlertText& text)
{
    CFOptionFlags response = 0;
    CFUserNotificationDisplayAlert(0.0, 0, nullptr, nullptr, nullptr, stringOf(&title),
                                   stringOf(&text), nullptr, nullptr, nullptr, &response);
}

} // namespace Platform
} // namespace VEK_NAMESPACE
