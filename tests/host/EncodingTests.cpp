#include "host/core/UsageError.h"
#include "host/language/Encodings.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace {

using namespace host;
using namespace std::string_literals;

/// One text in every encoding that can hold it.
struct Sample {
    std::uint32_t encoding;
    std::string bytes;
};

void expectEveryPair(const std::vector<Sample> &samples) {
    for (const Sample &from : samples)
        for (const Sample &to : samples)
            EXPECT_EQ(convertBytes(from.bytes, from.encoding, to.encoding), to.bytes)
                << encodingName(from.encoding) << " to " << encodingName(to.encoding);
}

TEST(Encoding, PlainTextBetweenAllPairs) {
    expectEveryPair({{encoding::macRoman, "a~"},
                     {encoding::latin1, "a~"},
                     {encoding::windowsLatin1, "a~"},
                     {encoding::ascii, "a~"},
                     {encoding::utf8, "a~"},
                     {encoding::utf16, "a\0~\0"s},
                     {encoding::utf32, "a\0\0\0~\0\0\0"s}});
}

TEST(Encoding, AccentedLetterBetweenAllPairsThatHaveIt) {
    expectEveryPair({{encoding::macRoman, "\x8E"},
                     {encoding::latin1, "\xE9"},
                     {encoding::windowsLatin1, "\xE9"},
                     {encoding::utf8, "\xC3\xA9"},
                     {encoding::utf16, "\xE9\0"s},
                     {encoding::utf32, "\xE9\0\0\0"s}});
}

TEST(Encoding, EuroSignTellsWindowsFromIsoLatin1) {
    expectEveryPair({{encoding::windowsLatin1, "\x80"},
                     {encoding::macRoman, "\xDB"},
                     {encoding::utf8, "\xE2\x82\xAC"},
                     {encoding::utf16, "\xAC\x20"},
                     {encoding::utf32, "\xAC\x20\0\0"s}});
    EXPECT_EQ(convertBytes("\xE2\x82\xAC", encoding::utf8, encoding::latin1), "\x1A");
}

TEST(Encoding, CharactersPastTheFirstPlane) {
    expectEveryPair({{encoding::utf8, "\xF0\x9F\x98\x80"},
                     {encoding::utf16, "\x3D\xD8\x00\xDE"s},
                     {encoding::utf32, "\x00\xF6\x01\x00"s}});
}

TEST(Encoding, WhatDoesNotDecodeBecomesTheReplacementCharacter) {
    const std::string replacement = "\xEF\xBF\xBD";
    EXPECT_EQ(convertBytes("a\xFFz", encoding::utf8, encoding::utf16), "a\0\xFD\xFFz\0"s);
    EXPECT_EQ(convertBytes("a\xE9", encoding::ascii, encoding::utf8), "a" + replacement);
    EXPECT_EQ(convertBytes("\x3D\xD8z\0"s, encoding::utf16, encoding::utf8), replacement + "z");
    EXPECT_EQ(convertBytes("a\0z"s, encoding::utf16, encoding::utf8), "a" + replacement);
    EXPECT_EQ(convertBytes("\0\0\x11\0"s, encoding::utf32, encoding::utf8), replacement);
}

TEST(Encoding, WhatTheTargetLacksBecomesItsSubstitute) {
    EXPECT_EQ(convertBytes("a\xC3\xA9", encoding::utf8, encoding::ascii), "a\x1A");
}

TEST(Encoding, UnknownPassesBytesThrough) {
    const std::string bytes = "\0\xFF\x8E"s;
    for (const std::uint32_t other :
         {encoding::macRoman, encoding::utf16, encoding::latin1, encoding::windowsLatin1,
          encoding::ascii, encoding::utf8, encoding::utf32, encoding::unknown}) {
        EXPECT_EQ(convertBytes(bytes, encoding::unknown, other), bytes);
        EXPECT_EQ(convertBytes(bytes, other, encoding::unknown), bytes);
    }
}

TEST(Encoding, SameEncodingKeepsEvenWhatDoesNotDecode) {
    EXPECT_EQ(convertBytes("a\xFF", encoding::utf8, encoding::utf8), "a\xFF");
}

TEST(Encoding, EmbeddedZeroesAndLongTexts) {
    const std::string text = std::string(5000, 'x') + "\0\xC3\xA9"s;
    const std::string units = convertBytes(text, encoding::utf8, encoding::utf16);
    EXPECT_EQ(units.size(), 2 * 5002U);
    EXPECT_EQ(convertBytes(units, encoding::utf16, encoding::utf8), text);
}

TEST(Encoding, NumbersThatNameNone) {
    for (const std::uint32_t number : {1U, 0x0101U, 0x08000101U, 0xFFFFFFFFU}) {
        EXPECT_FALSE(isKnownEncoding(number));
        EXPECT_EQ(encodingName(number), "");
        EXPECT_THROW(convertBytes("a", number, encoding::utf8), UsageError);
        EXPECT_THROW(convertBytes("a", encoding::utf8, number), UsageError);
    }
}

TEST(Encoding, ShowsBytesOfUnknownEncodingAsTheyAre) {
    EXPECT_EQ(toUtf8("\x8E", encoding::unknown), "\x8E");
    EXPECT_EQ(toUtf8("\x8E", encoding::macRoman), "\xC3\xA9");
}

} // namespace
