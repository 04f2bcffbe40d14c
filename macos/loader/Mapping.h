#pragma once

#include "macos/loader/ImagePlan.h"

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <span>

namespace macho {

/// The memory of one image: its segments at one free place of the address space, readable and
/// writable until `protect`.
class Mapping {
public:
    /// Maps the segments and copies their contents. Throws LoadError when there is no memory.
    explicit Mapping(const ImagePlan &plan);
    ~Mapping();
    Mapping(const Mapping &) = delete;
    Mapping &operator=(const Mapping &) = delete;

    [[nodiscard]] std::uintptr_t base() const { return reinterpret_cast<std::uintptr_t>(memory_); }
    [[nodiscard]] std::size_t size() const { return size_; }

    /// The pointer-sized value at an offset that the plan names; it need not be aligned.
    [[nodiscard]] std::uintptr_t pointerAt(std::uint64_t offset) const {
        std::uintptr_t value = 0;
        std::memcpy(&value, memory_ + offset, sizeof value);
        return value;
    }
    void setPointer(std::uint64_t offset, std::uintptr_t value) {
        std::memcpy(memory_ + offset, &value, sizeof value);
    }

    void rebase(std::span<const Rebase> rebases);

    /// Gives every segment the access it asks for; from then on nothing is writable and executable.
    void protect(const ImagePlan &plan);

private:
    void setAccess(const ImagePlan &plan, const Segment &segment, int access);

    std::byte *memory_ = nullptr;
    std::size_t size_ = 0;
};

} // namespace macho
