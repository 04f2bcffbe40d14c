#pragma once

#include <cstdint>

// The classes of the plug-in as "describe" and "report" have to show them, row by row.

struct ExpectedProperty {
    const char *name;
    const char *type;
    bool writable;
    int field; ///< offset in the instance data; -1: the plug-in's functions are called
};

inline constexpr ExpectedProperty expectedProperties[] = {
    {"Handle", "Integer", true, 0},
    {"thermalState", "Integer", false, -1},
    {"operatingSystemVersionString", "String", false, -1},
    {"globallyUniqueString", "String", false, -1},
    {"hostName", "String", false, -1},
    {"processName", "String", true, -1},
    {"operatingSystemName", "String", false, -1},
    {"environment", "Dictionary", false, -1},
    {"processIdentifier", "Integer", false, -1},
    {"operatingSystem", "Integer", false, -1},
    {"activeProcessorCount", "Integer", false, -1},
    {"processorCount", "Integer", false, -1},
    {"argumentsCount", "Integer", false, -1},
    {"physicalMemory", "UInt64", false, -1},
    {"systemUptime", "Double", false, -1},
    {"automaticTerminationSupportEnabled", "Boolean", true, -1},
};
inline constexpr ExpectedProperty expectedActivityProperties[] = {
    {"Handle", "Integer", true, 0},
    {"Reason", "String", true, 8},
    {"Options", "Integer", true, 16},
};

struct ExpectedMethod {
    const char *declaration;
    int flags;
};

inline constexpr ExpectedMethod expectedMethods[] = {
    {"beginActivity(options as integer, reason as string) as NSProcessInfoActivityZKT", 4},
    {"endActivity(activity as NSProcessInfoActivityZKT)", 4},
    {"_exception as NSExceptionZKT", 4},
    {"argument(index as integer) as string", 4},
    {"arguments as string()", 4},
    {"disableSuddenTermination", 4},
    {"enableSuddenTermination", 4},
    {"Constructor", 4},
    {"disableAutomaticTermination(Reason as string)", 4},
    {"enableAutomaticTermination(Reason as string)", 4},
};
inline constexpr ExpectedMethod expectedSharedMethods[] = {
    {"processInfo as NSProcessInfoZKT", 4},
    {"NSProcessInfoThermalStateDidChangeNotification as String", 4},
};
inline constexpr ExpectedMethod expectedActivityMethods[] = {
    {"Constructor", 132},
    {"Destructor", 4},
};

struct ExpectedConstant {
    const char *name;
    const char *declaration;
    std::int64_t value;
};

inline constexpr ExpectedConstant expectedConstants[] = {
    {"NSWindowsNTOperatingSystem", "NSWindowsNTOperatingSystem=1", 1},
    {"NSWindows95OperatingSystem", "NSWindows95OperatingSystem=2", 2},
    {"NSSolarisOperatingSystem", "NSSolarisOperatingSystem=3", 3},
    {"NSHPUXOperatingSystem", "NSHPUXOperatingSystem=4", 4},
    {"NSMACHOperatingSystem", "NSMACHOperatingSystem=5", 5},
    {"NSSunOSOperatingSystem", "NSSunOSOperatingSystem=6", 6},
    {"NSOSF1OperatingSystem", "NSOSF1OperatingSystem=7", 7},
    {"NSActivityIdleDisplaySleepDisabled", "NSActivityIdleDisplaySleepDisabled = &h10000000000",
     1LL << 40},
    {"NSActivityIdleSystemSleepDisabled", "NSActivityIdleSystemSleepDisabled = &h100000", 1 << 20},
    {"NSActivitySuddenTerminationDisabled", "NSActivitySuddenTerminationDisabled = &h4000",
     1 << 14},
    {"NSActivityAutomaticTerminationDisabled", "NSActivityAutomaticTerminationDisabled = &h8000",
     1 << 15},
    {"NSActivityBackground", "NSActivityBackground = &h000000FF", 0xFF},
    {"NSActivityLatencyCritical", "NSActivityLatencyCritical = &hFF00000000", 0xFF00000000},
    {"NSActivityUserInitiated", "NSActivityUserInitiated = &h00FFFFFF", 0xFFFFFF},
    {"NSActivityUserInitiatedAllowingIdleSystemSleep",
     "NSActivityUserInitiatedAllowingIdleSystemSleep = &h00EFFFFF", 0xEFFFFF},
    {"NSProcessInfoThermalStateNominal", "NSProcessInfoThermalStateNominal = 0", 0},
    {"NSProcessInfoThermalStateFair", "NSProcessInfoThermalStateFair = 1", 1},
    {"NSProcessInfoThermalStateSerious", "NSProcessInfoThermalStateSerious = 2", 2},
    {"NSProcessInfoThermalStateCritical", "NSProcessInfoThermalStateCritical = 3", 3},
};
