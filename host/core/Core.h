#pragma once

// What the parts of the host share. They take it instead of the Host that owns them all.

#include "host/core/HostOptions.h"
#include "host/core/Trace.h"

#include <cstddef>
#include <cstdint>

namespace host {

class ClassTable;
class Heap;
class PendingException;
class Services;

struct Core {
    HostOptions options;
    Heap &heap;
    ClassTable &classes;
    PendingException &pending;
    Services &services;
    Trace trace = {};
    std::size_t calls = 0;             ///< host services and host methods that plug-ins called
    std::int32_t interfaceVersion = 0; ///< 0 before RegisterPluginVersion

    /// Of the one host: plug-ins reach the host through plain C functions. Throws UsageError when
    /// there is none.
    static Core &current();
    /// Null when there is none.
    static Core *currentIfAny();
    static void setCurrent(Core *core);
};

} // namespace host
