// A run of positions in a string or an array.

#pragma once
#pragma clang system_header

#include <objc/NSObjCRuntime.h>

typedef struct _NSRange {
    NSUInteger location;
    NSUInteger length;
} NSRange;

static inline NSRange NSMakeRange(NSUInteger location, NSUInteger length) {
    NSRange range = {location, length};
    return range;
}
