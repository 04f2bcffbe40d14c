// Host strings from UTF-32 text: converted by a new host, and for an older one by the plug-in.

#include "AllocationSpy.h"
#include "TextScene.h"

#include <gmock/gmock.h>

#include <cmath>
#include <cstdint>
#include <limits>
#include <optional>
#include <stdexcept>
#include <string>
#include <string_view>

using testing::ElementsAre;
using testing::Ge;
using testing::IsEmpty;

namespace {

using namespace std::string_view_literals;
namespace encoding = host::encoding;

constexpr double hostConverts = 2013.0;
constexpr double hostTakesUtf16 = 2012.5;
constexpr double hostTakesNeither = 2011.9;

const HostOfVersion newHosts[] = {{"AtTheThreshold", 2013.0},
                                  {"New", 2013.04},
                                  {"Infinite", std::numeric_limits<double>::infinity()}};
const HostOfVersion middleHosts[] = {{"AtTheThresholdOfUtf16", 2012.0},
                                     {"Between", 2012.5},
                                     {"JustBelow", std::nextafter(2013.0, 0.0)}};
const HostOfVersion oldHosts[] = {{"Untold", std::nullopt},
                                  {"NotANumber", std::nan("")},
                                  {"JustBelowTheThresholdOfUtf16", std::nextafter(2012.0, 0.0)}};

class Utf32TextOnANewHost : public testing::TestWithParam<HostOfVersion> {};
class Utf32TextOnAMiddleHost : public testing::TestWithParam<HostOfVersion> {};
class Utf32TextOnAnOldHost : public testing::TestWithParam<HostOfVersion> {};

struct CodePointCase {
    std::uint32_t codePoint;
    std::u16string_view units;
};

constexpr CodePointCase codePointCases[] = {
    {0, u"\0"sv},
    {0x41, u"A"},
    {0x7F, u"\x7F"},
    {0x80, u"\x80"},
    {0xE9, u"\xE9"},
    {0x7FF, u"\x7FF"},
    {0x800, u"\x800"},
    {0x4E2D, u"\x4E2D"},
    {0xD7FF, u"\xD7FF"},
    {0xD800, u""}, // surrogates are no characters
    {0xDABC, u""},
    {0xDBFF, u""},
    {0xDC00, u""},
    {0xDFFF, u""},
    {0xE000, u"\xE000"},
    {0xFEFF, u"\xFEFF"},
    {0xFFFD, u"\xFFFD"},
    {0xFFFE, u"\xFFFE"},
    {0xFFFF, u"\xFFFF"},
    {0x10000, u"\xD800\xDC00"},
    {0x103FF, u"\xD800\xDFFF"},
    {0x10400, u"\xD801\xDC00"},
    {0x1D800, u"\xD836\xDC00"}, // a surrogate only in its low half
    {0x1F600, u"\xD83D\xDE00"},
    {0x2D800, u"\xD876\xDC00"},
    {0xFFFFF, u"\xDBBF\xDFFF"},
    {0x100000, u"\xDBC0\xDC00"},
    {0x10FFFF, u"\xDBFF\xDFFF"},
    {0x110000, u"\xFFFD"}, // beyond Unicode
    {0x11D800, u"\xFFFD"},
    {0x7FFFFFFF, u"\xFFFD"},
    {0x80000000, u"\xFFFD"},
    {0x8000D800, u"\xFFFD"},
    {0xFFFFFFFF, u"\xFFFD"},
};

// What the host gets, with the unit behind the end.
std::u16string given;
char16_t behindTheEnd;

REALstringStruct *keeping(const unsigned char *bytes, std::int32_t length, std::uint32_t) {
    const auto *units = reinterpret_cast<const char16_t *>(bytes);
    const auto count = static_cast<std::size_t>(length) / sizeof(char16_t);
    given.assign(units, count);
    behindTheEnd = units[count];
    return nullptr;
}

// A host that takes UTF-16 and is only there to show what it was given.
struct ConversionScene : TextScene {
    ConversionScene() : TextScene{hostTakesUtf16} {
        host.services().replace("REALBuildStringWithEncoding", keeping);
        given = u"nothing";
        behindTheEnd = u'x';
    }
    std::u16string_view convert(std::u32string_view text) {
        build(bytesOf(text), encoding::utf32);
        return given;
    }
};

// Text of that many bytes, each code point of two units.
std::string pairs(std::size_t bytes) {
    const std::u32string text(bytes / 4 + 1, U'\U0010FFFF');
    return std::string(bytesOf(std::u32string_view(text)).substr(0, bytes));
}

std::u16string pairUnits(std::size_t count) {
    std::u16string units;
    for (std::size_t i = 0; i < count; ++i)
        units += u"\xDBFF\xDFFF";
    return units;
}

} // namespace

TEST_P(Utf32TextOnANewHost, IsBuiltWithItsEncodingThenConvertedThenReleased) {
    TextScene scene(GetParam().version);
    const host::StringRef built = scene.build(bytesOf(U"\U0001F600"sv), encoding::utf32);
    EXPECT_EQ(scene.host.text(built), "\xF0\x9F\x98\x80");
    EXPECT_EQ(scene.host.encodingOf(built), encoding::utf8);
    EXPECT_THAT(scene.host.calls(),
                ElementsAre(R"(REALBuildStringWithEncoding("\x00\xF6\x01\x00", 4, )"
                            "0x0C000100) = String#1",
                            "REALConvertString(String#1, 0x08000100) = String#2",
                            "REALUnlockString(String#1)"));
}

INSTANTIATE_TEST_SUITE_P(Host, Utf32TextOnANewHost, testing::ValuesIn(newHosts),
                         [](const auto &tested) { return tested.param.name; });

TEST_P(Utf32TextOnAMiddleHost, ReachesItAsUtf16WithItsEncoding) {
    TextScene scene(GetParam().version);
    const host::StringRef built = scene.build(bytesOf(U"\U0001F600"sv), encoding::utf32);
    EXPECT_EQ(scene.host.text(built), "\xF0\x9F\x98\x80");
    EXPECT_THAT(scene.host.calls(),
                ElementsAre(R"(REALBuildStringWithEncoding("=\xD8\x00\xDE", 4, 0x00000100))"
                            " = String#1",
                            "REALConvertString(String#1, 0x08000100) = String#2",
                            "REALUnlockString(String#1)"));
}

INSTANTIATE_TEST_SUITE_P(Host, Utf32TextOnAMiddleHost, testing::ValuesIn(middleHosts),
                         [](const auto &tested) { return tested.param.name; });

TEST_P(Utf32TextOnAnOldHost, ReachesItAsUtf16DeclaredAfterwards) {
    TextScene scene(GetParam().version);
    const host::StringRef built = scene.build(bytesOf(U"\U0001F600"sv), encoding::utf32);
    EXPECT_EQ(scene.host.text(built), "\xF0\x9F\x98\x80");
    EXPECT_THAT(scene.host.calls(),
                ElementsAre(R"(REALBuildString("=\xD8\x00\xDE", 4) = String#1)",
                            "REALSetStringEncoding(String#1, 0x00000100)",
                            "REALConvertString(String#1, 0x08000100) = String#2",
                            "REALUnlockString(String#1)"));
}

INSTANTIATE_TEST_SUITE_P(Host, Utf32TextOnAnOldHost, testing::ValuesIn(oldHosts),
                         [](const auto &tested) { return tested.param.name; });

TEST(Utf32Conversion, WritesTheUnitsOfEachCodePoint) {
    ConversionScene scene;
    for (const auto &[codePoint, units] : codePointCases) {
        const auto c = static_cast<char32_t>(codePoint);
        EXPECT_EQ(scene.convert({&c, 1}), units) << std::hex << codePoint;
    }
}

TEST(Utf32Conversion, KeepsTheOrderOfTheCodePoints) {
    ConversionScene scene;
    std::u32string text;
    std::u16string units;
    for (const CodePointCase &row : codePointCases) {
        text += static_cast<char32_t>(row.codePoint);
        units += row.units;
    }
    EXPECT_EQ(scene.convert(text), units);
}

TEST(Utf32Conversion, EndsWithAnUncountedZero) {
    ConversionScene scene;
    scene.convert(U"AB");
    EXPECT_EQ(given, u"AB");
    EXPECT_EQ(behindTheEnd, 0);
    scene.build(pairs(796), encoding::utf32);
    EXPECT_EQ(behindTheEnd, 0) << "the fullest buffer on the stack";
    scene.build(pairs(800), encoding::utf32);
    EXPECT_EQ(behindTheEnd, 0) << "a buffer on the heap";
}

TEST(Utf32Conversion, IgnoresAnUnfinishedCodePoint) {
    ConversionScene scene;
    const std::string bytes(bytesOf(U"ABC"sv));
    for (const std::size_t length : {8u, 9u, 10u, 11u}) {
        scene.build(std::string_view(bytes).substr(0, length), encoding::utf32);
        EXPECT_EQ(given, u"AB") << length;
    }
}

TEST(Utf32Conversion, GivesAnEmptyTextForLessThanACodePoint) {
    TextScene scene(hostTakesUtf16);
    const host::StringRef built = scene.build("A\0\0"sv, encoding::utf32);
    EXPECT_EQ(scene.host.name(built.handle()), "String#2");
    EXPECT_THAT(scene.host.calls(),
                ElementsAre(R"(REALBuildStringWithEncoding("", 0, 0x00000100) = String#1)",
                            "REALConvertString(String#1, 0x08000100) = String#2",
                            "REALUnlockString(String#1)"));
}

TEST(Utf32Conversion, ReadsTextAtAnyAddress) {
    ConversionScene scene;
    for (const std::size_t shift : {1u, 2u, 3u}) {
        const std::string shifted =
            std::string(shift, '.') + std::string(bytesOf(U"A\U0001F600"sv));
        scene.build(shifted.data() + shift, 8, encoding::utf32);
        EXPECT_EQ(given, u"A\U0001F600") << shift;
    }
}

TEST(Utf32Buffer, IsOnTheStackBelow800Bytes) {
    ConversionScene scene;
    for (const std::size_t bytes : {1u, 4u, 400u, 796u, 797u, 798u, 799u}) {
        const std::string text = pairs(bytes);
        const AllocationSpy spy(scene.image);
        scene.build(text, encoding::utf32);
        EXPECT_THAT(spy.sizes(), IsEmpty()) << bytes;
        EXPECT_EQ(given, pairUnits(bytes / 4)) << bytes;
    }
}

TEST(Utf32Buffer, IsOnTheHeapFrom800Bytes) {
    ConversionScene scene;
    for (const std::size_t bytes : {800u, 801u, 803u, 804u, 4000u}) {
        const std::string text = pairs(bytes);
        const AllocationSpy spy(scene.image);
        scene.build(text, encoding::utf32);
        // Two units for each code point, and one to end with.
        EXPECT_THAT(spy.sizes(), ElementsAre(Ge((bytes / 4 * 2 + 1) * sizeof(char16_t)))) << bytes;
        EXPECT_EQ(given, pairUnits(bytes / 4)) << bytes;
    }
}

TEST(Utf32Buffer, IsNotNeededWhenTheHostConverts) {
    TextScene scene(hostConverts);
    const std::string text = pairs(4000);
    const AllocationSpy spy(scene.image);
    scene.build(text, encoding::utf32);
    EXPECT_THAT(spy.sizes(), IsEmpty());
}

TEST(Utf32Buffer, IsOnTheHeapForTheOldestHostToo) {
    TextScene scene(hostTakesNeither);
    const std::string text = pairs(800);
    const AllocationSpy spy(scene.image);
    EXPECT_EQ(scene.host.bytes(scene.build(text, encoding::utf32)).size(), 800u);
    EXPECT_THAT(spy.sizes(), ElementsAre(Ge(802u)));
}

TEST(Utf32Buffer, IsFreedWhenTheStringIsBuilt) {
    ConversionScene scene;
    const std::string text = pairs(800);
    const AllocationSpy spy(scene.image);
    scene.build(text, encoding::utf32);
    EXPECT_EQ(spy.unfreed(), 0u);
}

TEST(Utf32Buffer, IsFreedWhenTheHostThrows) {
    TextScene scene(hostTakesUtf16);
    scene.host.services().fail("REALBuildStringWithEncoding",
                               [] { throw std::out_of_range("from the host"); });
    const std::string text = pairs(800);
    const AllocationSpy spy(scene.image);
    EXPECT_EQ(scene.build(text, encoding::utf32), nullptr);
    EXPECT_THAT(spy.sizes(), ElementsAre(Ge(802u)));
    EXPECT_EQ(spy.unfreed(), 0u);
    EXPECT_EQ(scene.host.takePendingException()->message, "from the host");
}

TEST(Utf32Buffer, GivesNilWhenThereIsNoMemory) {
    TextScene scene(hostTakesUtf16);
    const std::string text = pairs(800);
    AllocationSpy spy(scene.image);
    spy.failAll();
    EXPECT_EQ(scene.build(text, encoding::utf32), nullptr);
    EXPECT_THAT(scene.host.trace(), IsEmpty()) << "nothing is built, nothing raised";
    EXPECT_FALSE(scene.host.hasPendingException());
}

TEST(Utf32Buffer, IsAskedForWithTheLargestLength) {
    TextScene scene(hostTakesUtf16);
    AllocationSpy spy(scene.image);
    spy.failAll();
    EXPECT_EQ(scene.build("nobody reads this", 0x7FFFFFFF, encoding::utf32), nullptr);
    EXPECT_THAT(spy.sizes(), ElementsAre(Ge(0x7FFFFFFEu)));
}

TEST(Utf32ServicesOfANewHost, AreGivenTheLargestLength) {
    static std::int64_t recordedLength;
    TextScene scene(hostConverts);
    scene.host.services().replace(
        "REALBuildStringWithEncoding",
        +[](const unsigned char *, std::int32_t length, std::uint32_t) -> REALstringStruct * {
            recordedLength = length;
            return nullptr;
        });
    scene.build("nobody reads this", 0x7FFFFFFF, encoding::utf32);
    EXPECT_EQ(recordedLength, 0x7FFFFFFF);
}

TEST(Utf32ServicesOfANewHost, ConvertEvenWhenNothingWasBuilt) {
    TextScene scene(hostConverts);
    scene.host.services().answerNull("REALBuildStringWithEncoding");
    EXPECT_EQ(scene.build("A\0\0\0"sv, encoding::utf32), nullptr);
    EXPECT_THAT(scene.host.calls(),
                ElementsAre(R"(REALBuildStringWithEncoding("A\x00\x00\x00", 4, 0x0C000100) = nil)",
                            "REALConvertString(nil, 0x08000100) = nil"));
}
