// Calls of functions and methods whose arguments or answers each system passes in its own way.
#import <Foundation/Foundation.h>

#include <cstdarg>
#include <cstdio>

/// Implemented by the program that loads the image.
@interface TestAnswerer : NSObject
- (signed char)lowByteOf:(int)value;
- (unsigned char)lowUnsignedByteOf:(int)value;
- (short)lowHalfOf:(int)value;
- (unsigned short)lowUnsignedHalfOf:(int)value;
- (signed char)lowByteOf:(long)a
                       b:(long)b
                       c:(long)c
                       d:(long)d
                       e:(long)e
                       f:(long)f
                       g:(long)g
                       h:(long)h;
+ (signed char)lowByteOf:(int)value;
@end

extern "C" {

#define EVERY_KIND                                                                                 \
    "%d %s %ld %c %u %lx %lld %i %d %d|%.2f %g %.1f %g %g %g %g %g %g %g", -1, "two", 3L, '4', 5U, \
        6UL, 7LL, 8, 9, 10, 1.25, 2.0, static_cast<double>(3.5f), 4.0, 5.0, 6.0, 7.0, 8.0, 9.0,    \
        10.0

int formats(char *buffer, unsigned long size) {
    return std::snprintf(buffer, size, EVERY_KIND);
}

int formatsWithoutASize(char *buffer) {
    return std::sprintf(buffer, EVERY_KIND);
}

int formatsToNewMemory(char **text) {
    return asprintf(text, EVERY_KIND);
}

int prints(void) {
    return std::printf(EVERY_KIND);
}

void logs(NSString *object) {
    NSLog(@"%d %@ %.2f %s %d %d %d %d %d %g", 1, object, 2.5, "four", 5, 6, 7, 8, 9, 10.0);
}

__attribute__((format(printf, 2, 3))) static int passOn(int (*use)(const char *, va_list),
                                                        const char *format, ...) {
    va_list arguments;
    va_start(arguments, format);
    const int length = use(format, arguments);
    va_end(arguments);
    return length;
}

static char *target;

int formatsList(char *buffer) {
    target = buffer;
    return passOn(
        [](const char *format, va_list list) { return vsnprintf(target, 200, format, list); },
        EVERY_KIND);
}

int formatsListWithoutASize(char *buffer) {
    target = buffer;
    return passOn([](const char *format, va_list list) { return vsprintf(target, format, list); },
                  EVERY_KIND);
}

int formatsListToNewMemory(char **text) {
    const int length =
        passOn([](const char *format, va_list list) { return vasprintf(&target, format, list); },
               EVERY_KIND);
    *text = target;
    return length;
}

int printsList(void) {
    return passOn(vprintf, EVERY_KIND);
}

int byteOf(TestAnswerer *answerer, int value) {
    return [answerer lowByteOf:value];
}

int unsignedByteOf(TestAnswerer *answerer, int value) {
    return [answerer lowUnsignedByteOf:value];
}

int halfOf(TestAnswerer *answerer, int value) {
    return [answerer lowHalfOf:value];
}

int unsignedHalfOf(TestAnswerer *answerer, int value) {
    return [answerer lowUnsignedHalfOf:value];
}

int byteOfClass(int value) {
    return [TestAnswerer lowByteOf:value];
}

int byteOfManyArguments(TestAnswerer *answerer) {
    return [answerer lowByteOf:0x1000 b:2 c:4 d:8 e:16 f:32 g:64 h:128];
}
}
