#pragma once

#include "host/Host.h"

#include <string>
#include <utility>

/// Adds a line of a test's own to the current host's trace, between the plug-in's calls.
inline void noteInTrace(std::string line) {
    if (host::Host::exists() && host::Host::current().tracer().on())
        host::Host::current().tracer().begin(std::move(line));
}
