// GNUstep's value objects in macOS's type codes, and the two boolean objects.

#import <Foundation/Foundation.h>

#include "Methods.h"

// Core Foundation declares the two constant. They become so only when the library is loaded, so
// that they are defined under other names in this file.
id booleanTrue __asm__("kCFBooleanTrue") = nil;
id booleanFalse __asm__("kCFBooleanFalse") = nil;

namespace {

// macOS encodes BOOL as a signed char, and geometry by the names of Core Graphics.
const char *booleanCode(id, SEL) {
    return "c";
}
const char *pointCode(id, SEL) {
    return "{CGPoint=dd}";
}
const char *sizeCode(id, SEL) {
    return "{CGSize=dd}";
}
const char *rectCode(id, SEL) {
    return "{CGRect={CGPoint=dd}{CGSize=dd}}";
}

void replaceTypeCode(id value, const char *(*code)(id, SEL)) {
    standin::replaceMethod([value class], "objCType", code, "r*16@0:8");
}

} // namespace

@interface StandInTypeCodes : NSObject
@end

@implementation StandInTypeCodes

+ (void)load {
    NSAutoreleasePool *pool = [[NSAutoreleasePool alloc] init];
    booleanTrue = [[NSNumber numberWithBool:YES] retain];
    booleanFalse = [[NSNumber numberWithBool:NO] retain];
    replaceTypeCode(booleanTrue, booleanCode);
    // GNUstep makes every value of such a structure with one class, whatever name its code carries.
    replaceTypeCode([NSValue valueWithPoint:NSZeroPoint], pointCode);
    replaceTypeCode([NSValue valueWithSize:NSZeroSize], sizeCode);
    replaceTypeCode([NSValue valueWithRect:NSZeroRect], rectCode);
    [pool drain];
}

@end
