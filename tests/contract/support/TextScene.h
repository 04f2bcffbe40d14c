#pragma once

#include "LoadedPlugin.h"

#include <cstdint>
#include <optional>
#include <ostream>
#include <string>
#include <string_view>

/// A host of some version, and the image's function that makes host strings from bytes.
struct TextScene : LoadedPlugin {
    explicit TextScene(std::optional<double> version = 2013.04)
        : LoadedPlugin{{.version = version}} {}

    host::StringRef build(const void *data, std::int64_t length, std::uint32_t encoding) {
        return host::StringRef::adopt(build_(static_cast<const char *>(data), length, encoding));
    }
    host::StringRef build(std::string_view bytes, std::uint32_t encoding) {
        return build(bytes.data(), static_cast<std::int64_t>(bytes.size()), encoding);
    }

private:
    using Build = REALstringStruct *(const char *, std::int64_t, std::uint32_t);
    Build *build_ = imageFunction<Build>(image, "REALBuildUnicodeString");
};

/// A host to run a test with: its version, nothing when it does not tell it, and a name for that.
struct HostOfVersion {
    std::string name;
    std::optional<double> version;
};

inline void PrintTo(const HostOfVersion &host, std::ostream *out) {
    *out << host.name;
}

/// The bytes of UTF-16 or UTF-32 text in host byte order.
template <class Unit>
std::string_view bytesOf(std::basic_string_view<Unit> text) {
    return {reinterpret_cast<const char *>(text.data()), text.size() * sizeof(Unit)};
}
