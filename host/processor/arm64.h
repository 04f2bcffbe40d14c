#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <string_view>

namespace processor {

inline constexpr std::string_view name = "arm64"; ///< in the words of compilers

// The registers that the calling convention passes arguments in. Linux and macOS agree on these,
// not on what does not fit into them: Apple packs it.
inline constexpr std::size_t integerRegisters = 8;
inline constexpr std::size_t realRegisters = 8;

// Of shared objects: EM_AARCH64, and the relocations that put a symbol's address into a word,
// R_AARCH64_ABS64, R_AARCH64_GLOB_DAT and R_AARCH64_JUMP_SLOT.
inline constexpr std::uint16_t elfMachine = 183;
inline constexpr std::array<std::uint32_t, 3> elfAddresses{257, 1025, 1026};

} // namespace processor
