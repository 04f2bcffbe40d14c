#pragma once

// Where a processor was when a signal came.

#include <csignal>
#include <cstdint>
#include <optional>

namespace crash {

struct Registers {
    std::uintptr_t instruction;
    std::uintptr_t frame; ///< address of two words: the outer frame's address, the caller's
    /// Where a function that has only been entered returns to.
    std::optional<std::uintptr_t> caller;
};

Registers registersOf(const ucontext_t &context);

/// The word at an address that may lead nowhere.
std::optional<std::uintptr_t> wordAt(std::uintptr_t address);

} // namespace crash
