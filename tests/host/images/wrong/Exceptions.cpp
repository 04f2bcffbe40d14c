// Exceptions of C++ that leave the plug-in.

#include "Plugin.h"

#include <exception>

namespace {

class Thrown : public std::exception {
public:
    [[nodiscard]] const char *what() const noexcept override { return "not caught at home"; }
};

void thrownByEntryPoint(Plugin &) {
    throw Thrown();
}

void thrownByConstructor(Plugin &plugin) {
    plugin.type.constructor = [](ObjectHandle) { throw Thrown(); };
}

void thrownByMethod(Plugin &plugin) {
    plugin.setMethod("act", [](ObjectHandle) { throw Thrown(); });
}

void thrownAfterOverRelease(Plugin &plugin) {
    plugin.setMethod("act", [](ObjectHandle self) {
        unlockObject(self);
        throw Thrown();
    });
}

void thrownByDestructor(Plugin &plugin) {
    plugin.type.destructor = [](ObjectHandle) { throw Thrown(); };
}

constexpr Fault faults[] = {
    {"thrownByEntryPoint", thrownByEntryPoint}, {"thrownByConstructor", thrownByConstructor},
    {"thrownByMethod", thrownByMethod},         {"thrownAfterOverRelease", thrownAfterOverRelease},
    {"thrownByDestructor", thrownByDestructor},
};

} // namespace

std::span<const Fault> exceptionFaults() {
    return faults;
}
