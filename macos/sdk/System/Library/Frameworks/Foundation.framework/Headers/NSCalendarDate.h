// Points in time that know their calendar fields, in the default time zone.

#pragma once
#pragma clang system_header

#include <Foundation/NSDate.h>

@class NSTimeZone;

#pragma clang assume_nonnull begin

OBJC_VISIBLE
@interface NSCalendarDate : NSDate
- (NSInteger)yearOfCommonEra CF_MACOS_DEPRECATED(10.4, 10.10);
- (NSInteger)monthOfYear CF_MACOS_DEPRECATED(10.4, 10.10);
- (NSInteger)dayOfMonth CF_MACOS_DEPRECATED(10.4, 10.10);
- (NSInteger)hourOfDay CF_MACOS_DEPRECATED(10.4, 10.10);
- (NSInteger)minuteOfHour CF_MACOS_DEPRECATED(10.4, 10.10);
- (void)setTimeZone:(null_unspecified NSTimeZone *)zone CF_MACOS_DEPRECATED(10.4, 10.10);
- (NSInteger)secondOfMinute CF_MACOS_DEPRECATED(10.4, 10.10);
@end

#pragma clang assume_nonnull end
