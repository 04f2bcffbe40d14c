#pragma once

#include "macos/loader/ByteView.h"
#include "macos/loader/Messages.h"

#include <cstdint>
#include <optional>
#include <string>

namespace macho {

/// The image as the unwind tables need it: its bytes in the file and where they will stand.
struct UnwindSource {
    std::uint64_t imageSize = 0;
    Bytes table;                  // the section __unwind_info
    std::uint64_t textOffset = 0; // of the segment that holds the functions
    Bytes text;
};

/// A function of an image with the compact encoding that says how to unwind it.
class CompactFunction {
public:
    CompactFunction(const UnwindSource &source, std::uint64_t start, std::uint32_t encoding,
                    const Reporter &reporter)
        : source_(source), start_(start), encoding_(encoding), reporter_(reporter) {}

    [[nodiscard]] std::uint32_t encoding() const { return encoding_; }
    /// `count` bits of the encoding from bit `first` on.
    [[nodiscard]] std::uint32_t bits(unsigned first, unsigned count) const {
        return encoding_ >> first & ((1U << count) - 1);
    }
    [[nodiscard]] std::uint32_t mode() const { return bits(24, 4); }

    /// The 32 bits that stand so many bytes behind its start; nothing when they are no code.
    [[nodiscard]] std::optional<std::uint32_t> wordAt(std::uint64_t distance) const {
        const auto at = start_ + distance;
        if (at < source_.textOffset)
            return std::nullopt;
        return readAt<std::uint32_t>(source_.text, at - source_.textOffset);
    }

    /// Raises a LoadError; `what` continues "encoding 0x1 of the function at 0x1000".
    [[noreturn]] void fail(const std::string &what) const {
        reporter_.fail("section __TEXT,__unwind_info", "encoding " + hex(encoding_) +
                                                           " of the function at " + hex(start_) +
                                                           " " + what);
    }

private:
    const UnwindSource &source_;
    std::uint64_t start_;
    std::uint32_t encoding_;
    const Reporter &reporter_;
};

} // namespace macho
