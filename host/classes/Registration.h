#pragma once

// Class records: strict reading.

#include "host/core/Core.h"
#include "host/core/PluginRecords.h"

#include <cstdint>

namespace host {

inline constexpr std::int32_t oldestInterface = 9;
inline constexpr std::int32_t newestInterface = 13;

/// Adds the class and writes the record's data offset; or files everything that is wrong with the
/// record as violations, each with its place ("NSFooZKT: property 3 (hostName): no getter"), and
/// leaves host and record as they were.
void registerRecord(Core &core, PluginClassRecord *record);

} // namespace host
