// Text of any bytes in any encoding, on hosts of every age: no input may leak, overrun a buffer or
// give a wrong handle, and what is well-formed arrives as it was.

#include "FuzzedPlugin.h"

#include "frame/HostTypes.h"

#include <algorithm>
#include <cstring>
#include <fuzzer/FuzzedDataProvider.h>
#include <optional>
#include <unicode/unistr.h>
#include <vector>

namespace {

constexpr double versions[] = {0.0, 2011.4, 2012.0, 2012.2, 2013.0, 2013.04};
constexpr std::uint32_t encodings[] = {
    // the host knows no others
    HostEncoding::macRoman,      HostEncoding::utf16,   host::encoding::latin1,
    HostEncoding::windowsLatin1, HostEncoding::ascii,   HostEncoding::utf8,
    HostEncoding::utf32,         HostEncoding::unknown,
};

std::string toUtf8(const icu::UnicodeString &text) {
    std::string result;
    return text.toUTF8String(result);
}

bool isSurrogate(std::uint32_t unit) {
    return unit >= 0xD800 && unit < 0xE000;
}

/// The text in UTF-8 if it is well-formed; a byte-order mark in front is left out of the test, as
/// hosts may take it for one.
std::optional<std::string> wellFormed(const std::vector<std::uint8_t> &bytes,
                                      std::uint32_t encoding) {
    if (encoding == HostEncoding::utf16) {
        std::vector<char16_t> units(bytes.size() / 2);
        if (bytes.size() % 2 != 0 || units.empty())
            return std::nullopt;
        std::memcpy(units.data(), bytes.data(), bytes.size());
        const icu::UnicodeString text(units.data(), static_cast<int>(units.size()));
        for (int i = 0; i < text.length(); i = text.moveIndex32(i, 1))
            if (isSurrogate(static_cast<std::uint32_t>(text.char32At(i))))
                return std::nullopt;
        if (units[0] == 0xFEFF || units[0] == 0xFFFE)
            return std::nullopt;
        return toUtf8(text);
    }
    std::vector<std::int32_t> points(bytes.size() / 4);
    if (bytes.size() % 4 != 0 || points.empty())
        return std::nullopt;
    std::memcpy(points.data(), bytes.data(), bytes.size());
    const bool valid = std::ranges::all_of(points, [](std::int32_t point) {
        return point >= 0 && point < 0x110000 && !isSurrogate(static_cast<std::uint32_t>(point));
    });
    if (!valid || points[0] == 0xFEFF)
        return std::nullopt;
    return toUtf8(icu::UnicodeString::fromUTF32(points.data(), static_cast<int>(points.size())));
}

std::uint32_t declaredEncoding(const std::vector<std::uint8_t> &bytes, std::uint32_t encoding) {
    const bool asciiIfPossible = encoding == HostEncoding::macRoman ||
                                 encoding == HostEncoding::windowsLatin1 ||
                                 encoding == HostEncoding::unknown;
    const bool isAscii = std::ranges::all_of(bytes, [](std::uint8_t byte) { return byte < 0x80; });
    return asciiIfPossible && isAscii ? HostEncoding::ascii : encoding;
}

void check(host::StringHandle string, const std::vector<std::uint8_t> &bytes,
           std::uint32_t encoding) {
    const host::Host &host = plugin().host;
    if (bytes.empty()) {
        require(string == nullptr, "a string of no bytes");
        return;
    }
    const std::string given(bytes.begin(), bytes.end());
    if (encoding == HostEncoding::utf16 || encoding == HostEncoding::utf32) {
        if (const auto expected = wellFormed(bytes, encoding)) {
            require(host.encodingOf(string) == HostEncoding::utf8, "not declared UTF-8");
            require(host.bytes(string) == *expected, "other text than was given");
        }
        return;
    }
    require(host.bytes(string) == given, "other bytes than were given");
    require(host.encodingOf(string) == declaredEncoding(bytes, encoding), "another encoding");
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size) {
    using Build = host::StringHandle(const char *, std::int64_t, std::uint32_t);
    static auto *const build = plugin().symbol<Build>("REALBuildUnicodeString");
    static auto *const hostVersion = plugin().symbol<double>("hostVersion");

    FuzzedDataProvider input(data, size);
    *hostVersion = input.PickValueInArray(versions);
    const std::uint32_t encoding = input.PickValueInArray(encodings);
    // A copy of the exact size, so that reading past its end is noticed.
    const auto bytes = input.ConsumeRemainingBytes<std::uint8_t>();
    {
        const auto string =
            host::StringRef::adopt(build(reinterpret_cast<const char *>(bytes.data()),
                                         static_cast<std::int64_t>(bytes.size()), encoding));
        check(string, bytes, encoding);
    }
    plugin().requireCleanHost();
    return 0;
}
