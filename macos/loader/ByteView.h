#pragma once

#include <cstdint>
#include <cstring>
#include <optional>
#include <span>
#include <type_traits>

namespace macho {

using Bytes = std::span<const std::uint8_t>;

/// True when the range [offset, offset + size) lies within [0, limit), computed without overflow.
constexpr bool rangeFits(std::uint64_t offset, std::uint64_t size, std::uint64_t limit) {
    return offset <= limit && size <= limit - offset;
}

/// The little-endian record at `offset`, which need not be aligned. The caller knows that it lies
/// wholly within `bytes`.
template <class Record>
    requires std::is_trivially_copyable_v<Record>
Record recordAt(Bytes bytes, std::uint64_t offset) {
    Record record = {};
    std::memcpy(&record, bytes.data() + offset, sizeof record);
    return record;
}

/// The same where the caller does not know: nothing when it does not lie wholly within `bytes`.
template <class Record>
    requires std::is_trivially_copyable_v<Record>
std::optional<Record> readAt(Bytes bytes, std::uint64_t offset) {
    if (!rangeFits(offset, sizeof(Record), bytes.size()))
        return std::nullopt;
    return recordAt<Record>(bytes, offset);
}

} // namespace macho
