#pragma once

// Code addresses in words. For a process that is about to end: allocates, and may itself crash
// where memory is damaged.

#include <csignal>
#include <cstdint>
#include <filesystem>
#include <string>
#include <vector>

namespace crash {

struct LoadedImage {
    std::filesystem::path file;
    std::uintptr_t base;
    std::size_t size;
};

/// Addresses of instructions, from the one that the context stands at outwards; those of callers
/// lie within the calling instruction.
std::vector<std::uintptr_t> backtrace(const ucontext_t &context);

/// "NAME+0xOFFSET: function (file:line)". Where the line comes from a function that was inlined
/// there, "(its file:line, from file:line)".
std::string placeInWords(std::uintptr_t address, const std::vector<LoadedImage> &images);

} // namespace crash
