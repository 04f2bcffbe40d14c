#pragma once

#include "host/Host.h"
#include "host/core/Core.h"

#include <string>
#include <utility>

/// Adds a line of a test's own to the current host's trace, between the plug-in's calls.
inline void noteInTrace(std::string line) {
    if (host::Host::exists() && host::Core::current().trace.on())
        host::Core::current().trace.begin(std::move(line));
}
