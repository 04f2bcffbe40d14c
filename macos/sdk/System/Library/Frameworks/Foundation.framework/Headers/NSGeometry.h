// Points, sizes and rectangles, and values that hold them.

#pragma once
#pragma clang system_header

#include <CoreFoundation/CFCGTypes.h>
#include <Foundation/NSValue.h>

#pragma clang assume_nonnull begin

typedef CGPoint NSPoint;
typedef CGSize NSSize;
typedef CGRect NSRect;

static inline NSPoint NSMakePoint(CGFloat x, CGFloat y) {
    NSPoint point = {x, y};
    return point;
}

static inline NSSize NSMakeSize(CGFloat width, CGFloat height) {
    NSSize size = {width, height};
    return size;
}

static inline NSRect NSMakeRect(CGFloat x, CGFloat y, CGFloat width, CGFloat height) {
    NSRect rect = {{x, y}, {width, height}};
    return rect;
}

@interface NSValue (Geometry)
+ (NSValue *)valueWithPoint:(NSPoint)point;
+ (NSValue *)valueWithSize:(NSSize)size;
+ (NSValue *)valueWithRect:(NSRect)rect;
@property(readonly) NSPoint pointValue;
@property(readonly) NSSize sizeValue;
@property(readonly) NSRect rectValue;
@end

#pragma clang assume_nonnull end
