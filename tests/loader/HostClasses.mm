#import "tests/loader/HostClasses.h"

#include <atomic>
#include <cstdarg>

namespace {

std::atomic<int> exceptions = 0;
std::atomic<int> answerers = 0;
int initialisations = 0;

} // namespace

extern "C" {
// Imported by the images; the second one is meant to lose against the image's own.
int hostNumber(int value);
int chosen();

int hostNumber(int value) {
    return value + 1000;
}

int chosen() {
    return 99;
}
}

int answererInitialisations() {
    return initialisations;
}

int livingAnswerers() {
    return answerers;
}

@implementation TestAnswerer

+ (void)initialize {
    if (self == [TestAnswerer class])
        ++initialisations;
}

+ (int)classAnswer {
    return 4711;
}

- (id)init {
    self = [super init];
    if (self != nil)
        ++answerers;
    return self;
}

- (void)dealloc {
    --answerers;
    [super dealloc];
}

- (int)sumOf:(int)a b:(int)b c:(int)c d:(int)d e:(int)e f:(int)f g:(long)g h:(long)h {
    return a + 2 * b + 3 * c + 4 * d + 5 * e + 6 * f + static_cast<int>(7 * g + 8 * h);
}

- (double)productOf:(double)a
                  b:(double)b
                  c:(double)c
                  d:(double)d
                  e:(double)e
                  f:(double)f
                  g:(double)g
                  h:(double)h
                  i:(double)i {
    return a * b * c * d * e * f * g * h * i + a;
}

- (double)mix:(int)a b:(double)b c:(float)c d:(long)d e:(char)e f:(struct Large)f {
    return a + 10 * b + 100 * static_cast<double>(c) + 1000 * static_cast<double>(d) + 10000 * e +
           f.values[0] + f.values[5];
}

- (signed char)smallAnswer {
    return -5;
}

// What is cut off here stays in the register, where this system's callers expect it.

- (signed char)lowByteOf:(int)value {
    return static_cast<signed char>(value);
}

- (unsigned char)lowUnsignedByteOf:(int)value {
    return static_cast<unsigned char>(value);
}

- (short)lowHalfOf:(int)value {
    return static_cast<short>(value);
}

- (unsigned short)lowUnsignedHalfOf:(int)value {
    return static_cast<unsigned short>(value);
}

- (signed char)lowByteOf:(long)a
                       b:(long)b
                       c:(long)c
                       d:(long)d
                       e:(long)e
                       f:(long)f
                       g:(long)g
                       h:(long)h {
    return static_cast<signed char>(a | b | c | d | e | f | g | h);
}

+ (signed char)lowByteOf:(int)value {
    return static_cast<signed char>(value);
}

- (float)floatAnswer {
    return 1.25f;
}

- (long double)longDoubleAnswer {
    return 3.5L;
}

- (ComplexLongDouble)complexAnswer {
    return __builtin_complex(1.5L, -2.5L);
}

- (struct Large)largeAnswer:(double)scale {
    return {{scale, 2 * scale, 3 * scale, 4 * scale, 5 * scale, 6 * scale}};
}

- (struct Pair)pairAnswer {
    return {0.5, -0.25};
}

- (struct Words)wordsAnswer {
    return {LONG_MIN, 42};
}

- (struct Vector)vectorAnswer {
    return {1, 2, 3, 4};
}

- (id)join:(NSString *)format, ... {
    va_list arguments;
    va_start(arguments, format);
    NSString *const text = [[NSString alloc] initWithFormat:format arguments:arguments];
    va_end(arguments);
    return [text autorelease];
}

- (id)autoreleasedAnswer {
    return [[[NSObject alloc] init] autorelease];
}

@end

@implementation CountedException

+ (int)living {
    return exceptions;
}

+ (CountedException *)make {
    ++exceptions;
    return [[CountedException alloc] initWithName:@"Counted" reason:@"a test" userInfo:nil];
}

- (void)dealloc {
    --exceptions;
    [super dealloc];
}

@end
