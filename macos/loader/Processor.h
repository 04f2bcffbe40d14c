#pragma once

#include "macos/loader/CompactFunction.h"
#include "macos/loader/UnwindTable.h"

#include <array>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace macho {

/// What the loader has to know about a kind of processor to read the images that are made for it.
/// They can be read and checked everywhere; they run only on their own kind.
struct Processor {
    std::string_view name; // in the words of compilers
    std::uint32_t cpuType; // in a file's header
    std::array<std::uint32_t, 2> cpuSubtypes;
    std::uint64_t pageSize; // in bytes: segments begin at such places
    /// The mode of the compact encodings that leave a function to its DWARF record.
    std::uint32_t dwarfMode;
    /// The common entry of all functions: what holds at their first instructions.
    UnwindCommon (*atEntry)();
    /// The call frame instructions that a compact encoding of another mode stands for. Reports an
    /// encoding that stands for none.
    std::vector<std::uint8_t> (*frameInstructions)(const CompactFunction &function);

    static const Processor x86_64, arm64;

    /// The one that this program was built for.
    static const Processor &ofThisProgram();

    [[nodiscard]] bool runs(std::uint32_t type, std::uint32_t subtype) const;

    /// Says what was wanted of an image for another one: "only arm64 images run here".
    [[nodiscard]] std::string wanted() const;
};

} // namespace macho
