// Time zones.

#pragma once
#pragma clang system_header

#include <Foundation/NSObject.h>

@class NSString;

#pragma clang assume_nonnull begin

OBJC_VISIBLE
@interface NSTimeZone : NSObject <NSCopying>
/// Null when there is no zone of that name.
+ (nullable instancetype)timeZoneWithName:(NSString *)name;
+ (instancetype)timeZoneForSecondsFromGMT:(NSInteger)seconds;
/// Of this process.
@property(class, copy) NSTimeZone *defaultTimeZone;
@end

#pragma clang assume_nonnull end
