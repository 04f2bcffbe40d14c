#pragma once

#include "host/Host.h"

#include <string>
#include <string_view>

/// The Linux object in the reference host, for the life of a fuzzing process.
struct FuzzedPlugin {
    host::Host host{{.tracing = false, .quarantineLimit = 64}};
    host::Image &image;

    FuzzedPlugin();

    /// A function or variable of the image, by its demangled name.
    template <class Symbol>
    Symbol *symbol(std::string_view name) {
        return reinterpret_cast<Symbol *>(find(name));
    }

    /// After each input: nothing is live that was not before, and the host has nothing to complain
    /// of.
    void requireCleanHost(std::size_t liveObjects = 0);

private:
    void *find(std::string_view name);
};

FuzzedPlugin &plugin();

/// Ends the process with a message, for the fuzzer to keep the input.
void require(bool condition, const std::string &message);
