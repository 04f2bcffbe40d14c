#pragma once

#include "macos/loader/LoadError.h"

#include <cstdint>
#include <string>
#include <string_view>

namespace macho {

std::string hex(std::uint64_t value); // "0x2d8"

/// "bytes 0x10 to 0x20": the end is exclusive and never wraps.
std::string byteRange(std::uint64_t offset, std::uint64_t size);

/// Raises the LoadErrors of one file.
class Reporter {
public:
    explicit Reporter(std::string source) : source_(std::move(source)) {}

    [[nodiscard]] const std::string &source() const { return source_; }
    [[noreturn]] void fail(std::string_view what) const;
    /// `where` names a place in the file: a load command, a table.
    [[noreturn]] void fail(std::string_view where, std::string_view what) const;

private:
    std::string source_;
};

} // namespace macho
