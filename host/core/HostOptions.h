#pragma once

// What a host is made with.

#include "host/core/PluginRecords.h"

#include <cstddef>
#include <cstdint>
#include <limits>
#include <optional>
#include <string>
#include <vector>

namespace host {

/// Parts of the plug-in family that are present besides the plug-in: exception support
/// (NSExceptionZKT and the NSException class methods that make it) and the registry of wrappers.
/// With wrappers, the family's wrapper classes are there besides all that.
enum class Siblings { none, exceptions, registry, all, wrappers };

struct HostOptions {
    static constexpr double usualVersion = 2013.04;
    /// What REALGetRBVersion answers; nullopt: the service is missing.
    std::optional<double> version = usualVersion;
    Siblings siblings = Siblings::all;
    /// Off: calls are not recorded (benchmarks). Violations always are.
    bool tracing = true;
    /// Freed objects and strings are kept, poisoned, so that every later use is noticed. Past
    /// this number the oldest are really freed.
    std::size_t quarantineLimit = std::numeric_limits<std::size_t>::max();
    /// Larger memory blocks are refused: "newMemoryBlock" answers nil, the constructor raises
    /// OutOfMemoryException.
    std::uint64_t memoryBlockLimit = std::uint64_t{1} << 40;
};

/// A class that the host knows without a record: stands for one that another plug-in registers.
struct ClassSpec {
    std::string name;
    std::size_t dataSize = 16;
    std::size_t dataOffset = objectHeaderSize; ///< >= 48
    std::vector<std::byte> initialData = {};   ///< copied to the start of each instance's data
    std::string superclass = {};
};

} // namespace host
