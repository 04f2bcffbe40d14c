#pragma once

#include <cstdint>
#include <vector>

namespace macho {

/// What many functions share: the part of a DWARF unwind record that stands in its common entry.
struct UnwindCommon {
    std::uint64_t codeAlignment = 1;
    std::int64_t dataAlignment = -8;
    std::uint64_t returnAddressRegister = 0;
    bool signalFrame = false;
    std::vector<std::uint8_t> instructions;

    bool operator==(const UnwindCommon &) const = default;
};

/// How to unwind the code in [start, end). Offsets are from the image's header.
struct UnwindRecord {
    std::uint64_t start = 0;
    std::uint64_t end = 0;
    std::uint64_t personalitySlot = 0; // holds the personality's address once bound; 0: none
    std::uint64_t languageData = 0;    // where the handler table is; 0: none
    std::size_t common = 0;            // in UnwindTable::commons
    std::vector<std::uint8_t> instructions;
};

struct UnwindTable {
    std::vector<UnwindCommon> commons;
    std::vector<UnwindRecord> records;
};

} // namespace macho
