#pragma once

// Conversions between the encodings of host strings.

#include "host/language/Value.h"

#include <cstdint>
#include <string>
#include <string_view>

namespace host {

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
