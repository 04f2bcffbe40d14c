// Cocoa strings from the bytes of host strings, encoding by encoding.

#import "HostStringScene.h"
#import "TracedObject.h"

#include <gmock/gmock.h>

using namespace std::string_literals;

namespace {

struct Row {
    const char *name;
    std::uint32_t encoding;
    std::string bytes;
    std::u16string text;
    const char *creation; ///< the call that makes the Cocoa string
};

void PrintTo(const Row &row, std::ostream *out) {
    *out << row.name;
}

class HostStringBytes : public testing::TestWithParam<Row> {};

} // namespace

TEST_P(HostStringBytes, AreReadInTheirEncoding) {
    HostStringScene scene;
    scene.handOutNoCFString();
    NSString *result = scene.convertBytes(GetParam().bytes, GetParam().encoding);
    ASSERT_NE(result, nil);
    EXPECT_EQ(unitsOf(result), GetParam().text);
    ASSERT_THAT(scene.host.calls(), testing::SizeIs(9));
    EXPECT_EQ(scene.host.calls()[3], "REALLockString(String#1)");
    EXPECT_EQ(scene.host.calls()[7], GetParam().creation);
    EXPECT_EQ(scene.host.calls()[8], "REALUnlockString(String#1)");
}

INSTANTIATE_TEST_SUITE_P(
    Of, HostStringBytes,
    testing::Values(
        Row{"UTF8", 0x08000100,
            "Gr\xC3\xBC\xC3\x9F"
            "e \xF0\x9F\x98\x80",
            u"Gr\u00FC\u00DFe \U0001F600",
            R"(CFStringCreateWithBytes("Gr\xC3\xBC\xC3\x9Fe \xF0\x9F\x98\x80", 12, 0x08000100, true))"},
        // From outside and without a mark, Core Foundation takes it to be big-endian.
        Row{"UTF32", 0x0C000100, "\0\0\0A\0\x01\xF6\0"s, u"A\U0001F600",
            R"(CFStringCreateWithBytes("\x00\x00\x00A\x00\x01\xF6\x00", 8, 0x0C000100, true))"},
        Row{"UTF32WithMark", 0x0C000100, "\xFF\xFE\0\0A\0\0\0"s, u"A",
            R"(CFStringCreateWithBytes("\xFF\xFE\x00\x00A\x00\x00\x00", 8, 0x0C000100, true))"},
        Row{"Latin1", 0x0201, "A\x80\xE9\xFF", u"A\u0080\u00E9\u00FF",
            R"(CFStringCreateWithBytes("A\x80\xE9\xFF", 4, 0x00000201, true))"},
        Row{"WindowsLatin1", 0x0500, "A\x80\xE9\x9F", u"A\u20AC\u00E9\u0178",
            R"(CFStringCreateWithBytes("A\x80\xE9\x9F", 4, 0x00000500, true))"},
        Row{"MacRoman", 0, "A\x80\x8E\xF0", u"A\u00C4\u00E9\uF8FF",
            R"(CFStringCreateWithBytes("A\x80\x8E\xF0", 4, 0x00000000, true))"},
        Row{"ASCII", 0x0600, "plain", u"plain",
            R"(CFStringCreateWithBytes("plain", 5, 0x00000600, true))"},
        Row{"UTF16", 0x0100, "A\0\xE9\0\x3D\xD8\0\xDE"s, u"A\u00E9\U0001F600",
            "CFStringCreateWithCharacters(pointer, 4)"},
        Row{"UTF16OfSevenBytes", 0x0100, "a\0b\0c\0d"s, u"abc",
            "CFStringCreateWithCharacters(pointer, 3)"},
        Row{"UTF16OfOneByte", 0x0100, "a", u"", "CFStringCreateWithCharacters(pointer, 0)"},
        Row{"UTF16WithMark", 0x0100,
            "\xFF\xFE"
            "a\0"s,
            u"\uFEFFa", "CFStringCreateWithCharacters(pointer, 2)"},
        Row{"UTF16WithForeignMark", 0x0100, "\xFE\xFF\0a"s, u"\uFFFE\u6100",
            "CFStringCreateWithCharacters(pointer, 2)"},
        Row{"UTF16WithLoneSurrogates", 0x0100, "\0\xDE\x3D\xD8"s, std::u16string({0xDE00, 0xD83D}),
            "CFStringCreateWithCharacters(pointer, 2)"},
        // What has no row of its own goes to Core Foundation by its number.
        Row{"Latin2", 0x0202, "\xB1", u"\u0105",
            R"(CFStringCreateWithBytes("\xB1", 1, 0x00000202, true))"},
        Row{"WindowsCyrillic", 0x0502, "\xC6", u"\u0416",
            R"(CFStringCreateWithBytes("\xC6", 1, 0x00000502, true))"},
        Row{"UTF16BigEndian", 0x10000100, "\0a"s, u"a",
            R"(CFStringCreateWithBytes("\x00a", 2, 0x10000100, true))"},
        // ASCII counts in whatever is a superset of it by its number, known or not.
        Row{"AsciiInAnEncodingWithoutAConverter", 0x0777, "abc", u"abc",
            R"(CFStringCreateWithBytes("abc", 3, 0x00000777, true))"},
        Row{"EmptyInAnUnknownEncoding", 0x0DAD, "", u"",
            R"(CFStringCreateWithBytes("", 0, 0x00000DAD, true))"},
        Row{"Empty", 0x08000100, "", u"", R"(CFStringCreateWithBytes("", 0, 0x08000100, true))"},
        Row{"ZeroBytesAmongOthers", 0x08000100, "a\0b\0"s, u"a\0b\0"s,
            R"(CFStringCreateWithBytes("a\x00b\x00", 4, 0x08000100, true))"}),
    [](const auto &tested) { return std::string(tested.param.name); });

namespace {

struct Malformed {
    const char *name;
    std::uint32_t encoding;
    std::string bytes;
};

void PrintTo(const Malformed &malformed, std::ostream *out) {
    *out << malformed.name;
}

class MalformedHostString : public testing::TestWithParam<Malformed> {};

} // namespace

TEST_P(MalformedHostString, IsNil) {
    HostStringScene scene;
    scene.handOutNoCFString();
    EXPECT_EQ(scene.convertBytes(GetParam().bytes, GetParam().encoding), nil);
    EXPECT_EQ(scene.host.calls().back(), "REALUnlockString(String#1)");
    EXPECT_EQ(scene.host.references(scene.string.handle()), 1);
}

INSTANTIATE_TEST_SUITE_P(With, MalformedHostString,
                         testing::Values(Malformed{"StrayUTF8Byte", 0x08000100, "a\x80"},
                                         Malformed{"UTF8CutShort", 0x08000100, "a\xE2\x82"},
                                         Malformed{"OverlongUTF8", 0x08000100, "\xC0\x80"},
                                         Malformed{"SurrogateInUTF8", 0x08000100, "\xED\xA0\x80"},
                                         Malformed{"SurrogateInUTF32", 0x0C000100, "\0\0\xD8\0"s},
                                         Malformed{"UTF32BeyondUnicode", 0x0C000100, "\0\x11\0\0"s},
                                         Malformed{"UTF32CutShort", 0x0C000100, "\0\0\0"s},
                                         Malformed{"UTF16BigEndianCutShort", 0x10000100, "a"},
                                         Malformed{"HoleOfWindowsLatin1", 0x0500, "a\x81"},
                                         Malformed{"MoreThanAsciiUnknown", 0x0777, "abc\x80"},
                                         Malformed{"UnknownToCoreFoundation", 0x0DAD, "abc"}),
                         [](const auto &tested) { return std::string(tested.param.name); });

// These encodings have a meaning for every byte, or Core Foundation gives them one.
TEST(HostStringBytesOfAnyValue, AreTextInThreeEncodings) {
    HostStringScene scene;
    scene.handOutNoCFString();
    std::string every;
    for (int byte = 0; byte < 256; ++byte)
        every += static_cast<char>(byte);
    for (const std::uint32_t encoding :
         {host::encoding::macRoman, host::encoding::latin1, host::encoding::unknown}) {
        SCOPED_TRACE(encoding);
        EXPECT_EQ([scene.convertBytes(every, encoding) length], 256u);
    }
    EXPECT_EQ([scene.convertBytes(every, host::encoding::utf16) length], 128u);
}

TEST(HostStringBytesThatCoreFoundationRefuses, AreNilInEveryEncoding) {
    HostStringScene scene;
    scene.handOutNoCFString();
    scene.creation.answer(nullptr);
    for (const std::uint32_t encoding :
         {host::encoding::macRoman, host::encoding::utf16, host::encoding::latin1,
          host::encoding::windowsLatin1, host::encoding::ascii, host::encoding::utf8,
          host::encoding::utf32, host::encoding::unknown, 0x0202u}) {
        SCOPED_TRACE(encoding);
        EXPECT_EQ(scene.convertBytes("abcd", encoding), nil);
        EXPECT_EQ(scene.host.references(scene.string.handle()), 1);
    }
}

TEST(LongHostString, IsReadWhole) {
    HostStringScene scene;
    scene.handOutNoCFString();
    const std::string bytes(1'000'000, 'x');
    EXPECT_EQ(unitsOf(scene.convertBytes(bytes, host::encoding::utf8)),
              std::u16string(1'000'000, u'x'));
}
