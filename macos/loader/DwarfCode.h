#pragma once

#include <bit>
#include <cstdint>
#include <cstring>
#include <vector>

namespace macho {

/// The DWARF call frame instructions that unwind records are made of.
namespace dwarf {
constexpr std::uint8_t nop = 0x00, setLocation = 0x01, savedAtOffsetExtended = 0x05,
                       defineFrame = 0x0c, savedAtOffset = 0x80;
constexpr std::uint8_t absolutePointer = 0x00;
} // namespace dwarf

/// Appends DWARF data to a byte string.
class DwarfCode {
public:
    std::vector<std::uint8_t> bytes;

    template <class Integer>
    void fixed(Integer value) {
        const auto at = bytes.size();
        bytes.resize(at + sizeof value);
        std::memcpy(bytes.data() + at, &value, sizeof value);
    }

    void unsignedNumber(std::uint64_t value) {
        do {
            const auto low = static_cast<std::uint8_t>(value & 0x7f);
            value >>= 7;
            bytes.push_back(value != 0 ? low | 0x80 : low);
        } while (value != 0);
    }

    void signedNumber(std::int64_t value) {
        for (bool more = true; more;) {
            const auto low = static_cast<std::uint8_t>(value & 0x7f);
            value >>= 7;
            more = (value != 0 || (low & 0x40)) && (value != -1 || !(low & 0x40));
            bytes.push_back(more ? low | 0x80 : low);
        }
    }

    void append(const std::vector<std::uint8_t> &more) {
        bytes.insert(bytes.end(), more.begin(), more.end());
    }

    /// The canonical frame address is `reg` plus `offset`.
    void frame(std::uint8_t reg, std::uint64_t offset) {
        fixed(dwarf::defineFrame);
        unsignedNumber(reg);
        unsignedNumber(offset);
    }

    /// `reg` was saved `words` words below the canonical frame address.
    void saved(std::uint8_t reg, std::uint64_t words) {
        if (reg < 0x40) { // as many as the short form has room for
            fixed(static_cast<std::uint8_t>(dwarf::savedAtOffset | reg));
        } else {
            fixed(dwarf::savedAtOffsetExtended);
            unsignedNumber(reg);
        }
        unsignedNumber(words);
    }
};

} // namespace macho
