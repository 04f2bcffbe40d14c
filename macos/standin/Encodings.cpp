#include "Encodings.h"

#include <unicode/ucnv.h>
#include <unicode/ustring.h>
#include <unicode/utf16.h>
#include <unicode/utf8.h>

#include <algorithm>
#include <array>
#include <bit>
#include <cstring>
#include <memory>

namespace standin {
namespace {

static_assert(std::endian::native == std::endian::little);

using Converter = std::unique_ptr<UConverter, decltype(&ucnv_close)>;

// Encodings that ICU converts, by its name for them.
struct TableEncoding {
    CFStringEncoding encoding;
    const char *name;
};
constexpr TableEncoding tableEncodings[] = {
    {.encoding = kCFStringEncodingMacRoman, .name = "macintosh"},
    {.encoding = 0x0202, .name = "ISO-8859-2"},
    {.encoding = 0x0205, .name = "ISO-8859-5"},
    {.encoding = 0x0207, .name = "ISO-8859-7"},
    {.encoding = 0x0209, .name = "ISO-8859-9"},
    {.encoding = kCFStringEncodingWindowsLatin1, .name = "windows-1252"},
    {.encoding = 0x0501, .name = "windows-1250"},
    {.encoding = 0x0502, .name = "windows-1251"},
    {.encoding = 0x0632, .name = "GB18030"},
    {.encoding = 0x0920, .name = "EUC-JP"},
    {.encoding = 0x0A01, .name = "Shift_JIS"},
    {.encoding = 0x0A02, .name = "KOI8-R"},
    {.encoding = 0x0A03, .name = "Big5"},
};

// Which numbers Core Foundation takes for supersets of ASCII, whether it has a converter for them
// or not. The second byte of a number is its family.
bool isSupersetOfAscii(CFStringEncoding encoding) {
    constexpr CFStringEncoding notByThemselves[] = {
        0x0001, 0x0004, 0x0005, 0x0021, 0x0022, 0x0098, // Mac OS: of another script, or symbols
        0x0206,                                         // ISO 8859-6, Arabic
        0x0A01, 0x0A05, 0x0A10,                         // Shift-JIS, HZ, UTF-7 of IMAP
        0x0BFF,                                         // non-lossy ASCII
    };
    constexpr CFStringEncoding lastFamily = 0x0B00;
    const CFStringEncoding family = encoding & 0xFF00;
    switch (family) {
    case 0x0100: // Unicode
        return encoding == kCFStringEncodingUTF8;
    case 0x0600: // national standards
        return encoding == kCFStringEncodingASCII;
    case 0x0800: // ISO 2022
        return false;
    default:
        return family <= lastFamily &&
               std::ranges::find(notByThemselves, encoding) == std::end(notByThemselves);
    }
}

bool isAscii(std::span<const std::uint8_t> bytes) {
    return std::ranges::all_of(bytes, [](std::uint8_t byte) { return byte < 0x80; });
}

// A converter that stops at what it cannot convert; null for an encoding that is not in the table.
Converter openConverter(CFStringEncoding encoding) {
    const auto row = std::ranges::find(tableEncodings, encoding, &TableEncoding::encoding);
    UErrorCode status = U_ZERO_ERROR;
    Converter converter(row == std::end(tableEncodings) ? nullptr : ucnv_open(row->name, &status),
                        &ucnv_close);
    if (converter) {
        ucnv_setToUCallBack(converter.get(), UCNV_TO_U_CALLBACK_STOP, nullptr, nullptr, nullptr,
                            &status);
        ucnv_setFromUCallBack(converter.get(), UCNV_FROM_U_CALLBACK_STOP, nullptr, nullptr, nullptr,
                              &status);
        ucnv_setFallback(converter.get(), 0);
    }
    return U_SUCCESS(status) ? std::move(converter) : Converter(nullptr, &ucnv_close);
}

// ICU takes the five holes of Windows Latin 1 for control characters, Core Foundation refuses them.
bool hasHole(std::span<const std::uint8_t> bytes) {
    constexpr std::uint8_t holes[] = {0x81, 0x8D, 0x8F, 0x90, 0x9D};
    return std::ranges::find_first_of(bytes, holes) != bytes.end();
}

std::optional<std::u16string> decodeByTable(std::span<const std::uint8_t> bytes,
                                            CFStringEncoding encoding) {
    const Converter converter = openConverter(encoding);
    if (!converter || (encoding == kCFStringEncodingWindowsLatin1 && hasHole(bytes))) {
        return std::nullopt;
    }
    std::u16string units(2 * bytes.size(), u'\0'); // no table gives more than two units for a byte
    UErrorCode status = U_ZERO_ERROR;
    const std::int32_t length =
        ucnv_toUChars(converter.get(), units.data(), static_cast<std::int32_t>(units.size()),
                      reinterpret_cast<const char *>(bytes.data()),
                      static_cast<std::int32_t>(bytes.size()), &status);
    if (U_FAILURE(status)) {
        return std::nullopt;
    }
    units.resize(static_cast<std::size_t>(length));
    return units;
}

std::optional<std::u16string> decodeUtf8(std::span<const std::uint8_t> bytes) {
    constexpr std::uint8_t mark[] = {0xEF, 0xBB, 0xBF};
    if (bytes.size() >= std::size(mark) && std::ranges::equal(bytes.first(std::size(mark)), mark)) {
        bytes = bytes.subspan(std::size(mark));
    }
    std::u16string units;
    units.reserve(bytes.size());
    const auto length = static_cast<std::int64_t>(bytes.size());
    for (std::int64_t at = 0; at < length;) {
        const std::int64_t start = at;
        UChar32 character = 0;
        // NOLINTNEXTLINE(bugprone-inc-dec-in-conditions): how the macro is written
        U8_NEXT(bytes.data(), at, length, character);
        if (character < 0) {
            // Mac Roman's copyright sign, alone among stray bytes, is let through.
            if (bytes[static_cast<std::size_t>(start)] != 0xA9) {
                return std::nullopt;
            }
            at = start + 1;
            character = 0xFFFD;
        }
        char16_t pair[2] = {};
        std::size_t count = 0;
        U16_APPEND_UNSAFE(pair, count, character);
        units.append(pair, count);
    }
    return units;
}

bool isBigEndian(CFStringEncoding encoding) {
    return encoding == kCFStringEncodingUTF16BE || encoding == kCFStringEncodingUTF32BE;
}

// The code units in host order, without the mark; a trailing part of a unit is dropped. `open`: the
// encoding leaves the order to a mark, and is big-endian without one. Nothing when the bytes are
// not even one unit: so macOS 10.15 and later; before, the text was empty.
template <typename Unit>
std::optional<std::basic_string<Unit>> inHostOrder(std::span<const std::uint8_t> bytes,
                                                   CFStringEncoding encoding, bool open) {
    constexpr auto mark = static_cast<Unit>(0xFEFF);
    const auto swapped = [](Unit unit) {
        auto parts = std::bit_cast<std::array<std::uint8_t, sizeof(Unit)>>(unit);
        std::ranges::reverse(parts);
        return std::bit_cast<Unit>(parts);
    };
    if (bytes.size() < sizeof(Unit)) {
        return std::nullopt;
    }
    std::basic_string<Unit> units(bytes.size() / sizeof(Unit), Unit());
    std::ranges::copy(bytes.first(units.size() * sizeof(Unit)),
                      reinterpret_cast<std::uint8_t *>(units.data()));
    bool swap = isBigEndian(encoding);
    if (open) {
        const Unit first = units[0];
        swap = first != mark;
        if (first == mark || first == swapped(mark)) {
            units.erase(0, 1);
        }
    }
    if (swap) {
        std::ranges::transform(units, units.begin(), swapped);
    }
    return units;
}

// In the order of the host, with its mark: what Core Foundation reads without looking at it.
std::u16string asUnits(std::span<const std::uint8_t> bytes) {
    std::u16string units(bytes.size() / sizeof(char16_t), u'\0');
    std::memcpy(units.data(), bytes.data(), units.size() * sizeof(char16_t));
    return units;
}

std::optional<std::u16string> decodeUtf32(std::span<const std::uint8_t> bytes,
                                          CFStringEncoding encoding) {
    const auto characters =
        inHostOrder<char32_t>(bytes, encoding, encoding == kCFStringEncodingUTF32);
    if (!characters) {
        return std::nullopt;
    }
    std::u16string units;
    units.reserve(characters->size());
    for (const char32_t character : *characters) {
        if (character > 0x10FFFF || U_IS_SURROGATE(character)) {
            return std::nullopt;
        }
        char16_t pair[2] = {};
        std::size_t count = 0;
        U16_APPEND_UNSAFE(pair, count, character);
        units.append(pair, count);
    }
    return units;
}

std::optional<std::size_t> encodeByTable(std::u16string_view units, CFStringEncoding encoding,
                                         std::span<char> room) {
    const Converter converter = openConverter(encoding);
    if (!converter) {
        return std::nullopt;
    }
    UErrorCode status = U_ZERO_ERROR;
    const std::int32_t length =
        ucnv_fromUChars(converter.get(), room.data(),
                        static_cast<std::int32_t>(std::min<std::size_t>(room.size(), INT32_MAX)),
                        units.data(), static_cast<std::int32_t>(units.size()), &status);
    if (U_FAILURE(status)) {
        return std::nullopt;
    }
    return static_cast<std::size_t>(length);
}

std::optional<std::size_t> encodeUtf8(std::u16string_view units, std::span<char> room) {
    UErrorCode status = U_ZERO_ERROR;
    std::int32_t length = 0;
    u_strToUTF8(room.data(),
                static_cast<std::int32_t>(std::min<std::size_t>(room.size(), INT32_MAX)), &length,
                units.data(), static_cast<std::int32_t>(units.size()), &status);
    if (U_FAILURE(status)) {
        return std::nullopt;
    }
    return static_cast<std::size_t>(length);
}

std::optional<std::size_t> encodeLatin(std::u16string_view units, char16_t last,
                                       std::span<char> room) {
    if (units.size() > room.size() ||
        std::ranges::any_of(units, [last](char16_t unit) { return unit > last; })) {
        return std::nullopt;
    }
    std::ranges::transform(units, room.begin(),
                           [](char16_t unit) { return static_cast<char>(unit); });
    return units.size();
}

std::optional<std::size_t> encodeUtf16(std::u16string_view units, std::span<char> room) {
    const std::size_t size = units.size() * sizeof(char16_t);
    if (size > room.size()) {
        return std::nullopt;
    }
    std::memcpy(room.data(), units.data(), size);
    return size;
}

} // namespace

std::optional<std::u16string> decode(std::span<const std::uint8_t> bytes, CFStringEncoding encoding,
                                     bool external) {
    // Before the encoding is looked at.
    if (bytes.empty()) {
        return std::u16string();
    }
    if (isSupersetOfAscii(encoding) && isAscii(bytes)) {
        return std::u16string(bytes.begin(), bytes.end());
    }
    switch (encoding) {
    case kCFStringEncodingUTF8:
        return decodeUtf8(bytes);
    case kCFStringEncodingASCII: // bytes above 0x7F are not refused
    case kCFStringEncodingISOLatin1:
        return std::u16string(bytes.begin(), bytes.end());
    case kCFStringEncodingUTF16:
        return external ? inHostOrder<char16_t>(bytes, encoding, true) : asUnits(bytes);
    case kCFStringEncodingUTF16BE:
    case kCFStringEncodingUTF16LE: // lone surrogates are not refused
        return inHostOrder<char16_t>(bytes, encoding, false);
    case kCFStringEncodingUTF32:
    case kCFStringEncodingUTF32BE:
    case kCFStringEncodingUTF32LE:
        return decodeUtf32(bytes, encoding);
    default:
        return decodeByTable(bytes, encoding);
    }
}

std::optional<std::size_t> encode(std::u16string_view units, CFStringEncoding encoding,
                                  std::span<char> room) {
    switch (encoding) {
    case kCFStringEncodingUTF8:
        return encodeUtf8(units, room);
    case kCFStringEncodingASCII:
        return encodeLatin(units, 0x7F, room);
    case kCFStringEncodingISOLatin1:
        return encodeLatin(units, 0xFF, room);
    case kCFStringEncodingUTF16:
    case kCFStringEncodingUTF16LE:
        return encodeUtf16(units, room);
    default:
        return encodeByTable(units, encoding, room);
    }
}

} // namespace standin
