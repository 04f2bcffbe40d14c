// Ownership: every Core Foundation object here is an object of GNUstep's runtime.

#import <Foundation/Foundation.h>

#include <CoreFoundation/CoreFoundation.h>

#include "Misuse.h"

const CFAllocatorRef kCFAllocatorDefault = nullptr;

CFTypeRef CFRetain(CFTypeRef object) {
    standin::requireObject(object, __func__);
    return [(id)object retain];
}

void CFRelease(CFTypeRef object) {
    standin::requireObject(object, __func__);
    [(id)object release];
}
