// Random text from the host's side to Cocoa's and back, in every encoding that the host has.

#import "HostStringScene.h"

#include "RandomText.h"

#include <gmock/gmock.h>

#include <CoreFoundation/CoreFoundation.h>

#include <vector>

namespace {

// Printed when a test fails; another one makes other text.
constexpr std::uint32_t seed = 20131104;
constexpr int repetitions = 500;

struct Encoding {
    const char *name;
    std::uint32_t value;
};

void PrintTo(const Encoding &encoding, std::ostream *out) {
    *out << encoding.name;
}

constexpr Encoding encodings[] = {
    {"MacRoman", host::encoding::macRoman},
    {"UTF16", host::encoding::utf16},
    {"Latin1", host::encoding::latin1},
    {"ASCII", host::encoding::ascii},
    {"WindowsLatin1", host::encoding::windowsLatin1},
    {"UTF8", host::encoding::utf8},
    {"UTF32", host::encoding::utf32},
};

std::string nameOf(const testing::TestParamInfo<Encoding> &tested) {
    return tested.param.name;
}

/// The image's functions in both directions.
struct Bridges : HostStringScene {
    explicit Bridges(host::HostOptions options = {}) : HostStringScene(std::move(options)) {}

    /// A host string from a Cocoa string, nil for nil.
    host::StringRef back(NSString *text) {
        return host::StringRef::adopt(toHost(reinterpret_cast<CFStringRef>(text)));
    }
    host::StringRef built(const std::string &bytes, std::uint32_t encoding) {
        return host::StringRef::adopt(
            build(bytes.data(), static_cast<std::int64_t>(bytes.size()), encoding));
    }

    host::StringHandle (*const toHost)(CFStringRef) =
        imageFunction<host::StringHandle(CFStringRef)>(image, "CFString2RBString");
    host::StringHandle (*const build)(const char *, std::int64_t, std::uint32_t) =
        imageFunction<host::StringHandle(const char *, std::int64_t, std::uint32_t)>(
            image, "REALBuildUnicodeString");
};

/// Runs the body with so many random texts, until it fails.
template <class Body>
void forRandomTexts(std::uint32_t encoding, Body body) {
    RandomText random(seed);
    for (int i = 0; i < repetitions && !testing::Test::HasFailure(); ++i) {
        SCOPED_TRACE("seed " + std::to_string(seed) + ", text " + std::to_string(i));
        NSAutoreleasePool *pool = [[NSAutoreleasePool alloc] init];
        body(random.inEncoding(encoding));
        [pool drain];
    }
}

NSString *cocoa(const std::u32string &text) {
    const std::u16string units = utf16Of(text);
    return [NSString stringWithCharacters:reinterpret_cast<const unichar *>(units.data())
                                   length:units.size()];
}

class RoundTrip : public testing::TestWithParam<Encoding> {};
class BuiltRoundTrip : public testing::TestWithParam<std::tuple<Encoding, double>> {};

} // namespace

TEST_P(RoundTrip, ThroughTheHostsCFStringKeepsTheText) {
    Bridges bridges({.tracing = false});
    const std::uint32_t encoding = GetParam().value;
    forRandomTexts(encoding, [&](const std::u32string &text) {
        NSString *result = bridges.convertBytes(encoded(text, encoding), encoding);
        EXPECT_EQ(unitsOf(result), utf16Of(text));
        const host::StringRef back = bridges.back(result);
        EXPECT_EQ(bridges.host.bytes(back), encoded(text, host::encoding::utf8));
        EXPECT_EQ(bridges.host.encodingOf(back), host::encoding::utf8);
    });
}

TEST_P(RoundTrip, ThroughTheBytesKeepsTheText) {
    Bridges bridges({.tracing = false});
    bridges.handOutNoCFString();
    const std::uint32_t encoding = GetParam().value;
    forRandomTexts(encoding, [&](const std::u32string &text) {
        const std::string bytes =
            encoding == host::encoding::utf32 ? bigEndianUTF32(text) : encoded(text, encoding);
        NSString *result = bridges.convertBytes(bytes, encoding);
        ASSERT_NE(result, nil);
        EXPECT_EQ(unitsOf(result), utf16Of(text));
        EXPECT_EQ(bridges.host.bytes(bridges.back(result)), encoded(text, host::encoding::utf8));
    });
}

INSTANTIATE_TEST_SUITE_P(Of, RoundTrip, testing::ValuesIn(encodings), nameOf);

TEST(RoundTripWithoutEncoding, ReadsTheBytesAsMacRoman) {
    Bridges bridges({.tracing = false});
    forRandomTexts(host::encoding::macRoman, [&](const std::u32string &text) {
        NSString *result =
            bridges.convertBytes(encoded(text, host::encoding::macRoman), host::encoding::unknown);
        EXPECT_EQ(unitsOf(result), utf16Of(text));
        EXPECT_EQ(bridges.host.bytes(bridges.back(result)), encoded(text, host::encoding::utf8));
    });
}

TEST(RoundTripOfUTF32WithAMark, ThroughTheBytesKeepsTheText) {
    Bridges bridges({.tracing = false});
    bridges.handOutNoCFString();
    forRandomTexts(host::encoding::utf32, [&](const std::u32string &text) {
        NSString *result = bridges.convertBytes(encoded(U'\uFEFF' + text, host::encoding::utf32),
                                                host::encoding::utf32);
        ASSERT_NE(result, nil);
        EXPECT_EQ(unitsOf(result), utf16Of(text));
    });
}

// What the plug-in builds for the host, the host gives it back.
TEST_P(BuiltRoundTrip, KeepsTheText) {
    const auto &[encoding, version] = GetParam();
    Bridges bridges({.version = version, .tracing = false});
    forRandomTexts(encoding.value, [&](const std::u32string &text) {
        const host::StringRef string = bridges.built(encoded(text, encoding.value), encoding.value);
        EXPECT_EQ(bridges.host.text(string), encoded(text, host::encoding::utf8));
        EXPECT_EQ(unitsOf(bridges.convert(string)), utf16Of(text));
    });
}

TEST_P(BuiltRoundTrip, ThroughTheBytesKeepsTheText) {
    const auto &[encoding, version] = GetParam();
    Bridges bridges({.version = version, .tracing = false});
    bridges.handOutNoCFString();
    forRandomTexts(encoding.value, [&](const std::u32string &text) {
        const host::StringRef string = bridges.built(encoded(text, encoding.value), encoding.value);
        EXPECT_EQ(unitsOf(bridges.convert(string)), utf16Of(text));
    });
}

INSTANTIATE_TEST_SUITE_P(Of, BuiltRoundTrip,
                         testing::Combine(testing::ValuesIn(encodings),
                                          testing::Values(2011.4, 2012.5, 2013.04)),
                         [](const auto &tested) {
                             const double version = std::get<1>(tested.param);
                             return std::string(std::get<0>(tested.param).name) + "OnHost" +
                                    std::to_string(static_cast<int>(version));
                         });

TEST(CocoaRoundTrip, KeepsTheText) {
    Bridges bridges({.tracing = false});
    for (const bool handsOut : {true, false}) {
        if (!handsOut)
            bridges.handOutNoCFString();
        forRandomTexts(host::encoding::utf8, [&](const std::u32string &text) {
            NSString *original = cocoa(text);
            const host::StringRef string = bridges.back(original);
            EXPECT_EQ(bridges.host.bytes(string), encoded(text, host::encoding::utf8));
            EXPECT_TRUE([bridges.convert(string) isEqualToString:original]);
        });
    }
}

TEST(CocoaRoundTrip, LeavesNothingBehind) {
    Bridges bridges({.tracing = false, .quarantineLimit = 10});
    bridges.handOutNoCFString();
    forRandomTexts(host::encoding::utf8,
                   [&](const std::u32string &text) { bridges.convert(bridges.back(cocoa(text))); });
    EXPECT_EQ(bridges.host.account().liveStrings, 0u);
}
