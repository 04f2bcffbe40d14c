#include "host/zkthost/Columns.h"

#include <unicode/uchar.h>
#include <unicode/utf8.h>

namespace zkthost {

namespace {

/// Calls use(character, its bytes) for each; U_SENTINEL for bytes that are no UTF-8.
template <typename Use>
void forEachCharacter(std::string_view utf8, Use use) {
    const auto size = static_cast<std::int32_t>(utf8.size());
    for (std::int32_t place = 0; place < size;) {
        const std::int32_t start = place;
        UChar32 character = U_SENTINEL;
        // NOLINTNEXTLINE(bugprone-inc-dec-in-conditions): ICU's macro
        U8_NEXT(utf8.data(), place, size, character);
        use(character,
            utf8.substr(static_cast<std::size_t>(start), static_cast<std::size_t>(place - start)));
    }
}

bool leavesTheLine(UChar32 character) {
    constexpr std::uint32_t mask = U_GC_CC_MASK | U_GC_ZL_MASK | U_GC_ZP_MASK;
    return (U_GET_GC_MASK(character) & mask) != 0;
}

std::size_t widthOf(UChar32 character) {
    constexpr std::uint32_t noWidth = U_GC_MN_MASK | U_GC_ME_MASK | U_GC_CF_MASK;
    if ((U_GET_GC_MASK(character) & noWidth) != 0)
        return 0;
    const int width = u_getIntPropertyValue(character, UCHAR_EAST_ASIAN_WIDTH);
    return width == U_EA_WIDE || width == U_EA_FULLWIDTH ? 2 : 1;
}

} // namespace

std::string printable(std::string_view utf8) {
    std::string text;
    forEachCharacter(utf8, [&](UChar32 character, std::string_view bytes) {
        text += character == U_SENTINEL    ? "\xEF\xBF\xBD" // U+FFFD
                : leavesTheLine(character) ? " "
                                           : bytes;
    });
    return text;
}

std::size_t displayWidth(std::string_view utf8) {
    std::size_t width = 0;
    forEachCharacter(utf8, [&](UChar32 character, std::string_view) {
        width += character == U_SENTINEL ? 1 : widthOf(character);
    });
    return width;
}

std::vector<std::string> folded(std::string_view utf8, std::size_t width) {
    std::vector<std::string> lines{""};
    std::size_t used = 0;
    forEachCharacter(utf8, [&](UChar32 character, std::string_view bytes) {
        const std::size_t own = character == U_SENTINEL ? 1 : widthOf(character);
        if (used + own > width && used > 0) {
            lines.emplace_back();
            used = 0;
        }
        lines.back() += bytes;
        used += own;
    });
    return lines;
}

std::string padded(std::string text, std::size_t width) {
    const std::size_t own = displayWidth(text);
    return own < width ? text.append(width - own, ' ') : text;
}

} // namespace zkthost
