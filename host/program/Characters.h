#pragma once

// Texts in UTF-8 as programs count them: in characters. Bytes that are no UTF-8 do no harm.

#include <cstddef>
#include <string>
#include <string_view>

namespace host::program {

std::size_t characterCount(std::string_view utf8);
/// Where the character begins; the end of a text that has fewer.
std::size_t byteOf(std::string_view utf8, std::size_t character);
/// As many as there are, from the place on (the first is 0).
std::string characters(std::string_view utf8, std::size_t first, std::size_t count);

std::string character(char32_t code);
std::string uppercase(const std::string &utf8);
std::string lowercase(const std::string &utf8);

} // namespace host::program
