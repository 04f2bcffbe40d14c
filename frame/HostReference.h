#pragma once

#include "frame/HostServices.h"

#include <utility>

// Release a reference while an exception passes: what the host throws meanwhile is dropped, and the
// first exception goes on.
void unlockWhileUnwinding(REALobjectStruct *object) noexcept;
void unlockWhileUnwinding(REALstringStruct *string) noexcept;

inline void unlock(REALobjectStruct *object) {
    REALUnlockObject(object);
}
inline void unlock(REALstringStruct *string) {
    REALUnlockString(string);
}

// One reference to a host object or host string, or null. It is released at the latest when an
// exception passes. Otherwise its owner says when, by reset or handOver: a failing host service is
// then the caller's to see, as everywhere.
template <class Handle>
class HostReference {
public:
    explicit HostReference(Handle *handle) noexcept : handle_(handle) {}
    ~HostReference() {
        if (handle_ != nullptr) [[unlikely]]
            unlockWhileUnwinding(handle_);
    }
    HostReference(const HostReference &) = delete;
    HostReference &operator=(const HostReference &) = delete;

    [[nodiscard]] Handle *get() const noexcept { return handle_; }
    explicit operator bool() const noexcept { return handle_ != nullptr; }

    // Gives the reference to the caller.
    [[nodiscard]] Handle *handOver() noexcept { return std::exchange(handle_, nullptr); }

    // Releases the reference.
    void reset() {
        if (Handle *handle = handOver())
            unlock(handle);
    }

private:
    Handle *handle_;
};

using ObjectReference = HostReference<REALobjectStruct>;
using StringReference = HostReference<REALstringStruct>;
