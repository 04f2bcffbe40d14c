#pragma once

#include "host/core/PluginRecords.h"

#include <cstddef>

/// Stands for a host instance whose data notices that it is written to, even with the same value.
/// One at a time. Not an object of the reference host: no host service may get it.
class WatchedInstance {
public:
    /// From `firstWatched` bytes into the data on, up to its end.
    WatchedInstance(std::size_t firstWatched, const void *data, std::size_t size);
    ~WatchedInstance();
    WatchedInstance(const WatchedInstance &) = delete;
    WatchedInstance &operator=(const WatchedInstance &) = delete;

    [[nodiscard]] host::ObjectHandle handle() const;
    [[nodiscard]] bool wasWritten() const;

    /// In place of "PluginNewInstance".
    static host::ObjectHandle answer(const char *className);
};
