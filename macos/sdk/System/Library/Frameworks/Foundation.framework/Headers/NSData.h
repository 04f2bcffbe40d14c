// Bytes.

#pragma once
#pragma clang system_header

#include <Foundation/NSObject.h>

#pragma clang assume_nonnull begin

OBJC_VISIBLE
@interface NSData : NSObject <NSCopying, NSMutableCopying>
@property(readonly) NSUInteger length;
/// May be null when there are none. Lives as long as the data.
@property(readonly) const void *bytes __attribute__((objc_returns_inner_pointer));
- (BOOL)isEqualToData:(NSData *)other;
+ (instancetype)data;
+ (instancetype)dataWithBytes:(nullable const void *)bytes length:(NSUInteger)length;
@end

OBJC_VISIBLE
@interface NSMutableData : NSData
@property(readonly) void *mutableBytes __attribute__((objc_returns_inner_pointer));
@property NSUInteger length;
- (void)appendBytes:(const void *)bytes length:(NSUInteger)length;
+ (nullable instancetype)dataWithLength:(NSUInteger)length;
+ (nullable instancetype)dataWithCapacity:(NSUInteger)capacity;
@end

#pragma clang assume_nonnull end
