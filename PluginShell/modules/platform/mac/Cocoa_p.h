#pragma once

// The platform's own interfaces. Where there is no Mac, the build that checks this backend brings
// declarations of them, and these are all that differs there.
#ifdef VEK_COCOA_DECLARATIONS
#import VEK_COCOA_DECLARATIONS
#else
#import <AppKit/AppKit.h>
#import <ApplicationServices/ApplicationServices.h>
#include <libproc.h>
#endif
