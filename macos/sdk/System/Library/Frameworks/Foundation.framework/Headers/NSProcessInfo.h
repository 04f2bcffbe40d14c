// Facts and power behaviour of the running process.

#pragma once
#pragma clang system_header

#include <Foundation/NSDate.h>
#include <Foundation/NSObject.h>
#include <stdint.h>

@class NSArray<ObjectType>;
@class NSDictionary<KeyType, ObjectType>;
@class NSString;

#pragma clang assume_nonnull begin

enum {
    NSWindowsNTOperatingSystem = 1,
    NSWindows95OperatingSystem,
    NSSolarisOperatingSystem,
    NSHPUXOperatingSystem,
    NSMACHOperatingSystem,
    NSSunOSOperatingSystem,
    NSOSF1OperatingSystem
};

OBJC_VISIBLE
@interface NSProcessInfo : NSObject
@property(class, readonly, strong) NSProcessInfo *processInfo;
@property(readonly, copy) NSDictionary<NSString *, NSString *> *environment;
@property(readonly, copy) NSArray<NSString *> *arguments;
@property(readonly, copy) NSString *hostName;
@property(copy) NSString *processName;
@property(readonly) int processIdentifier;
@property(readonly, copy) NSString *globallyUniqueString;
- (NSUInteger)operatingSystem CF_MACOS_DEPRECATED(10.0, 10.10);
- (NSString *)operatingSystemName CF_MACOS_DEPRECATED(10.0, 10.10);
@property(readonly, copy) NSString *operatingSystemVersionString;
@property(readonly) NSUInteger processorCount;
@property(readonly) NSUInteger activeProcessorCount;
@property(readonly) unsigned long long physicalMemory; // bytes
@property(readonly) NSTimeInterval systemUptime;       // seconds awake since the start
- (void)disableSuddenTermination;
- (void)enableSuddenTermination;
- (void)disableAutomaticTermination:(NSString *)reason;
- (void)enableAutomaticTermination:(NSString *)reason;
@property BOOL automaticTerminationSupportEnabled;
@end

typedef NS_OPTIONS(uint64_t, NSActivityOptions) {
    NSActivityIdleDisplaySleepDisabled = 1ULL << 40,
    NSActivityIdleSystemSleepDisabled = 1ULL << 20,
    NSActivitySuddenTerminationDisabled = 1ULL << 14,
    NSActivityAutomaticTerminationDisabled = 1ULL << 15,
    NSActivityUserInitiated = 0x00FFFFFFULL | NSActivityIdleSystemSleepDisabled,
    NSActivityUserInitiatedAllowingIdleSystemSleep = NSActivityUserInitiated &
                                                     ~NSActivityIdleSystemSleepDisabled,
    NSActivityBackground = 0x000000FFULL,
    NSActivityLatencyCritical = 0xFF00000000ULL,
} CF_MACOS_SINCE(10.9);

@interface NSProcessInfo (Activities)
/// A token, autoreleased, for endActivity:.
- (id<NSObject>)beginActivityWithOptions:(NSActivityOptions)options
                                  reason:(NSString *)reason CF_MACOS_SINCE(10.9);
- (void)endActivity:(id<NSObject>)activity CF_MACOS_SINCE(10.9);
@end

typedef NS_ENUM(NSInteger, NSProcessInfoThermalState) {
    NSProcessInfoThermalStateNominal,
    NSProcessInfoThermalStateFair,
    NSProcessInfoThermalStateSerious,
    NSProcessInfoThermalStateCritical,
} CF_MACOS_SINCE(10.10.3);

@interface NSProcessInfo (ThermalState)
@property(readonly) NSProcessInfoThermalState thermalState CF_MACOS_SINCE(10.10.3);
@end

/// Absent (null address) on systems that do not report a thermal state.
FOUNDATION_EXPORT NSString *const
    NSProcessInfoThermalStateDidChangeNotification CF_MACOS_WEAK_SINCE(10.10.3);

#pragma clang assume_nonnull end
