#import "TracedNumber.h"

#include "TraceLines.h"

/// Signed here, and not every Foundation says so.
using Char = decltype([[NSNumber alloc] charValue]);

@implementation TracedNumber

// The answer, behind its line.
template <class Answer>
static Answer answer(SEL selector, Answer value) {
    noteInTrace("[number " + std::string([NSStringFromSelector(selector) UTF8String]) + ']');
    return value;
}

- (const char *)objCType {
    return code;
}

// Any byte but 0 is true.
- (BOOL)boolValue {
    return answer(_cmd, static_cast<BOOL>(integer));
}

- (Char)charValue {
    return answer(_cmd, static_cast<signed char>(integer));
}

- (unsigned char)unsignedCharValue {
    return answer(_cmd, static_cast<unsigned char>(integer));
}

- (short)shortValue {
    return answer(_cmd, static_cast<short>(integer));
}

- (unsigned short)unsignedShortValue {
    return answer(_cmd, static_cast<unsigned short>(integer));
}

- (int)intValue {
    return answer(_cmd, static_cast<int>(integer));
}

- (unsigned int)unsignedIntValue {
    return answer(_cmd, static_cast<unsigned int>(integer));
}

- (long)longValue {
    return answer(_cmd, static_cast<long>(integer));
}

- (unsigned long)unsignedLongValue {
    return answer(_cmd, static_cast<unsigned long>(integer));
}

- (long long)longLongValue {
    return answer(_cmd, static_cast<long long>(integer));
}

- (unsigned long long)unsignedLongLongValue {
    return answer(_cmd, static_cast<unsigned long long>(integer));
}

- (NSInteger)integerValue {
    return answer(_cmd, static_cast<NSInteger>(integer));
}

- (NSUInteger)unsignedIntegerValue {
    return answer(_cmd, static_cast<NSUInteger>(integer));
}

- (float)floatValue {
    return answer(_cmd, static_cast<float>(real));
}

- (double)doubleValue {
    return answer(_cmd, real);
}

- (void)getValue:(void *)value {
    *static_cast<std::int64_t *>(value) = answer(_cmd, integer);
}

@end

TracedNumber *tracedNumber(const char *code, std::int64_t integer, double real) {
    TracedNumber *const number = [[[TracedNumber alloc] init] autorelease];
    number->code = code;
    number->integer = integer;
    number->real = real;
    return number;
}
