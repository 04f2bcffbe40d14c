#pragma once

// Class records: strict reading.

#include "host/core/PluginRecords.h"

#include <cstdint>
#include <string>
#include <vector>

namespace host {

class Host;

inline constexpr std::int32_t oldestInterface = 9;
inline constexpr std::int32_t newestInterface = 13;

/// Everything that is wrong with the record, each with its place: "NSFooZKT: property 3
/// (hostName): no getter". Empty when it can be registered.
std::vector<std::string> faultsOf(const Host &host, const PluginClassRecord &record);

/// Adds the class and writes the record's data offset; or files every fault as a violation and
/// leaves host and record as they were.
void registerRecord(Host &host, PluginClassRecord *record);

} // namespace host
