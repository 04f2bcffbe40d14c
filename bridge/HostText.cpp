#include "frame/HostText.h"

#include "frame/HeldUntilReset.h"
#include "frame/HostVersion.h"
#include "frame/StandardExceptions.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>

namespace {

constexpr std::int64_t largestStackInput = 799; // bytes of UTF-32
constexpr std::int64_t largestStackOutput = 2 * (largestStackInput / 4) + 1;

bool isAllASCII(const char *data, std::int64_t length) {
    return std::all_of(data, data + length,
                       [](char byte) { return static_cast<unsigned char>(byte) < 0x80; });
}

// The end of a conversion by the host: the string in another encoding, the given one released.
REALstringStruct *convertedToUTF8(REALstringStruct *made) {
    StringReference string{made};
    StringReference converted{REALConvertString(made, HostEncoding::utf8)};
    string.reset();
    return converted.handOver();
}

REALstringStruct *buildEncodedString(const char *data, std::int64_t length,
                                     std::uint32_t encoding) {
    StringReference string{originalREALBuildString(data, static_cast<std::int32_t>(length))};
    if (string)
        REALSetStringEncoding(string.get(), encoding);
    return string.handOver();
}

// Writes UTF-16 for count code points and a terminating zero; gives the number of units before it.
// Surrogate code points are dropped, values beyond Unicode become replacement characters.
std::int64_t writeUTF16(const char *utf32, std::int64_t count, char16_t *units) {
    char16_t *end = units;
    for (std::int64_t i = 0; i < count; ++i) {
        std::uint32_t c = 0;
        std::memcpy(&c, utf32 + 4 * i, sizeof c); // the text may stand at any address
        if (c <= 0xFFFF) {
            if ((c & ~0x7FFu) != 0xD800)
                *end++ = static_cast<char16_t>(c);
        } else if (c < 0x110000) {
            c -= 0x10000;
            *end++ = static_cast<char16_t>(0xD800 + (c >> 10));
            *end++ = static_cast<char16_t>(0xDC00 | (c & 0x3FF));
        } else {
            *end++ = u'\uFFFD';
        }
    }
    *end = 0;
    return end - units;
}

REALstringStruct *buildFromConvertedUTF32(const char *data, std::int64_t length, char16_t *units) {
    const std::int64_t count = writeUTF16(data, length / 4, units);
    return REALBuildUnicodeStringUTF16(units, count * static_cast<std::int64_t>(sizeof *units));
}

REALstringStruct *buildStringUTF32(const char *data, std::int64_t length) {
    if (hostVersion >= hostConvertsUTF32Since)
        return convertedToUTF8(REALBuildStringWithEncoding(data, static_cast<std::int32_t>(length),
                                                           HostEncoding::utf32));
    if (length <= largestStackInput) {
        char16_t units[largestStackOutput];
        return buildFromConvertedUTF32(data, length, units);
    }
    const auto capacity = static_cast<std::size_t>(2 * (length / 4) + 1);
    const HeldUntilReset<char16_t *, std::free> units{
        static_cast<char16_t *>(std::calloc(capacity, sizeof(char16_t)))};
    return units ? buildFromConvertedUTF32(data, length, units.get()) : nullptr;
}

REALstringStruct *buildString(const char *data, std::int64_t length, std::uint32_t encoding) {
    switch (encoding) {
    case HostEncoding::utf16:
        return REALBuildUnicodeStringUTF16(data, length);
    case HostEncoding::utf32:
        return buildStringUTF32(data, length);
    case HostEncoding::macRoman:
    case HostEncoding::windowsLatin1:
    case HostEncoding::unknown:
        return buildEncodedString(data, length,
                                  isAllASCII(data, length) ? HostEncoding::ascii : encoding);
    default:
        return buildEncodedString(data, length, encoding);
    }
}

} // namespace

REALstringStruct *REALBuildUnicodeString(const char *data, std::int64_t length,
                                         std::uint32_t encoding) {
    if (data == nullptr || length < 1 || length > 0x7FFFFFFF)
        return nullptr;
    return withStandardExceptionsMapped([=] { return buildString(data, length, encoding); });
}

REALstringStruct *REALBuildUnicodeStringUTF16(const void *data, std::int64_t length) {
    const char *bytes = static_cast<const char *>(data);
    const auto hostLength = static_cast<std::int32_t>(length);
    if (hostVersion >= hostConvertsUTF16Since)
        return convertedToUTF8(REALBuildStringWithEncoding(bytes, hostLength, HostEncoding::utf16));

    REALstringStruct *string = buildEncodedString(bytes, length, HostEncoding::utf16);
    return string != nullptr ? convertedToUTF8(string) : nullptr;
}
