#pragma once

// The encodings of host strings, and conversions between them.

#include <cstdint>
#include <string>
#include <string_view>

namespace host {

/// Text encodings of host strings, numbered as Core Foundation numbers its string encodings.
namespace encoding {
inline constexpr std::uint32_t macRoman = 0;
inline constexpr std::uint32_t utf16 = 0x0100; ///< host byte order
inline constexpr std::uint32_t latin1 = 0x0201;
inline constexpr std::uint32_t windowsLatin1 = 0x0500;
inline constexpr std::uint32_t ascii = 0x0600;
inline constexpr std::uint32_t utf8 = 0x08000100;
inline constexpr std::uint32_t utf32 = 0x0C000100; ///< host byte order
inline constexpr std::uint32_t unknown = 0xFFFF;   ///< bytes without a declared encoding
} // namespace encoding

/// Whether the host can convert from and to this encoding (unknown included: bytes pass through).
bool isKnownEncoding(std::uint32_t encoding);
/// "UTF-8"; "unknown" for bytes without an encoding; "" for a number that names none.
std::string_view encodingName(std::uint32_t encoding);

/// Both encodings must be known ones. Nothing fails: what does not decode becomes U+FFFD, what
/// the target lacks becomes its substitution character. UTF-16 and UTF-32 are in host byte
/// order, without byte order marks.
std::string convertBytes(std::string_view bytes, std::uint32_t from, std::uint32_t to);
/// For showing: UTF-8 where the encoding is known, else the bytes themselves.
std::string toUtf8(std::string_view bytes, std::uint32_t encoding);

} // namespace host
