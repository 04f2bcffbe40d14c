#include "host/program/Characters.h"

#include <unicode/locid.h>
#include <unicode/unistr.h>

#include <algorithm>

namespace host::program {

namespace {

bool beginsCharacter(char c) {
    return (static_cast<unsigned char>(c) & 0xC0) != 0x80;
}

std::string utf8Of(const icu::UnicodeString &text) {
    std::string result;
    return text.toUTF8String(result);
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
    return utf8Of(icu::UnicodeString(static_cast<UChar32>(code)));
}

std::string uppercase(const std::string &utf8) {
    return utf8Of(icu::UnicodeString::fromUTF8(utf8).toUpper(icu::Locale::getRoot()));
}

std::string lowercase(const std::string &utf8) {
    return utf8Of(icu::UnicodeString::fromUTF8(utf8).toLower(icu::Locale::getRoot()));
}

} // namespace host::program
