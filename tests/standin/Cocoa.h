// What every test of the stand-in needs: Foundation, the macOS interfaces, a pool and short names.

#pragma once

#import <Foundation/Foundation.h>

#include <CoreFoundation/CoreFoundation.h>
#include <CoreServices/CoreServices.h>
#include <CoreText/CoreText.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <string_view>
#include <vector>

/// A test with an autorelease pool around it.
class CocoaTest : public testing::Test {
protected:
    ~CocoaTest() override { [pool_ drain]; }

private:
    NSAutoreleasePool *pool_ = [[NSAutoreleasePool alloc] init];
};

/// An autoreleased string of just these units, lone surrogates included.
inline NSString *nsString(std::u16string_view units) {
    const auto *characters = reinterpret_cast<const UniChar *>(units.data());
    const CFStringRef string =
        CFStringCreateWithCharacters(nullptr, characters, static_cast<CFIndex>(units.size()));
    return [(NSString *)string autorelease];
}

/// The units of a string; "(null)" for a null one.
inline std::u16string units(const void *string) {
    if (string == nullptr) {
        return u"(null)";
    }
    auto *const text = (NSString *)(id)string;
    std::u16string result([text length], u'\0');
    [text getCharacters:reinterpret_cast<unichar *>(result.data())];
    return result;
}

/// A null where the headers promise that none is passed.
template <typename Reference>
Reference none() {
    return nullptr;
}
