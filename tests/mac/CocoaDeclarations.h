#pragma once

// What the macOS backend calls and GNUstep lacks, as the platform's published headers declare it.
// Only for the build that checks that backend where there is no Mac.

#pragma clang system_header

#include <QAction>
#include <QIcon>
#include <QWidget>
#define Q_CLANG_QDOC // makes QMenu declare toNSMenu(); the headers above can't stand it
#include <QMenu>
#undef Q_CLANG_QDOC

#import <AppKit/AppKit.h>

#include <stdint.h>

// AppKit

typedef NSInteger NSWindowAnimationBehavior;
enum
{
    NSWindowAnimationBehaviorDefault = 0,
    NSWindowAnimationBehaviorNone = 2
};

@interface NSWindow (LaterThanGNUstep)
- (void)toggleFullScreen:(id)sender;
- (void)setAnimationBehavior:(NSWindowAnimationBehavior)newAnimationBehavior;
@end

@interface NSMenu (LaterThanGNUstep)
- (void)cancelTracking;
@end

@interface NSWorkspace (LaterThanGNUstep)
- (void)activateFileViewerSelectingURLs:(NSArray*)fileURLs;
@end

@class NSAppleEventDescriptor;
@interface NSAppleScript (LaterThanGNUstep)
- (id)initWithSource:(NSString*)source;
- (NSAppleEventDescriptor*)executeAndReturnError:(NSDictionary**)errorInfo;
@end

extern "C" {

extern NSString* const NSWindowDidEnterFullScreenNotification;
extern NSString* const NSWindowDidExitFullScreenNotification;

// CoreFoundation

typedef int32_t SInt32;
typedef uint16_t UniChar;
typedef signed long CFIndex;
typedef double CFTimeInterval;
typedef unsigned long CFOptionFlags;
typedef const void* CFTypeRef;
typedef const struct __CFAllocator* CFAllocatorRef;
typedef const struct __CFDictionary* CFDictionaryRef;
typedef const struct __CFString* CFStringRef;
typedef const struct __CFURL* CFURLRef;
typedef const struct __CFUUID* CFUUIDRef;

extern const CFAllocatorRef kCFAllocatorDefault;

#define CFSTR(text) ((CFStringRef)(@text))

void CFRelease(CFTypeRef cf);
const void* CFDictionaryGetValue(CFDictionaryRef theDict, const void* key);
CFStringRef CFStringCreateWithCharacters(CFAllocatorRef alloc, const UniChar* chars,
                                         CFIndex numChars);
CFUUIDRef CFUUIDCreate(CFAllocatorRef alloc);
CFStringRef CFUUIDCreateString(CFAllocatorRef alloc, CFUUIDRef uuid);
SInt32 CFUserNotificationDisplayAlert(CFTimeInterval timeout, CFOptionFlags flags, CFURLRef iconURL,
                                      CFURLRef soundURL, CFURLRef localizationURL,
                                      CFStringRef alertHeader, CFStringRef alertMessage,
                                      CFStringRef defaultButtonTitle,
                                      CFStringRef alternateButtonTitle,
                                      CFStringRef otherButtonTitle, CFOptionFlags* responseFlags);

// CoreGraphics

typedef NSSize CGSize;
typedef int32_t CGWindowLevel;
typedef uint32_t CGDirectDisplayID;
typedef int32_t CGWindowLevelKey;
enum
{
    kCGNormalWindowLevelKey = 4,
    kCGFloatingWindowLevelKey = 5,
    kCGModalPanelWindowLevelKey = 10
};

CGWindowLevel CGWindowLevelForKey(CGWindowLevelKey key);
CGSize CGDisplayScreenSize(CGDirectDisplayID display);
CFDictionaryRef CGSessionCopyCurrentDictionary(void);

// libproc

int proc_pidpath(int pid, void* buffer, uint32_t buffersize);

} // extern "C"
