// Ways to end the process.

#include "Plugin.h"

#include <cstdlib>

namespace {

// What the optimiser must not see through.
char *volatile nothing = nullptr;
void (*volatile noFunction)() = nullptr;

[[gnu::noinline]] void storeTo(char *address) {
    *address = 1; // the store
}

void storedToNothing(Plugin &plugin) {
    plugin.setMethod("act", [](ObjectHandle) { storeTo(nothing + 8); });
}

void storedToNoAddress(Plugin &plugin) {
    plugin.setMethod("act", [](ObjectHandle) { storeTo(nothing + 0x7000000000000000); });
}

void storedToNothingBySetter(Plugin &plugin) {
    plugin.properties[0].setter = reinterpret_cast<void *>(
        +[](ObjectHandle, std::int64_t, std::int64_t) { storeTo(nothing + 8); });
}

void storedToNothingByConstructor(Plugin &plugin) {
    plugin.type.constructor = [](ObjectHandle) { storeTo(nothing + 8); };
}

void storedToNothingByDestructor(Plugin &plugin) {
    plugin.type.destructor = [](ObjectHandle) { storeTo(nothing + 8); };
}

void storedToNothingByEntryPoint(Plugin &) {
    storeTo(nothing + 8);
}

void storedAfterOverRelease(Plugin &plugin) {
    plugin.setMethod("act", [](ObjectHandle self) {
        unlockObject(self);
        storeTo(nothing + 8);
    });
}

[[gnu::noinline]] void callNothing() {
    noFunction();
    nothing = nullptr; // no tail call
}

void jumpedToNothing(Plugin &plugin) {
    plugin.setMethod("act", [](ObjectHandle) { callNothing(); });
}

// NOLINTNEXTLINE(misc-no-recursion): that is the fault.
[[gnu::noinline]] int descend(int depth) {
    volatile char room[4096];
    room[0] = static_cast<char>(depth);
    return depth < 0 ? 0 : descend(depth + 1) + room[0];
}

void recursedForEver(Plugin &plugin) {
    plugin.setMethod("act", [](ObjectHandle) { descend(0); });
}

[[gnu::noinline]] void giveUp() {
    std::abort();
}

void aborted(Plugin &plugin) {
    plugin.setMethod("act", [](ObjectHandle) { giveUp(); });
}

[[gnu::noinline]] void measure(const char *text) {
    nothing = nothing + std::strlen(text);
}

void crashedInTheSystem(Plugin &plugin) {
    plugin.setMethod("act", [](ObjectHandle) { measure(nothing + 16); });
}

constexpr Fault faults[] = {
    {"storedToNothing", storedToNothing},
    {"storedToNoAddress", storedToNoAddress},
    {"storedToNothingBySetter", storedToNothingBySetter},
    {"storedToNothingByConstructor", storedToNothingByConstructor},
    {"storedToNothingByDestructor", storedToNothingByDestructor},
    {"storedToNothingByEntryPoint", storedToNothingByEntryPoint},
    {"storedAfterOverRelease", storedAfterOverRelease},
    {"jumpedToNothing", jumpedToNothing},
    {"recursedForEver", recursedForEver},
    {"aborted", aborted},
    {"crashedInTheSystem", crashedInTheSystem},
};

} // namespace

std::span<const Fault> crashFaults() {
    return faults;
}
