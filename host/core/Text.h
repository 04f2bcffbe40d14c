#pragma once

// Words and numbers as all of the host's lines and messages write them.

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace host {

/// "abc" quoted and escaped as in the trace (host/core/Trace.h).
std::string inQuotes(std::string_view bytes);
/// The shortest decimal that reads back as the same double.
std::string shortest(double number);
/// The same of a number that was a Single.
std::string shortestSingle(double number);
/// The number that the whole text is, in decimal; nothing when it is none, or none that a double
/// holds. (std::from_chars reads integers only where the C++ library is older than macOS 26's.)
std::optional<double> realNumber(const std::string &text);
/// So many digits of the number's lower end, in capitals.
std::string hexadecimal(std::uint64_t number, int digits);
/// "1 call", "2 calls"
std::string counted(std::size_t count, std::string_view one, std::string_view many);

} // namespace host
