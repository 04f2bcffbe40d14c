#pragma once

#import <Foundation/Foundation.h>

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

/// What ProcessInfoDouble answers; a field that is not set answers like a fresh object.
struct ProcessInfoAnswers {
    std::int64_t thermalState = 0;
    NSString *string = nil; // every string property; not retained
    int processIdentifier = 0;
    std::uint64_t operatingSystem = 0;
    std::uint64_t activeProcessorCount = 0;
    std::uint64_t processorCount = 0;
    std::uint64_t physicalMemory = 0;
    double systemUptime = 0;
    signed char automaticTerminationSupportEnabled = 0;
    NSArray *arguments = nil;        // not retained
    NSDictionary *environment = nil; // not retained
    NSException *raising = nil;      // every message raises this instead; not retained
    std::function<void()> acting;    // runs in every message before the answer; may throw
};

/// Stands behind an instance in the place of NSProcessInfo, through "Handle": answers in macOS's
/// types, and records the selectors that it receives (retain and release too, and
/// respondsToSelector: with its argument).
@interface ProcessInfoDouble : NSObject {
@public
    ProcessInfoAnswers answers;
    std::vector<std::string> received;
}
- (std::int64_t)thermalState;
- (NSString *)operatingSystemVersionString;
- (NSString *)globallyUniqueString;
- (NSString *)hostName;
- (NSString *)processName;
- (NSString *)operatingSystemName;
- (NSDictionary *)environment;
- (int)processIdentifier;
- (std::uint64_t)operatingSystem;
- (std::uint64_t)activeProcessorCount;
- (std::uint64_t)processorCount;
- (NSArray *)arguments;
- (std::uint64_t)physicalMemory;
- (double)systemUptime;
- (signed char)automaticTerminationSupportEnabled;
- (void)disableAutomaticTermination:(NSString *)reason;
@end

/// Knows no message of a process-information object.
@interface DumbObject : NSObject {
@public
    std::vector<std::string> received; // respondsToSelector: only
}
@end
