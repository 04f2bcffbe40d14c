#pragma once

#include "host/core/PluginRecords.h"

#include <utility>

namespace host {

/// Owns one reference to a host object or a host string, or nothing (nil). Copying adds a
/// reference. Must not outlive its host. Dropping the last reference to an object runs its
/// destructors; a foreign exception thrown there becomes a violation (use Host::release to see
/// it).
template <typename Handle>
class Reference {
public:
    Reference() = default;
    Reference(const Reference &other);
    Reference(Reference &&other) noexcept : handle_(std::exchange(other.handle_, nullptr)) {}
    Reference &operator=(Reference other) noexcept {
        std::swap(handle_, other.handle_);
        return *this;
    }
    ~Reference();

    /// Takes over a reference that the caller owns.
    static Reference adopt(Handle handle);
    /// Adds a reference of its own.
    static Reference share(Handle handle);

    /// Borrowed; valid as long as this owner lives.
    [[nodiscard]] Handle handle() const { return handle_; }
    operator Handle() const { return handle_; }
    /// Gives the reference up to the caller.
    [[nodiscard]] Handle release();
    /// What the destructor does, but exceptions pass.
    void drop();

private:
    Handle handle_ = nullptr;
};

using ObjectRef = Reference<ObjectHandle>;
using StringRef = Reference<StringHandle>;

extern template class Reference<ObjectHandle>;
extern template class Reference<StringHandle>;

} // namespace host
