#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <string_view>

namespace processor {

inline constexpr std::string_view name = "x86_64"; ///< in the words of compilers

// The registers that the calling convention passes arguments in.
inline constexpr std::size_t integerRegisters = 6;
inline constexpr std::size_t realRegisters = 8;

// Of shared objects: EM_X86_64, and the relocations that put a symbol's address into a word,
// R_X86_64_64, R_X86_64_GLOB_DAT and R_X86_64_JUMP_SLOT.
inline constexpr std::uint16_t elfMachine = 62;
inline constexpr std::array<std::uint32_t, 3> elfAddresses{1, 6, 7};

} // namespace processor
