#import "TracedValue.h"

#include "TraceLines.h"

@implementation TracedValue

static void note(const std::string &message) {
    noteInTrace("[value " + message + ']');
}

static std::string textOf(SEL selector) {
    return [NSStringFromSelector(selector) UTF8String];
}

- (const char *)objCType {
    return code.c_str();
}

- (BOOL)respondsToSelector:(SEL)selector {
    note("respondsToSelector:" + textOf(selector));
    return knowsHooks && [super respondsToSelector:selector];
}

- (NSRect)rectValue {
    note("rectValue");
    return rect;
}

- (NSSize)sizeValue {
    note("sizeValue");
    return rect.size;
}

- (NSPoint)pointValue {
    note("pointValue");
    return rect.origin;
}

- (NSRange)rangeValue {
    note("rangeValue");
    return range;
}

// The hooks, which a sibling plug-in would add.

- (host::ObjectHandle)QTTimeValueZKT {
    note("QTTimeValueZKT");
    return hookAnswer;
}

- (host::ObjectHandle)QTTimeRangeValueZKT {
    note("QTTimeRangeValueZKT");
    return hookAnswer;
}

- (host::ObjectHandle)CMTimeValueZKT {
    note("CMTimeValueZKT");
    return hookAnswer;
}

- (host::ObjectHandle)CMTimeRangeValueZKT {
    note("CMTimeRangeValueZKT");
    return hookAnswer;
}

- (host::ObjectHandle)CMTimeMappingValueZKT {
    note("CMTimeMappingValueZKT");
    return hookAnswer;
}

@end
