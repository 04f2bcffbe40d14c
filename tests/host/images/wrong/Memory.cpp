// Writes outside of instance data, all inside memory that the host set aside for them.

#include "Plugin.h"

namespace {

void writtenBehindData(Plugin &plugin) {
    plugin.setMethod("act", [](ObjectHandle self) { dataOf(self)[16] = 0; });
}

void writtenBeforeData(Plugin &plugin) {
    plugin.setMethod("act", [](ObjectHandle self) { dataOf(self)[-1] = 0; });
}

void writtenOverHeader(Plugin &plugin) {
    plugin.type.constructor = [](ObjectHandle self) {
        std::memset(static_cast<void *>(self), 0, host::objectHeaderSize);
    };
}

void writtenAfterDestruction(Plugin &plugin) {
    plugin.setMethod("act", [](ObjectHandle) {
        const ObjectHandle other = newInstance("WrongZKT");
        char *const kept = dataOf(other);
        unlockObject(other);
        *kept = 1;
    });
}

constexpr Fault faults[] = {
    {"writtenBehindData", writtenBehindData},
    {"writtenBeforeData", writtenBeforeData},
    {"writtenOverHeader", writtenOverHeader},
    {"writtenAfterDestruction", writtenAfterDestruction},
};

} // namespace

std::span<const Fault> memoryFaults() {
    return faults;
}
