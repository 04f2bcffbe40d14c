#include "UrlText.h"

#include "Encodings.h"

#include <unicode/ustring.h>

#include <algorithm>
#include <cstdint>
#include <vector>

namespace standin {
namespace {

bool isOfScheme(char unit) {
    return (unit >= 'a' && unit <= 'z') || (unit >= 'A' && unit <= 'Z') ||
           (unit >= '0' && unit <= '9') || unit == '+' || unit == '-' || unit == '.';
}

// Zero without a scheme.
std::size_t lengthOfScheme(std::string_view url) {
    const auto *const end = std::ranges::find_if_not(url, isOfScheme);
    return end != url.end() && *end == ':' ? static_cast<std::size_t>(end - url.begin()) : 0;
}

bool isFileScheme(std::string_view scheme) {
    return std::ranges::equal(scheme, std::string_view("file"),
                              [](char left, char right) { return (left | 0x20) == right; });
}

bool isUtf8(std::string_view bytes) {
    UErrorCode status = U_ZERO_ERROR;
    std::int32_t length = 0; // only measured
    u_strFromUTF8(nullptr, 0, &length, bytes.data(), static_cast<std::int32_t>(bytes.size()),
                  &status);
    return U_SUCCESS(status) || status == U_BUFFER_OVERFLOW_ERROR;
}

std::vector<std::string_view> split(std::string_view path) {
    std::vector<std::string_view> components;
    for (std::size_t at = 0;;) {
        const std::size_t slash = path.find('/', at);
        components.push_back(path.substr(at, slash - at));
        if (slash == std::string_view::npos) {
            return components;
        }
        at = slash + 1;
    }
}

// An absolute path without "." and "..", except for a ".." that has nothing to take away. An empty
// component counts like any other.
std::string folded(std::string_view path) {
    std::vector<std::string_view> kept;
    const std::vector<std::string_view> components = split(path);
    for (const std::string_view &each : components) {
        const bool isLast = &each == &components.back();
        if (each == ".." && kept.size() > 1 && kept.back() != "..") {
            kept.pop_back();
        } else if (each != ".") {
            kept.push_back(each);
            continue;
        }
        if (isLast) {
            kept.emplace_back(); // the folder's slash stays
        }
    }
    std::string result;
    for (const std::string_view &each : kept) {
        result += each;
        if (&each != &kept.back()) {
            result += '/';
        }
    }
    return result;
}

// A base without a path is a root folder.
std::string joined(std::string_view path, std::string_view base) {
    if (path.starts_with('/')) {
        return std::string(path);
    }
    if (base.empty()) {
        return '/' + std::string(path);
    }
    return folded(std::string(base.substr(0, base.rfind('/') + 1)).append(path));
}

// Query and fragment, with what introduces them.
std::string_view tailOf(std::string_view url) {
    return url.substr(std::min(url.find_first_of("?#"), url.size()));
}

// The base's fragment is only kept by a URL without text of its own.
std::string resolvedTail(std::string_view tail, std::string_view base) {
    if (tail.empty()) {
        return std::string(base);
    }
    std::string text(tail.starts_with('#') ? base.substr(0, base.find('#')) : "");
    return text.append(tail);
}

int digit(char unit) {
    constexpr std::string_view digits = "0123456789abcdef0123456789ABCDEF";
    const std::size_t at = digits.find(unit);
    return at == std::string_view::npos ? -1 : static_cast<int>(at % 16);
}

// The byte that an escape at the start of the text stands for.
std::optional<std::uint8_t> escapedByte(std::string_view text) {
    if (text.size() < 3 || text[0] != '%' || digit(text[1]) < 0 || digit(text[2]) < 0) {
        return std::nullopt;
    }
    return static_cast<std::uint8_t>(digit(text[1]) * 16 + digit(text[2]));
}

// Escapes that follow each other are one text, as Core Foundation takes them: a byte order mark at
// its start is dropped.
std::optional<std::u16string> unescaped(std::string_view text) {
    std::u16string units;
    while (!text.empty()) {
        std::vector<std::uint8_t> bytes;
        bool isEscaped = false;
        while (const auto byte = escapedByte(text)) {
            bytes.push_back(*byte);
            text.remove_prefix(3);
            isEscaped = true;
        }
        if (!isEscaped) {
            const std::size_t length = std::max<std::size_t>(text.find('%'), 1);
            const std::string_view plain = text.substr(0, length);
            bytes.assign(plain.begin(), plain.end());
            text.remove_prefix(plain.size());
        }
        const auto decoded = decode(bytes, kCFStringEncodingUTF8, true);
        if (!decoded) {
            return std::nullopt;
        }
        units += *decoded;
    }
    return units;
}

// The last component, or the slash that is the whole path. It is empty in a path that is, and
// between two slashes at the end.
std::string_view lastOf(std::string_view path) {
    if (path.ends_with('/')) {
        if (path.size() == 1) {
            return path;
        }
        path.remove_suffix(1);
    }
    return path.substr(path.rfind('/') + 1);
}

} // namespace

UrlParts partsOf(std::string_view url) {
    UrlParts parts;
    std::string_view rest = url.substr(0, url.find('#'));
    if (const std::size_t length = lengthOfScheme(rest); length > 0) {
        parts.scheme = rest.substr(0, length);
        rest.remove_prefix(length + 1);
        if (!rest.starts_with('/')) {
            return parts;
        }
    }
    if (rest.starts_with("//")) {
        rest.remove_prefix(2);
        parts.authority = rest.substr(0, rest.find_first_of("/?"));
        rest.remove_prefix(parts.authority.size());
    }
    rest = rest.substr(0, rest.find('?'));
    if (!rest.empty() || !parts.authority.empty()) {
        parts.path = rest;
    }
    return parts;
}

std::string resolved(std::string_view url, std::string_view base) {
    const UrlParts parts = partsOf(url);
    if (!parts.scheme.empty()) {
        return std::string(url);
    }
    const UrlParts below = partsOf(base);
    std::string text(below.scheme);
    text += below.scheme.empty() ? "" : ":";
    if (!parts.authority.empty()) {
        return text.append(url);
    }
    text.append("//").append(below.authority);
    const std::string_view basePath = below.path.value_or("");
    if (!parts.path) {
        return text.append(basePath).append(resolvedTail(tailOf(url), tailOf(base)));
    }
    return text.append(joined(*parts.path, basePath)).append(tailOf(url));
}

std::optional<std::string> fileSystemPath(std::string_view url) {
    const UrlParts parts = partsOf(url);
    if (!isFileScheme(parts.scheme) || !parts.path) {
        return std::nullopt;
    }
    std::string path;
    for (std::string_view rest = *parts.path; !rest.empty();) {
        const auto byte = escapedByte(rest);
        path += byte ? static_cast<char>(*byte) : rest.front();
        rest.remove_prefix(byte ? 3 : 1);
    }
    if (path.size() > 1 && path.ends_with('/')) {
        path.pop_back();
    }
    return isUtf8(path) ? std::optional(path) : std::nullopt;
}

std::optional<std::u16string> lastComponent(std::string_view url) {
    return unescaped(lastOf(partsOf(url).path.value_or("")));
}

std::optional<std::string> withoutLastComponent(std::string_view url) {
    const auto path = partsOf(url).path;
    if (!path) {
        return std::nullopt;
    }
    const auto start = static_cast<std::size_t>(path->begin() - url.begin());
    std::string text(url);
    std::string above(*path);
    const std::string_view last = lastOf(*path);
    if (last.empty() || last == "/" || last == "." || last == "..") {
        above += above.empty() || above.ends_with('/') ? "../" : "/../";
        if (above.size() > 7 && above.ends_with("/./../")) {
            above.erase(above.size() - 6, 2);
        } else if (above == "./../") {
            above.erase(0, 2);
        }
    } else if (last.begin() == path->begin()) {
        above = "./";
    } else {
        above.erase(static_cast<std::size_t>(last.begin() - path->begin()));
    }
    return text.replace(start, path->size(), above);
}

} // namespace standin
