#pragma once

#import <Foundation/Foundation.h>

#include <cstdint>

/// A number of any type code. The messages that read it are lines of the host's trace:
/// [number intValue]. Those for integers answer the low bits of one integer, in their width.
@interface TracedNumber : NSNumber {
@public
    const char *code;
    std::int64_t integer;
    double real;
}
@end

/// A new one, which belongs to the autorelease pool.
TracedNumber *tracedNumber(const char *code, std::int64_t integer, double real = 0);
