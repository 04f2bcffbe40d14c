// Foundation's messages answer macOS's types.

#import <Foundation/Foundation.h>

#include <type_traits>

namespace {

#define ANSWERS(type, object, message)                                                             \
    static_assert(std::is_same_v<decltype([(object *)nil message]), type>)

ANSWERS(NSTimeInterval, NSProcessInfo, systemUptime);
ANSWERS(int, NSProcessInfo, processIdentifier);
ANSWERS(NSUInteger, NSProcessInfo, operatingSystem);
ANSWERS(NSUInteger, NSProcessInfo, processorCount);
ANSWERS(NSUInteger, NSProcessInfo, activeProcessorCount);
ANSWERS(unsigned long long, NSProcessInfo, physicalMemory);
ANSWERS(BOOL, NSProcessInfo, automaticTerminationSupportEnabled);
ANSWERS(NSProcessInfoThermalState, NSProcessInfo, thermalState);
ANSWERS(id<NSObject>, NSProcessInfo, beginActivityWithOptions : NSActivityBackground reason : @"");
ANSWERS(BOOL, NSObject, respondsToSelector : @selector(self));
ANSWERS(NSUInteger, NSArray, count);
ANSWERS(NSUInteger, NSString, length);
ANSWERS(NSUInteger, NSData, length);
ANSWERS(const void *, NSData, bytes);
ANSWERS(const char *, NSValue, objCType);
ANSWERS(NSRect, NSValue, rectValue);
ANSWERS(NSRange, NSValue, rangeValue);
ANSWERS(BOOL, NSNumber, boolValue);
ANSWERS(long, NSNumber, longValue);
ANSWERS(unsigned long, NSNumber, unsignedLongValue);
ANSWERS(NSTimeInterval, NSDate, timeIntervalSinceReferenceDate);
ANSWERS(NSInteger, NSCalendarDate, yearOfCommonEra);

static_assert(std::is_same_v<NSTimeInterval, double> && std::is_same_v<CGFloat, double>);
static_assert(std::is_same_v<unichar, unsigned short>);
static_assert(std::is_same_v<NSActivityOptions, uint64_t>);
static_assert(std::is_same_v<std::underlying_type_t<NSProcessInfoThermalState>, NSInteger>);
static_assert(std::is_same_v<NSRect, CGRect> && std::is_same_v<NSSize, CGSize> &&
              std::is_same_v<NSPoint, CGPoint>);
static_assert(sizeof(NSRect) == 32 && sizeof(NSRange) == 16);

static_assert(NSActivityIdleDisplaySleepDisabled == 0x10000000000);
static_assert(NSActivityIdleSystemSleepDisabled == 0x100000);
static_assert(NSActivitySuddenTerminationDisabled == 0x4000);
static_assert(NSActivityAutomaticTerminationDisabled == 0x8000);
static_assert(NSActivityUserInitiated == 0x00FFFFFF);
static_assert(NSActivityUserInitiatedAllowingIdleSystemSleep == 0x00EFFFFF);
static_assert(NSActivityBackground == 0x000000FF);
static_assert(NSActivityLatencyCritical == 0xFF00000000);
static_assert(NSMACHOperatingSystem == 5);
static_assert(NSProcessInfoThermalStateNominal == 0 && NSProcessInfoThermalStateCritical == 3);

} // namespace
