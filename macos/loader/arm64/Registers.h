#pragma once

#include <cstdint>

/// The registers' numbers in DWARF. Those that are not named follow in order.
namespace macho::arm64 {
constexpr std::uint8_t x19 = 19, fp = 29, lr = 30, sp = 31, d8 = 72;
} // namespace macho::arm64
