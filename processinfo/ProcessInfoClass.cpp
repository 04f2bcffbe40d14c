#include "processinfo/Classes.h"

#include "processinfo/Handlers.h"

#include <iterator>

using namespace hostType;
using namespace processinfo;

namespace {

constexpr PluginPropertyRecord properties[] = {
    field("Handle", Integer, 0),
    property("thermalState", Integer, thermalState),
    property("operatingSystemVersionString", String, operatingSystemVersionString),
    property("globallyUniqueString", String, globallyUniqueString),
    property("hostName", String, hostName),
    property("processName", String, processName, setProcessName),
    property("operatingSystemName", String, operatingSystemName),
    property("environment", Dictionary, environment),
    property("processIdentifier", Integer, processIdentifier),
    property("operatingSystem", Integer, operatingSystem),
    property("activeProcessorCount", Integer, activeProcessorCount),
    property("processorCount", Integer, processorCount),
    property("argumentsCount", Integer, argumentsCount),
    property("physicalMemory", UInt64, physicalMemory),
    property("systemUptime", Double, systemUptime),
    property("automaticTerminationSupportEnabled", Boolean, automaticTerminationSupportEnabled,
             setAutomaticTerminationSupportEnabled),
};

constexpr PluginMethodRecord methods[] = {
    method("beginActivity(options as integer, reason as string) as NSProcessInfoActivityZKT",
           beginActivityWithOptions),
    method("endActivity(activity as NSProcessInfoActivityZKT)", endActivity),
    // Never called for its result: it makes the host know the class that the Cocoa exception trap
    // hands it.
    method("_exception as NSExceptionZKT", DummyException),
    method("argument(index as integer) as string", argument),
    method("arguments as string()", arguments),
    method("disableSuddenTermination", disableSuddenTermination),
    method("enableSuddenTermination", enableSuddenTermination),
    method("Constructor", Constructor),
    method("disableAutomaticTermination(Reason as string)", disableAutomaticTermination),
    method("enableAutomaticTermination(Reason as string)", enableAutomaticTermination),
};

constexpr PluginMethodRecord sharedMethods[] = {
    method("processInfo as NSProcessInfoZKT", processInfo),
    method("NSProcessInfoThermalStateDidChangeNotification as String",
           getNSProcessInfoThermalStateDidChangeNotification),
};

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
    .dataSize = sizeof(void *), // the wrapped object
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
