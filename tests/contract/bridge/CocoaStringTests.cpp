// CFString2RBString, the one way from a Cocoa string to a host string: text of every kind.

#include "CocoaText.h"
#include "CoreFoundationSpy.h"

#include <gmock/gmock.h>

#include <string>

using testing::ElementsAre;
using testing::IsEmpty;

namespace {

std::u16string utf16(char32_t codePoint) {
    if (codePoint < 0x10000)
        return {static_cast<char16_t>(codePoint)};
    codePoint -= 0x10000;
    return {static_cast<char16_t>(0xD800 | codePoint >> 10),
            static_cast<char16_t>(0xDC00 | (codePoint & 0x3FF))};
}

std::string utf8(char32_t codePoint) {
    const auto continuation = [codePoint](int shift) {
        return static_cast<char>(0x80 | (codePoint >> shift & 0x3F));
    };
    if (codePoint < 0x80)
        return {static_cast<char>(codePoint)};
    if (codePoint < 0x800)
        return {static_cast<char>(0xC0 | codePoint >> 6), continuation(0)};
    if (codePoint < 0x10000)
        return {static_cast<char>(0xE0 | codePoint >> 12), continuation(6), continuation(0)};
    return {static_cast<char>(0xF0 | codePoint >> 18), continuation(12), continuation(6),
            continuation(0)};
}

} // namespace

TEST_F(CocoaText, NilGivesNilWithoutACall) {
    const CoreFoundationSpy spy(loaded.image);
    EXPECT_EQ(convert(nullptr).handle(), nullptr);
    EXPECT_THAT(spy.calls(), IsEmpty());
    EXPECT_THAT(loaded.host.trace(), IsEmpty());
}

TEST_F(CocoaText, EmptyStringGivesNilAndIsNotRead) {
    const CoreFoundationSpy spy(loaded.image);
    EXPECT_EQ(convert(u"").handle(), nullptr);
    EXPECT_THAT(spy.calls(), ElementsAre("CFStringGetLength"));
    EXPECT_THAT(loaded.host.trace(), IsEmpty());
}

TEST_F(CocoaText, IsDeclaredUTF8AndOwnedByTheCaller) {
    const auto string = convert(u"abc");
    EXPECT_EQ(loaded.host.bytes(string), "abc");
    EXPECT_EQ(loaded.host.encodingOf(string), host::encoding::utf8);
    EXPECT_EQ(loaded.host.references(string), 1);
}

TEST_F(CocoaText, IsBuiltByTheseHostCallsAlone) {
    convert(u"Gr\u00FC\u00DFe");
    EXPECT_THAT(loaded.host.trace(),
                ElementsAre("find REALBuildString",
                            R"(REALBuildString("Gr\xC3\xBC\xC3\x9Fe", 7) = String#1)",
                            "find REALSetStringEncoding",
                            "REALSetStringEncoding(String#1, 0x08000100)"));
}

TEST_F(CocoaText, OfFiveCharactersMayBeSevenBytes) {
    EXPECT_EQ(bytesOf(u"Gr\u00FC\u00DFe"), "Gr\xC3\xBC\xC3\x9F"
                                           "e");
}

TEST_F(CocoaText, IsNotNormalized) {
    EXPECT_EQ(bytesOf(u"u\u0308"), "u\xCC\x88");
    EXPECT_EQ(bytesOf(u"\u00FC"), "\xC3\xBC");
    EXPECT_EQ(bytesOf(u"\u212B"), "\xE2\x84\xAB");
}

TEST_F(CocoaText, KeepsAByteOrderMark) {
    EXPECT_EQ(bytesOf(u"\uFEFFa"), "\xEF\xBB\xBF"
                                   "a");
}

TEST_F(CocoaText, OfEachPlaneKeepsItsCharacter) {
    for (char32_t plane = 0; plane < 17; ++plane)
        for (const char32_t place : {0x0041u, 0x1234u, 0xFFFDu}) {
            const char32_t codePoint = plane << 16 | place;
            SCOPED_TRACE(static_cast<unsigned>(codePoint));
            EXPECT_EQ(bytesOf(utf16(codePoint)), utf8(codePoint));
        }
}

TEST_F(CocoaText, KeepsTheCharactersAtTheBordersOfUTF8Lengths) {
    for (const char32_t codePoint :
         {0x1u, 0x7Fu, 0x80u, 0x7FFu, 0x800u, 0xD7FFu, 0xE000u, 0xFFFFu, 0x10000u, 0x10FFFFu}) {
        SCOPED_TRACE(static_cast<unsigned>(codePoint));
        EXPECT_EQ(bytesOf(utf16(codePoint)), utf8(codePoint));
    }
}

TEST_F(CocoaText, EndsBeforeTheFirstZero) {
    EXPECT_EQ(bytesOf(std::u16string(u"ab\0cd\0", 6)), "ab");
    EXPECT_EQ(bytesOf(repeated(u"x", 150) + std::u16string(u"\0y", 2)), repeated("x", 150));
}

TEST_F(CocoaText, StartingWithZeroGivesNilWithoutAHostCall) {
    EXPECT_EQ(convert(std::u16string(u"\0ab", 3)).handle(), nullptr);
    EXPECT_EQ(convert(std::u16string(150, u'\0')).handle(), nullptr);
    EXPECT_THAT(loaded.host.trace(), IsEmpty());
}

TEST_F(CocoaText, WithALoneSurrogateGivesNilWithoutAHostCall) {
    const std::u16string high{0xD83D};
    const std::u16string low{0xDE00};
    for (const std::u16string &units :
         {high, low, high + u"abc", low + u"abc", u"abc" + high, u"abc" + low, u"a" + high + u"b",
          u"a" + low + u"b", low + high, high + high + low, high + repeated(u"x", 150),
          repeated(u"x", 150) + low}) {
        SCOPED_TRACE(testing::PrintToString(units));
        EXPECT_EQ(convert(units).handle(), nullptr);
    }
    EXPECT_THAT(loaded.host.trace(), IsEmpty());
}

TEST_F(CocoaText, OfNinetyNineUnitsFitsHoweverManyBytesEachTakes) {
    EXPECT_EQ(bytesOf(repeated(u"x", 99)), repeated("x", 99));
    EXPECT_EQ(bytesOf(repeated(u"\u00FC", 99)), repeated("\xC3\xBC", 99));
    EXPECT_EQ(bytesOf(repeated(u"\u4E16", 99)), repeated("\xE4\xB8\x96", 99));
    EXPECT_EQ(bytesOf(repeated(u"\U0001F600", 49) + u"x"), repeated("\xF0\x9F\x98\x80", 49) + "x");
}

TEST_F(CocoaText, OfAHundredUnitsFitsHoweverManyBytesEachTakes) {
    EXPECT_EQ(bytesOf(repeated(u"x", 100)), repeated("x", 100));
    EXPECT_EQ(bytesOf(repeated(u"\u4E16", 100)), repeated("\xE4\xB8\x96", 100));
    EXPECT_EQ(bytesOf(repeated(u"\U0001F600", 50)), repeated("\xF0\x9F\x98\x80", 50));
}

TEST_F(CocoaText, OfAMillionUnitsIsWhole) {
    const auto string = convert(repeated(u"0123\u4E16\U0001F600\u00FC56", 100'000));
    EXPECT_TRUE(loaded.host.bytes(string) == repeated("0123\xE4\xB8\x96\xF0\x9F\x98\x80\xC3\xBC"
                                                      "56",
                                                      100'000));
}

namespace {

struct HostVersion {
    const char *name;
    std::optional<double> version;
};
void PrintTo(const HostVersion &version, std::ostream *stream) {
    *stream << version.name;
}

class CocoaTextOnHost : public testing::TestWithParam<HostVersion> {};

INSTANTIATE_TEST_SUITE_P(, CocoaTextOnHost,
                         testing::Values(HostVersion{"Untold", std::nullopt},
                                         HostVersion{"Before2012", 2011.0},
                                         HostVersion{"Of2012", 2012.0},
                                         HostVersion{"Of2013", 2013.0},
                                         HostVersion{"New", 2013.04}),
                         [](const auto &parameter) { return parameter.param.name; });

} // namespace

TEST_P(CocoaTextOnHost, OfAnyVersionIsBuiltInTheSameWay) {
    LoadedPlugin loaded({.version = GetParam().version});
    convertedText(loaded.image, CocoaString(u"\u4E16"));
    EXPECT_THAT(loaded.host.calls(), ElementsAre(R"(REALBuildString("\xE4\xB8\x96", 3) = String#1)",
                                                 "REALSetStringEncoding(String#1, 0x08000100)"));
}
