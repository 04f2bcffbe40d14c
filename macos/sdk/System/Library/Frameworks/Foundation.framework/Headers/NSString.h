// Strings of UTF-16 units.

#pragma once
#pragma clang system_header

#include <Foundation/NSObject.h>

#pragma clang assume_nonnull begin

typedef unsigned short unichar;
typedef NSUInteger NSStringEncoding;
enum : NSStringEncoding { NSUTF8StringEncoding = 4 };

@class NSData;

OBJC_VISIBLE
@interface NSString : NSObject <NSCopying, NSMutableCopying>
@property(readonly) NSUInteger length;
- (unichar)characterAtIndex:(NSUInteger)index;
- (instancetype)init;
- (BOOL)isEqualToString:(NSString *)string;
/// Lives at least until the autorelease pool drains; null when the string has no UTF-8 form.
@property(nullable, readonly) const char *UTF8String __attribute__((objc_returns_inner_pointer));
+ (instancetype)string;
+ (nullable instancetype)stringWithUTF8String:(const char *)text;
+ (instancetype)stringWithCharacters:(const unichar *)characters length:(NSUInteger)length;
+ (instancetype)stringWithFormat:(NSString *)format,
                                 ... __attribute__((format(__NSString__, 1, 2)));
+ (instancetype)stringWithString:(NSString *)string;
- (instancetype)initWithUTF8String:(const char *)text;
- (instancetype)initWithFormat:(NSString *)format, ... __attribute__((format(__NSString__, 1, 2)));
- (void)getCharacters:(unichar *)buffer;
- (BOOL)hasPrefix:(NSString *)prefix;
- (NSUInteger)lengthOfBytesUsingEncoding:(NSStringEncoding)encoding; // 0: has no such form
- (nullable NSData *)dataUsingEncoding:(NSStringEncoding)encoding;
- (NSString *)stringByAppendingString:(NSString *)string;
/// Cut, or continued by the padding from that index on, over and over.
- (NSString *)stringByPaddingToLength:(NSUInteger)length
                           withString:(NSString *)padding
                      startingAtIndex:(NSUInteger)index;
@end

OBJC_VISIBLE
@interface NSMutableString : NSString
- (void)appendString:(NSString *)string;
- (void)appendFormat:(NSString *)format, ... __attribute__((format(__NSString__, 1, 2)));
@end

#ifndef __APPLE__
// The class of @"…" where literals are not Core Foundation's.
@interface NSConstantString : NSString
@end
#endif

#pragma clang assume_nonnull end
