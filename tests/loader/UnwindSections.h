#pragma once

#include "tests/loader/ByteStrings.h"

#include "macos/loader/DwarfFrames.h"
#include "macos/loader/Processor.h"
#include "macos/loader/UnwindTable.h"

#include <cstdint>
#include <initializer_list>
#include <utility>
#include <vector>

/// Unwind information made by hand, for an image of this size with this much code.
constexpr std::uint64_t imageSize = 0x10000, textSize = 0x8000;

/// A page of entries as it is written: function and encoding.
using Entries = std::vector<std::pair<std::uint32_t, std::uint32_t>>;
using Words = std::vector<std::uint32_t>;

/// An __unwind_info section with one page and these parts.
struct Section {
    Words commonEncodings;
    Words personalities;
    Entries handlerTables; // function and table
    std::uint32_t end = 0x2000;
    std::uint32_t firstFunction = 0x1000;

    [[nodiscard]] ByteString withRegularPage(const Entries &entries) const {
        auto section = front();
        append<std::uint32_t>(section, 2);
        append<std::uint16_t>(section, 8);
        append(section, static_cast<std::uint16_t>(entries.size()));
        for (const auto &[function, encoding] : entries) {
            append(section, function);
            append(section, encoding);
        }
        return section;
    }

    /// Entries give the distance from the first function and the number of an encoding.
    [[nodiscard]] ByteString withCompressedPage(const Entries &entries,
                                                const Words &encodings) const {
        auto section = front();
        append<std::uint32_t>(section, 3);
        append<std::uint16_t>(section, 12);
        append(section, static_cast<std::uint16_t>(entries.size()));
        append(section, static_cast<std::uint16_t>(12 + 4 * entries.size()));
        append(section, static_cast<std::uint16_t>(encodings.size()));
        for (const auto &[distance, encoding] : entries)
            append(section, distance | encoding << 24);
        for (const auto encoding : encodings)
            append(section, encoding);
        return section;
    }

private:
    [[nodiscard]] ByteString front() const {
        ByteString section;
        const auto word = [&](std::size_t value) {
            append(section, static_cast<std::uint32_t>(value));
        };
        const auto encodings = 28, personality = encodings + count(commonEncodings),
                   index = personality + count(personalities), tables = index + 24,
                   page = tables + 2 * count(handlerTables);
        for (const int value : {1, encodings, count(commonEncodings) / 4, personality,
                                count(personalities) / 4, index, 2})
            word(static_cast<std::size_t>(value));
        for (const auto value : commonEncodings)
            word(value);
        for (const auto value : personalities)
            word(value);
        word(firstFunction);
        word(static_cast<std::size_t>(page));
        word(static_cast<std::size_t>(tables));
        word(end);
        word(0);
        word(static_cast<std::size_t>(page));
        for (const auto &[function, table] : handlerTables) {
            word(function);
            word(table);
        }
        return section;
    }

    template <class Items>
    static int count(const Items &items) {
        return static_cast<int>(items.size()) * 4;
    }
};

/// What the loader makes of an __unwind_info section.
macho::UnwindTable translate(const ByteString &section, const macho::DwarfFrames &frames = {},
                             const ByteString &text = ByteString(textSize),
                             const macho::Processor &processor = macho::Processor::x86_64);

/// The call frame instructions for: the frame address is `reg` plus `offset`, and these registers
/// are saved so many words below it.
ByteString frame(std::uint8_t reg, std::uint64_t offset,
                 std::initializer_list<std::pair<std::uint8_t, std::uint64_t>> saved);
