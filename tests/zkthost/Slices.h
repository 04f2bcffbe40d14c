#pragma once

// What a Mach-O file has for one processor.

#include "host/processor/Processor.h"

#include <cstdint>
#include <stdexcept>
#include <string>
#include <string_view>

/// As Mach-O files number processors.
struct MachOProcessor {
    std::string_view name;
    std::uint32_t number;
    std::uint32_t kind; ///< every one of that number
};
constexpr MachOProcessor intel{"x86_64", 0x01000007, 3};
constexpr MachOProcessor appleSilicon{"arm64", 0x0100000C, 0};
/// The one that this program is for, and another.
constexpr MachOProcessor ownProcessor = processor::name == intel.name ? intel : appleSilicon;
constexpr MachOProcessor otherProcessor = processor::name == intel.name ? appleSilicon : intel;

/// Of the bytes of a Mach-O file for several processors, those for one.
inline std::string sliceOf(const std::string &universal,
                           const MachOProcessor &processor = ownProcessor) {
    const auto word = [&](std::size_t place) {
        std::uint32_t number = 0;
        for (std::size_t i = 0; i < sizeof number; ++i)
            number = number << 8 | static_cast<unsigned char>(universal.at(place + i));
        return number;
    };
    // Behind a header of two words stand five for each processor: it, its kind, place, size,
    // alignment.
    for (std::size_t entry = 8; entry < 8 + std::size_t{word(4)} * 20; entry += 20)
        if (word(entry) == processor.number)
            return universal.substr(word(entry + 8), word(entry + 12));
    throw std::runtime_error("no slice for " + std::string(processor.name));
}
