// Text to and from bytes, as Core Foundation converts it.

#pragma once

#include <CoreFoundation/CFString.h>

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>

namespace standin {

/// The UTF-16 units of the bytes. Nothing when the bytes are not valid in the encoding, or the
/// encoding is unknown and they are more than ASCII. UTF-16 and UTF-32 without an order of their
/// own start with a byte order mark or are big-endian; only UTF-16 that is not `external` is in
/// host order.
std::optional<std::u16string> decode(std::span<const std::uint8_t> bytes, CFStringEncoding encoding,
                                     bool external);

/// Writes the bytes of the units and says how many they are. Nothing when they do not fit or the
/// text has no such form: a lone surrogate, a character that the encoding lacks, an unknown
/// encoding.
std::optional<std::size_t> encode(std::u16string_view units, CFStringEncoding encoding,
                                  std::span<char> room);

} // namespace standin
