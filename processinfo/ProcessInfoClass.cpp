#include "processinfo/Classes.h"

#include "processinfo/Handlers.h"

#include <iterator>

using namespace processinfo;

namespace {

constexpr PluginPropertyRecord properties[] = {
    {.name = "Handle",
     .type = "Integer",
     .getter = hostAccessesField,
     .setter = hostAccessesField,
     .parameter = 0},
    {.name = "thermalState", .type = "Integer", .getter = thermalState},
    {.name = "operatingSystemVersionString",
     .type = "String",
     .getter = operatingSystemVersionString},
    {.name = "globallyUniqueString", .type = "String", .getter = globallyUniqueString},
    {.name = "hostName", .type = "String", .getter = hostName},
    {.name = "processName", .type = "String", .getter = processName, .setter = setProcessName},
    {.name = "operatingSystemName", .type = "String", .getter = operatingSystemName},
    {.name = "environment", .type = "Dictionary", .getter = environment},
    {.name = "processIdentifier", .type = "Integer", .getter = processIdentifier},
    {.name = "operatingSystem", .type = "Integer", .getter = operatingSystem},
    {.name = "activeProcessorCount", .type = "Integer", .getter = activeProcessorCount},
    {.name = "processorCount", .type = "Integer", .getter = processorCount},
    {.name = "argumentsCount", .type = "Integer", .getter = argumentsCount},
    {.name = "physicalMemory", .type = "UInt64", .getter = physicalMemory},
    {.name = "systemUptime", .type = "Double", .getter = systemUptime},
    {.name = "automaticTerminationSupportEnabled",
     .type = "Boolean",
     .getter = automaticTerminationSupportEnabled,
     .setter = setAutomaticTerminationSupportEnabled},
};

// clang-format off
constexpr PluginMethodRecord methods[] = {
    {.function = beginActivityWithOptions,
     .declaration = "beginActivity(options as integer, reason as string) as NSProcessInfoActivityZKT"},
    {.function = endActivity,
     .declaration = "endActivity(activity as NSProcessInfoActivityZKT)"},
    // Never called for its result: it makes the host know the class that the Cocoa exception trap
    // hands it.
    {.function = DummyException,
     .declaration = "_exception as NSExceptionZKT"},
    {.function = argument,
     .declaration = "argument(index as integer) as string"},
    {.function = arguments,
     .declaration = "arguments as string()"},
    {.function = disableSuddenTermination,
     .declaration = "disableSuddenTermination"},
    {.function = enableSuddenTermination,
     .declaration = "enableSuddenTermination"},
    {.function = Constructor,
     .declaration = "Constructor"},
    {.function = disableAutomaticTermination,
     .declaration = "disableAutomaticTermination(Reason as string)"},
    {.function = enableAutomaticTermination,
     .declaration = "enableAutomaticTermination(Reason as string)"},
};

constexpr PluginMethodRecord sharedMethods[] = {
    {.function = processInfo,
     .declaration = "processInfo as NSProcessInfoZKT"},
    {.function = getNSProcessInfoThermalStateDidChangeNotification,
     .declaration = "NSProcessInfoThermalStateDidChangeNotification as String"},
};
// clang-format on

constexpr PluginConstantRecord constants[] = {
    // values of "operatingSystem"
    {"NSWindowsNTOperatingSystem=1"},
    {"NSWindows95OperatingSystem=2"},
    {"NSSolarisOperatingSystem=3"},
    {"NSHPUXOperatingSystem=4"},
    {"NSMACHOperatingSystem=5"},
    {"NSSunOSOperatingSystem=6"},
    {"NSOSF1OperatingSystem=7"},
    // options of "beginActivity"
    {"NSActivityIdleDisplaySleepDisabled = &h10000000000"},
    {"NSActivityIdleSystemSleepDisabled = &h100000"},
    {"NSActivitySuddenTerminationDisabled = &h4000"},
    {"NSActivityAutomaticTerminationDisabled = &h8000"},
    {"NSActivityBackground = &h000000FF"},
    {"NSActivityLatencyCritical = &hFF00000000"},
    {"NSActivityUserInitiated = &h00FFFFFF"},
    {"NSActivityUserInitiatedAllowingIdleSystemSleep = &h00EFFFFF"},
    // values of "thermalState"
    {"NSProcessInfoThermalStateNominal = 0"},
    {"NSProcessInfoThermalStateFair = 1"},
    {"NSProcessInfoThermalStateSerious = 2"},
    {"NSProcessInfoThermalStateCritical = 3"},
};

} // namespace

constinit PluginClassRecord processInfoClass{
    .name = "NSProcessInfoZKT",
    .dataSize = 8, // the wrapped object
    .constructor = NSProcessInfoConstructor,
    .destructor = NSProcessInfoDestructor,
    .properties = properties,
    .propertyCount = std::size(properties),
    .methods = methods,
    .methodCount = std::size(methods),
    .constants = constants,
    .constantCount = std::size(constants),
    .sharedMethods = sharedMethods,
    .sharedMethodCount = std::size(sharedMethods),
};
