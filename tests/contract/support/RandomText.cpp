#include "RandomText.h"

#include "host/language/Value.h"

#include <algorithm>
#include <stdexcept>

namespace {

// What the bytes from 0x80 on stand for.
constexpr char16_t macRoman[] =
    u"\u00C4\u00C5\u00C7\u00C9\u00D1\u00D6\u00DC\u00E1\u00E0\u00E2\u00E4\u00E3\u00E5\u00E7\u00E9"
    u"\u00E8\u00EA\u00EB\u00ED\u00EC\u00EE\u00EF\u00F1\u00F3\u00F2\u00F4\u00F6\u00F5\u00FA\u00F9"
    u"\u00FB\u00FC\u2020\u00B0\u00A2\u00A3\u00A7\u2022\u00B6\u00DF\u00AE\u00A9\u2122\u00B4\u00A8"
    u"\u2260\u00C6\u00D8\u221E\u00B1\u2264\u2265\u00A5\u00B5\u2202\u2211\u220F\u03C0\u222B\u00AA"
    u"\u00BA\u03A9\u00E6\u00F8\u00BF\u00A1\u00AC\u221A\u0192\u2248\u2206\u00AB\u00BB\u2026\u00A0"
    u"\u00C0\u00C3\u00D5\u0152\u0153\u2013\u2014\u201C\u201D\u2018\u2019\u00F7\u25CA\u00FF\u0178"
    u"\u2044\u20AC\u2039\u203A\uFB01\uFB02\u2021\u00B7\u201A\u201E\u2030\u00C2\u00CA\u00C1\u00CB"
    u"\u00C8\u00CD\u00CE\u00CF\u00CC\u00D3\u00D4\uF8FF\u00D2\u00DA\u00DB\u00D9\u0131\u02C6\u02DC"
    u"\u00AF\u02D8\u02D9\u02DA\u00B8\u02DD\u02DB\u02C7";
static_assert(std::size(macRoman) == 128 + 1);

// What the bytes 0x80 to 0x9F stand for, 0 for none; the rest is ISO Latin 1.
constexpr char16_t windowsLatin1[] = {
    0x20AC, 0,      0x201A, 0x0192, 0x201E, 0x2026, 0x2020, 0x2021, 0x02C6, 0x2030, 0x0160,
    0x2039, 0x0152, 0,      0x017D, 0,      0,      0x2018, 0x2019, 0x201C, 0x201D, 0x2022,
    0x2013, 0x2014, 0x02DC, 0x2122, 0x0161, 0x203A, 0x0153, 0,      0x017E, 0x0178};
static_assert(std::size(windowsLatin1) == 32);

char byteFor(char32_t character, std::uint32_t encoding) {
    const auto byteIn = [character](const auto &table) {
        return static_cast<char>(0x80 + (std::ranges::find(table, character) - table));
    };
    if (character < 0x80 || encoding == host::encoding::latin1)
        return static_cast<char>(character);
    if (encoding == host::encoding::macRoman)
        return byteIn(macRoman);
    return character >= 0xA0 && character <= 0xFF ? static_cast<char>(character)
                                                  : byteIn(windowsLatin1);
}

std::string utf8Of(const std::u32string &text) {
    std::string bytes;
    const auto continuation = [&bytes](char32_t bits) {
        bytes += static_cast<char>(0x80 | (bits & 0x3F));
    };
    for (const char32_t c : text) {
        if (c < 0x80) {
            bytes += static_cast<char>(c);
        } else if (c < 0x800) {
            bytes += static_cast<char>(0xC0 | (c >> 6));
            continuation(c);
        } else if (c < 0x10000) {
            bytes += static_cast<char>(0xE0 | (c >> 12));
            continuation(c >> 6);
            continuation(c);
        } else {
            bytes += static_cast<char>(0xF0 | (c >> 18));
            continuation(c >> 12);
            continuation(c >> 6);
            continuation(c);
        }
    }
    return bytes;
}

template <class Text>
std::string bytesOf(const Text &text) {
    return {reinterpret_cast<const char *>(text.data()),
            text.size() * sizeof(typename Text::value_type)};
}

} // namespace

char32_t RandomText::character(std::uint32_t encoding) {
    // Every length that UTF-8 has, all about as often.
    constexpr std::uint32_t planes[] = {0x80, 0x800, 0x10000, 0x110000};
    switch (encoding) {
    case host::encoding::ascii:
        return 1 + below(0x7F);
    case host::encoding::latin1:
        return 1 + below(0xFF);
    case host::encoding::macRoman: {
        const std::uint32_t byte = 1 + below(0xFF);
        return byte < 0x80 ? byte : macRoman[byte - 0x80];
    }
    case host::encoding::windowsLatin1: {
        const std::uint32_t byte = 1 + below(0xFF);
        const char32_t c = byte < 0x80 || byte >= 0xA0 ? byte : windowsLatin1[byte - 0x80];
        return c == 0 ? U'\u20AC' : c;
    }
    default: {
        const char32_t c = 1 + below(planes[below(4)] - 1);
        return c >= 0xD800 && c <= 0xDFFF ? U'\U0001F600' : c;
    }
    }
}

std::u32string RandomText::inEncoding(std::uint32_t encoding) {
    std::u32string text(1 + below(60), U' ');
    for (char32_t &c : text)
        c = character(encoding);
    // Core Foundation takes a mark at the start for no part of the text.
    if (text.front() == U'\uFEFF' || text.front() == U'\uFFFE')
        text.front() = U'x';
    return text;
}

std::string encoded(const std::u32string &text, std::uint32_t encoding) {
    switch (encoding) {
    case host::encoding::utf8:
        return utf8Of(text);
    case host::encoding::utf16:
        return bytesOf(utf16Of(text));
    case host::encoding::utf32:
        return bytesOf(text);
    default: {
        std::string bytes;
        for (const char32_t c : text)
            bytes += byteFor(c, encoding);
        return bytes;
    }
    }
}

std::u16string utf16Of(const std::u32string &text) {
    std::u16string units;
    for (const char32_t c : text) {
        if (c < 0x10000) {
            units += static_cast<char16_t>(c);
        } else {
            units += static_cast<char16_t>(0xD800 + ((c - 0x10000) >> 10));
            units += static_cast<char16_t>(0xDC00 + ((c - 0x10000) & 0x3FF));
        }
    }
    return units;
}

std::string bigEndianUTF32(const std::u32string &text) {
    std::string bytes;
    for (const char32_t c : text)
        for (const int shift : {24, 16, 8, 0})
            bytes += static_cast<char>((c >> shift) & 0xFF);
    return bytes;
}
