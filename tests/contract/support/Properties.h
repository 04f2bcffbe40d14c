#pragma once

#include "host/Host.h"

#include <cstdint>
#include <ostream>
#include <string>
#include <vector>

/// A property that the plug-in reads from the wrapped object.
struct PropertyRow {
    const char *name;
    /// What it reads without an object, and after a Cocoa exception.
    host::Value neutral;
    /// The messages that the wrapped object gets, in order.
    std::vector<std::string> messages;
};
inline void PrintTo(const PropertyRow &row, std::ostream *stream) {
    *stream << row.name;
}

/// In the order of the class's table.
inline const std::vector<PropertyRow> &readProperties() {
    static const std::vector<PropertyRow> rows = {
        {"thermalState", -1, {"respondsToSelector:thermalState", "thermalState"}},
        {"operatingSystemVersionString", {}, {"operatingSystemVersionString"}},
        {"globallyUniqueString", {}, {"globallyUniqueString"}},
        {"hostName", {}, {"hostName"}},
        {"processName", {}, {"processName"}},
        {"operatingSystemName", {}, {"operatingSystemName"}},
        {"environment", {}, {"environment"}},
        {"processIdentifier", 0, {"processIdentifier"}},
        {"operatingSystem", 0, {"operatingSystem"}},
        {"activeProcessorCount", 0, {"activeProcessorCount"}},
        {"processorCount", 0, {"processorCount"}},
        {"argumentsCount", 0, {"arguments"}},
        {"physicalMemory", std::uint64_t{0}, {"physicalMemory"}},
        {"systemUptime", 0.0, {"systemUptime"}},
        {"automaticTerminationSupportEnabled", false, {"automaticTerminationSupportEnabled"}},
    };
    return rows;
}

inline constexpr const char *stringProperties[] = {"operatingSystemVersionString",
                                                   "globallyUniqueString", "hostName",
                                                   "processName", "operatingSystemName"};

/// The getter as the host calls it. Result in the register of the property's type.
template <class Result>
Result readDirectly(host::Host &host, host::ObjectHandle instance, const char *property,
                    std::intptr_t parameter = 0) {
    return reinterpret_cast<Result (*)(host::ObjectHandle, std::intptr_t)>(
        host.getterOf("NSProcessInfoZKT", property))(instance, parameter);
}
