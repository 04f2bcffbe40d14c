#pragma once

#include "LoadedPlugin.h"
#include "StringCreationSpy.h"

#import <Foundation/Foundation.h>

#include <string>
#include <string_view>
#include <utility>

/// A host and the image's function that makes Cocoa strings from host strings.
struct HostStringScene : LoadedPlugin {
    explicit HostStringScene(host::HostOptions options = {}) : LoadedPlugin(std::move(options)) {}

    StringCreationSpy creation{image};
    NSString *(*const convert)(host::StringHandle) =
        imageFunction<NSString *(host::StringHandle)>(image, "NewNSString");

    /// From here on the host hands out no CFString: what is left are the string's bytes.
    void handOutNoCFString() { host.services().answerNull("REALGetStringCFString"); }
    NSString *convertBytes(std::string_view bytes, std::uint32_t encoding) {
        string = host.makeString(bytes, encoding);
        return convert(string);
    }

    host::StringRef string; ///< the one converted last
};

/// The string's UTF-16 units.
inline std::u16string unitsOf(NSString *string) {
    std::u16string units([string length], u'\0');
    [string getCharacters:reinterpret_cast<unichar *>(units.data())];
    return units;
}
