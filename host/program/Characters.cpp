#include "host/program/Characters.h"

#include <unicode/ucasemap.h>
#include <unicode/utf8.h>

#include <algorithm>
#include <array>
#include <memory>
#include <stdexcept>

namespace host::program {

namespace {

bool beginsCharacter(char c) {
    return (static_cast<unsigned char>(c) & 0xC0) != 0x80;
}

/// One of ICU's ways to write a text in other letters, for no language in particular.
using Mapping = decltype(&ucasemap_utf8ToUpper);

std::string mapped(const std::string &utf8, Mapping mapping) {
    UErrorCode status = U_ZERO_ERROR;
    const std::unique_ptr<UCaseMap, decltype(&ucasemap_close)> letters(
        ucasemap_open("", U_FOLD_CASE_DEFAULT, &status), &ucasemap_close);
    // No character becomes longer than three times its bytes.
    std::string result(3 * utf8.size(), '\0');
    const std::int32_t size =
        mapping(letters.get(), result.data(), static_cast<std::int32_t>(result.size()), utf8.data(),
                static_cast<std::int32_t>(utf8.size()), &status);
    if (U_FAILURE(status))
        throw std::runtime_error(std::string("ICU cannot map letters: ") + u_errorName(status));
    result.resize(static_cast<std::size_t>(size));
    return result;
}

} // namespace

std::size_t characterCount(std::string_view utf8) {
    return static_cast<std::size_t>(std::ranges::count_if(utf8, beginsCharacter));
}

std::size_t byteOf(std::string_view utf8, std::size_t character) {
    std::size_t byte = 0;
    for (; byte < utf8.size(); ++byte)
        if (beginsCharacter(utf8[byte]) && character-- == 0)
            break;
    return byte;
}

std::string characters(std::string_view utf8, std::size_t first, std::size_t count) {
    const std::string_view rest = utf8.substr(byteOf(utf8, first));
    return std::string(rest.substr(0, byteOf(rest, count)));
}

std::string character(char32_t code) {
    std::array<char, U8_MAX_LENGTH> utf8{};
    std::int32_t size = 0;
    UBool isNone = 0;
    U8_APPEND(utf8.data(), size, U8_MAX_LENGTH, static_cast<UChar32>(code), isNone);
    return isNone != 0 ? "\xEF\xBF\xBD" : std::string(utf8.data(), static_cast<std::size_t>(size));
}

std::string uppercase(const std::string &utf8) {
    return mapped(utf8, &ucasemap_utf8ToUpper);
}

std::string lowercase(const std::string &utf8) {
    return mapped(utf8, &ucasemap_utf8ToLower);
}

} // namespace host::program
