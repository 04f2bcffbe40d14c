// Host strings from bytes: what holds for every encoding, and the encodings that are kept.

#include "TextScene.h"

#include <gmock/gmock.h>

#include <sys/mman.h>

#include <cstdint>
#include <limits>
#include <optional>
#include <ostream>
#include <string>
#include <string_view>

using testing::ElementsAre;
using testing::IsEmpty;

namespace {

using namespace std::string_view_literals;
namespace encoding = host::encoding;

constexpr std::uint32_t allEncodings[] = {
    encoding::macRoman, encoding::utf16, encoding::latin1, encoding::windowsLatin1,
    encoding::ascii,    encoding::utf8,  encoding::utf32,  encoding::unknown};

constexpr std::int64_t largestLength = 0x7FFFFFFF;

const HostOfVersion hostsOfEachPath[] = {
    {"Untold", std::nullopt}, {"Old", 2011.9}, {"Middle", 2012.5}, {"New", 2013.04}};

class UnicodeTextOnEachPath : public testing::TestWithParam<HostOfVersion> {
protected:
    TextScene scene_{GetParam().version};
};

// Encodings of single-byte and UTF-8 text, as they come in and as the host string declares them.
struct PlainCase {
    std::string name;
    std::string_view bytes;
    std::uint32_t encoding;
    std::string call; // as the host shows it, without the result
    std::string_view declared;
};

void PrintTo(const PlainCase &text, std::ostream *out) {
    *out << text.name;
}

const PlainCase plainCases[] = {
    {"AsciiBytesAsMacRoman", "abc", encoding::macRoman, R"(("abc", 3))", "0x00000600"},
    {"AsciiBytesAsWindowsLatin1", "abc", encoding::windowsLatin1, R"(("abc", 3))", "0x00000600"},
    {"AsciiBytesAsUnknown", "abc", encoding::unknown, R"(("abc", 3))", "0x00000600"},
    {"AllOfAsciiAsMacRoman", "\x00\x01\x7E\x7F"sv, encoding::macRoman, R"(("\x00\x01~\x7F", 4))",
     "0x00000600"},
    {"HighByteAsMacRoman", "\x80", encoding::macRoman, R"(("\x80", 1))", "0x00000000"},
    {"HighByteAsWindowsLatin1", "caf\xE9", encoding::windowsLatin1, R"(("caf\xE9", 4))",
     "0x00000500"},
    {"HighByteFirst", "\xE9t\xE9", encoding::windowsLatin1, R"(("\xE9t\xE9", 3))", "0x00000500"},
    {"HighByteInTheMiddle", "a\xFFz", encoding::unknown, R"(("a\xFFz", 3))", "0x0000FFFF"},
    {"Utf8AsUnknown", "\xC3\xA9", encoding::unknown, R"(("\xC3\xA9", 2))", "0x0000FFFF"},
    {"AsciiBytesAsUtf8", "abc", encoding::utf8, R"(("abc", 3))", "0x08000100"},
    {"Utf8",
     "Gr\xC3\xBC\xC3\x9F"
     "e",
     encoding::utf8, R"(("Gr\xC3\xBC\xC3\x9Fe", 7))", "0x08000100"},
    {"BrokenUtf8", "\xC3", encoding::utf8, R"(("\xC3", 1))", "0x08000100"},
    {"Ascii", "abc", encoding::ascii, R"(("abc", 3))", "0x00000600"},
    {"HighByteAsAscii", "\xE9", encoding::ascii, R"(("\xE9", 1))", "0x00000600"},
    {"AsciiBytesAsIsoLatin1", "abc", encoding::latin1, R"(("abc", 3))", "0x00000201"},
    {"HighByteAsIsoLatin1", "\xE9", encoding::latin1, R"(("\xE9", 1))", "0x00000201"},
    {"ZeroByte", "a\0b"sv, encoding::utf8, R"(("a\x00b", 3))", "0x08000100"},
    // Numbers of no encoding, close to some that are treated in a way of their own.
    {"SignBit", "abc", 0x80000000, R"(("abc", 3))", "0x80000000"},
    {"AllOnes", "abc", 0xFFFFFFFF, R"(("abc", 3))", "0xFFFFFFFF"},
    {"MacRomanInTheLowHalf", "abc", 0x00010000, R"(("abc", 3))", "0x00010000"},
    {"UnknownInTheLowHalf", "abc", 0x0001FFFF, R"(("abc", 3))", "0x0001FFFF"},
    {"Utf16WithSignBit", "abcd", 0x80000100, R"(("abcd", 4))", "0x80000100"},
    {"NextToUtf32", "abcd", 0x0C000101, R"(("abcd", 4))", "0x0C000101"},
};

class PlainText : public testing::TestWithParam<PlainCase> {};

constexpr auto utf16 = u"A\u00E9\U0001F600"sv;

// In the place of host services.
std::int64_t recordedLength;
const void *recordedBytes;

REALstringStruct *recordingBuild(const unsigned char *bytes, std::int32_t length) {
    recordedBytes = bytes;
    recordedLength = length;
    return nullptr;
}

} // namespace

TEST_P(UnicodeTextOnEachPath, IsNilForNullData) {
    for (const std::uint32_t encoding : allEncodings)
        for (const std::int64_t length : {std::int64_t{0}, std::int64_t{4}, largestLength})
            EXPECT_EQ(scene_.build(nullptr, length, encoding), nullptr) << encoding;
    EXPECT_THAT(scene_.host.trace(), IsEmpty());
}

TEST_P(UnicodeTextOnEachPath, IsNilForLengthsOutsideTheRange) {
    constexpr std::int64_t lengths[] = {0,
                                        -1,
                                        -4,
                                        largestLength + 1,
                                        0xFFFFFFFF,
                                        0x100000000,
                                        0x100000004, // 4 in the low half
                                        std::numeric_limits<std::int64_t>::min(),
                                        std::numeric_limits<std::int64_t>::max()};
    for (const std::uint32_t encoding : allEncodings)
        for (const std::int64_t length : lengths)
            EXPECT_EQ(scene_.build("text", length, encoding), nullptr)
                << length << " in " << encoding;
    EXPECT_THAT(scene_.host.trace(), IsEmpty());
}

TEST_P(UnicodeTextOnEachPath, IsPlainInTheSameWay) {
    EXPECT_EQ(scene_.host.text(scene_.build("caf\xE9", encoding::windowsLatin1)), "caf\xC3\xA9");
    EXPECT_THAT(scene_.host.calls(), ElementsAre(R"(REALBuildString("caf\xE9", 4) = String#1)",
                                                 "REALSetStringEncoding(String#1, 0x00000500)"));
}

TEST_P(UnicodeTextOnEachPath, IsUtf8FromUtf16) {
    const host::StringRef built = scene_.build(bytesOf(utf16), encoding::utf16);
    EXPECT_EQ(scene_.host.encodingOf(built), encoding::utf8);
    EXPECT_EQ(scene_.host.bytes(built), "A\xC3\xA9\xF0\x9F\x98\x80");
}

TEST_P(UnicodeTextOnEachPath, LeavesTheCallerOneReference) {
    for (const std::uint32_t encoding : allEncodings)
        EXPECT_EQ(scene_.host.references(scene_.build("A\0\0\0"sv, encoding)), 1) << encoding;
    EXPECT_THAT(scene_.host.liveStrings(), IsEmpty());
}

INSTANTIATE_TEST_SUITE_P(Host, UnicodeTextOnEachPath, testing::ValuesIn(hostsOfEachPath),
                         [](const auto &tested) { return tested.param.name; });

TEST_P(PlainText, IsBuiltAndThenDeclared) {
    TextScene scene;
    // Not to be told that some of the numbers are no encoding.
    scene.host.services().answerNull("REALSetStringEncoding");
    EXPECT_NE(scene.build(GetParam().bytes, GetParam().encoding), nullptr);
    EXPECT_THAT(scene.host.calls(), ElementsAre("REALBuildString" + GetParam().call + " = String#1",
                                                "REALSetStringEncoding(String#1, " +
                                                    std::string(GetParam().declared) + ")"));
}

INSTANTIATE_TEST_SUITE_P(Of, PlainText, testing::ValuesIn(plainCases),
                         [](const auto &tested) { return tested.param.name; });

TEST(PlainTextServices, AreGivenTheCallersOwnBytes) {
    TextScene scene;
    scene.host.services().replace("REALBuildString", recordingBuild);
    const std::string text(10'000, 'x');
    scene.build(text, encoding::windowsLatin1);
    EXPECT_EQ(recordedBytes, text.data());
    EXPECT_EQ(recordedLength, 10'000);
}

TEST(PlainTextServices, AreGivenTheLargestLength) {
    TextScene scene;
    scene.host.services().replace("REALBuildString", recordingBuild);
    for (const std::uint32_t encoding : {encoding::utf8, encoding::ascii, encoding::latin1}) {
        recordedLength = 0;
        scene.build("nobody reads this", largestLength, encoding);
        EXPECT_EQ(recordedLength, largestLength);
    }
}

TEST(PlainTextServices, SearchForHighBytesOnlyAsFarAsTheFirst) {
    // One page that can be read, and none behind it.
    const long page = 4096;
    void *pages = mmap(nullptr, 2 * page, PROT_NONE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
    ASSERT_NE(pages, MAP_FAILED);
    ASSERT_EQ(mprotect(pages, page, PROT_READ | PROT_WRITE), 0);
    auto *last = static_cast<char *>(pages) + page - 1;
    *last = '\x80';

    TextScene scene;
    scene.host.services().replace("REALBuildString", recordingBuild);
    for (const std::uint32_t encoding :
         {encoding::macRoman, encoding::windowsLatin1, encoding::unknown}) {
        recordedLength = 0;
        scene.build(last, largestLength, encoding);
        EXPECT_EQ(recordedLength, largestLength);
    }
    munmap(pages, 2 * page);
}
