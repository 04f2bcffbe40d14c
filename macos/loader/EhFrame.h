#pragma once

#include "macos/loader/UnwindTable.h"

#include <cstdint>
#include <functional>
#include <vector>

namespace macho {

/// Writes the records as an .eh_frame section for an image that stands at `base`, with absolute
/// pointers only. `personality` gives what a personality slot of the image holds. Never empty: the
/// last word is the terminator.
std::vector<std::uint8_t>
writeEhFrame(const UnwindTable &table, std::uintptr_t base,
             const std::function<std::uintptr_t(std::uint64_t slot)> &personality);

/// Keeps an .eh_frame section known to the process's unwinder for as long as it lives.
class RegisteredFrames {
public:
    explicit RegisteredFrames(std::vector<std::uint8_t> section);
    ~RegisteredFrames();
    RegisteredFrames(const RegisteredFrames &) = delete;
    RegisteredFrames &operator=(const RegisteredFrames &) = delete;

private:
    std::vector<std::uint8_t> section_;
    bool registered_ = false;
};

} // namespace macho
