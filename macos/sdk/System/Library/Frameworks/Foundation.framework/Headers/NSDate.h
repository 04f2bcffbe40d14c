// Points in time.

#pragma once
#pragma clang system_header

#include <Foundation/NSObject.h>

#pragma clang assume_nonnull begin

typedef double NSTimeInterval; // seconds

OBJC_VISIBLE
@interface NSDate : NSObject <NSCopying>
/// Seconds since 2001-01-01 00:00:00 UTC.
@property(readonly) NSTimeInterval timeIntervalSinceReferenceDate;
- (instancetype)init;
- (instancetype)initWithTimeIntervalSinceReferenceDate:(NSTimeInterval)seconds;
+ (instancetype)date;
+ (instancetype)dateWithTimeIntervalSinceReferenceDate:(NSTimeInterval)seconds;
+ (instancetype)dateWithTimeIntervalSince1970:(NSTimeInterval)seconds;
@end

#pragma clang assume_nonnull end
