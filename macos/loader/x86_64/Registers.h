#pragma once

#include <cstdint>

/// The registers' numbers in DWARF.
namespace macho::x86_64 {
constexpr std::uint8_t rbx = 3, rbp = 6, rsp = 7, r12 = 12, r13 = 13, r14 = 14, r15 = 15, rip = 16;
} // namespace macho::x86_64
