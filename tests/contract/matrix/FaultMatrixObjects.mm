#import "FaultMatrixObjects.h"

#include <objc/runtime.h>

#include <string_view>

@implementation MatrixNumber

// By identity: the value's code says nothing to Foundation.
- (BOOL)isEqual:(id)other {
    return self == other;
}
- (NSUInteger)hash {
    return 0;
}
- (const char *)objCType {
    return code;
}
- (BOOL)boolValue {
    return YES;
}
- (unsigned char)unsignedCharValue {
    return 5;
}
- (short)shortValue {
    return 5;
}
- (unsigned short)unsignedShortValue {
    return 5;
}
- (int)intValue {
    return 5;
}
- (unsigned int)unsignedIntValue {
    return 5;
}
- (long)longValue {
    return 5;
}
- (unsigned long)unsignedLongValue {
    return 5;
}
- (float)floatValue {
    return 5;
}
- (double)doubleValue {
    return 5;
}

@end

@implementation MatrixValue

- (const char *)objCType {
    return code;
}
- (BOOL)respondsToSelector:(SEL)selector {
    const std::string_view name = sel_getName(selector);
    return (knowsHooks || !name.ends_with("ValueZKT")) && [super respondsToSelector:selector];
}
- (NSRect)rectValue {
    return NSMakeRect(1, 2, 3, 4);
}
- (NSSize)sizeValue {
    return NSMakeSize(3, 4);
}
- (NSPoint)pointValue {
    return NSMakePoint(1, 2);
}
- (NSRange)rangeValue {
    return NSMakeRange(1, 2);
}
- (void *)QTTimeValueZKT {
    return hookAnswer;
}
- (void *)QTTimeRangeValueZKT {
    return hookAnswer;
}
- (void *)CMTimeValueZKT {
    return hookAnswer;
}
- (void *)CMTimeRangeValueZKT {
    return hookAnswer;
}
- (void *)CMTimeMappingValueZKT {
    return hookAnswer;
}

@end

@implementation MatrixData

- (id)init {
    return self; // NSData's own would ask a subclass for its storage
}
- (const void *)bytes {
    return "abc";
}
- (NSUInteger)length {
    return size;
}

@end

@implementation MatrixTyped

- (CFTypeID)_cfTypeID {
    return type;
}

@end

@implementation MatrixThing

- (BOOL)respondsToSelector:(SEL)selector {
    return !sel_isEqual(selector, @selector(_cfTypeID)) && [super respondsToSelector:selector];
}

@end

Class matrixClass(const char *name) {
    Class found = objc_getClass(name);
    if (found == Nil) {
        found = objc_allocateClassPair([NSObject class], name, 0);
        objc_registerClassPair(found);
    }
    return found;
}
