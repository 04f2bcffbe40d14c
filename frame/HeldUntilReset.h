#pragma once

#include "frame/HostServices.h"

#include <utility>

/// Something held, or null, until reset gives it back or handOver gives it away. Its owner says
/// when: a failure to give it back is then the caller's to see, like that of any other call. What
/// is still held at the end of the scope, as when an exception passes, is given back quietly: what
/// is thrown meanwhile is dropped, and the first exception goes on.
template <class Pointer, auto &giveBack>
class HeldUntilReset {
public:
    explicit HeldUntilReset(Pointer held) noexcept : held_(held) {}
    ~HeldUntilReset() {
        if (held_ != nullptr) [[unlikely]]
            giveBackQuietly();
    }
    HeldUntilReset(const HeldUntilReset &) = delete;
    HeldUntilReset &operator=(const HeldUntilReset &) = delete;

    [[nodiscard]] Pointer get() const noexcept { return held_; }
    explicit operator bool() const noexcept { return held_ != nullptr; }

    // Gives it to the caller.
    [[nodiscard]] Pointer handOver() noexcept { return std::exchange(held_, nullptr); }

    // Gives it back.
    void reset() {
        if (Pointer held = handOver())
            giveBack(held);
    }

private:
    void giveBackQuietly() noexcept;

    Pointer held_;
};

/// Calls the function and drops what it throws, be it a C++ exception or Cocoa's.
void callQuietly(void (*function)(const void *), const void *argument) noexcept;

template <class Pointer, auto &giveBack>
void HeldUntilReset<Pointer, giveBack>::giveBackQuietly() noexcept {
    callQuietly(
        [](const void *self) { giveBack(static_cast<const HeldUntilReset *>(self)->held_); }, this);
}

/// One reference to a host object or host string.
using ObjectReference = HeldUntilReset<REALobjectStruct *, REALUnlockObject>;
using StringReference = HeldUntilReset<REALstringStruct *, REALUnlockString>;
