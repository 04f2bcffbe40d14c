#pragma once

#include <cstdint>

// The classes of the plug-in, row by row, as they lie in its tables and as the host shows them.

struct ExpectedProperty {
    const char *name;
    const char *type;
    const char *getter;           ///< a function of the plug-in; null for a field
    const char *setter = nullptr; ///< likewise; null where it can only be read, too
    int field = -1;               ///< offset in the instance data

    [[nodiscard]] constexpr bool writable() const { return setter != nullptr || field >= 0; }
};

inline constexpr ExpectedProperty expectedProperties[] = {
    {.name = "Handle", .type = "Integer", .getter = nullptr, .field = 0},
    {"thermalState", "Integer", "thermalState"},
    {"operatingSystemVersionString", "String", "operatingSystemVersionString"},
    {"globallyUniqueString", "String", "globallyUniqueString"},
    {"hostName", "String", "hostName"},
    {"processName", "String", "processName", "setProcessName"},
    {"operatingSystemName", "String", "operatingSystemName"},
    {"environment", "Dictionary", "environment"},
    {"processIdentifier", "Integer", "processIdentifier"},
    {"operatingSystem", "Integer", "operatingSystem"},
    {"activeProcessorCount", "Integer", "activeProcessorCount"},
    {"processorCount", "Integer", "processorCount"},
    {"argumentsCount", "Integer", "argumentsCount"},
    {"physicalMemory", "UInt64", "physicalMemory"},
    {"systemUptime", "Double", "systemUptime"},
    {"automaticTerminationSupportEnabled", "Boolean", "automaticTerminationSupportEnabled",
     "setAutomaticTerminationSupportEnabled"},
};
inline constexpr ExpectedProperty expectedActivityProperties[] = {
    {.name = "Handle", .type = "Integer", .getter = nullptr, .field = 0},
    {.name = "Reason", .type = "String", .getter = nullptr, .field = 8},
    {.name = "Options", .type = "Integer", .getter = nullptr, .field = 16},
};

struct ExpectedMethod {
    const char *declaration;
    const char *function; ///< of the plug-in
    int flags = 4;
};

inline constexpr ExpectedMethod expectedMethods[] = {
    {"beginActivity(options as integer, reason as string) as NSProcessInfoActivityZKT",
     "beginActivityWithOptions"},
    {"endActivity(activity as NSProcessInfoActivityZKT)", "endActivity"},
    {"_exception as NSExceptionZKT", "DummyException"},
    {"argument(index as integer) as string", "argument"},
    {"arguments as string()", "arguments"},
    {"disableSuddenTermination", "disableSuddenTermination"},
    {"enableSuddenTermination", "enableSuddenTermination"},
    {"Constructor", "Constructor"},
    {"disableAutomaticTermination(Reason as string)", "disableAutomaticTermination"},
    {"enableAutomaticTermination(Reason as string)", "enableAutomaticTermination"},
};
inline constexpr ExpectedMethod expectedSharedMethods[] = {
    {"processInfo as NSProcessInfoZKT", "processInfo"},
    {"NSProcessInfoThermalStateDidChangeNotification as String",
     "getNSProcessInfoThermalStateDidChangeNotification"},
};
inline constexpr ExpectedMethod expectedActivityMethods[] = {
    {"Constructor", "activity::Constructor", 132},
    {"Destructor", "activity::Destructor"},
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
