#include "macos/loader/Messages.h"

#include "llvm/ADT/StringExtras.h"

#include <limits>

namespace macho {

std::string hex(std::uint64_t value) {
    return "0x" + llvm::utohexstr(value, /*LowerCase=*/true);
}

std::string byteRange(std::uint64_t offset, std::uint64_t size) {
    constexpr auto last = std::numeric_limits<std::uint64_t>::max();
    return "bytes " + hex(offset) + " to " + hex(size > last - offset ? last : offset + size);
}

void Reporter::fail(std::string_view what) const {
    throw LoadError(source_ + ": " + std::string(what));
}

void Reporter::fail(std::string_view where, std::string_view what) const {
    throw LoadError(source_ + ": " + std::string(where) + ": " + std::string(what));
}

} // namespace macho
