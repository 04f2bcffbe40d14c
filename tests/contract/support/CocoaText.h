#pragma once

#include "LoadedPlugin.h"

#include <CoreFoundation/CoreFoundation.h>

#include <cstddef>
#include <string>
#include <string_view>

/// A Cocoa string of exactly these UTF-16 units, whatever they are: lone surrogates and leading
/// byte order marks too, which Foundation's own strings here do not take. Released at the end.
class CocoaString {
public:
    explicit CocoaString(std::u16string units);
    ~CocoaString() { CFRelease(string_); }
    CocoaString(const CocoaString &) = delete;
    CocoaString &operator=(const CocoaString &) = delete;

    operator CFStringRef() const { return string_; }

private:
    CFStringRef string_;
};

/// What the plug-in makes of a Cocoa string.
inline host::StringRef convertedText(host::Image &image, CFStringRef string) {
    return host::StringRef::adopt(
        imageFunction<host::StringHandle(CFStringRef)>(image, "CFString2RBString")(string));
}

class CocoaText : public testing::Test {
protected:
    host::StringRef convert(CFStringRef string) { return convertedText(loaded.image, string); }
    host::StringRef convert(std::u16string units) { return convert(CocoaString(std::move(units))); }
    std::string bytesOf(std::u16string units) {
        return loaded.host.bytes(convert(std::move(units)));
    }

    LoadedPlugin loaded;
};

inline std::u16string repeated(std::u16string_view text, std::size_t count) {
    std::u16string result;
    for (std::size_t i = 0; i < count; ++i)
        result += text;
    return result;
}

inline std::string repeated(std::string_view text, std::size_t count) {
    std::string result;
    for (std::size_t i = 0; i < count; ++i)
        result += text;
    return result;
}
