// CFStringCreateWithBytes and CFStringCreateWithCharacters.

#import "Cocoa.h"

namespace {

class StringDecoding : public CocoaTest {
protected:
    static std::u16string decoded(std::string_view bytes, CFStringEncoding encoding,
                                  bool external = true) {
        const auto *data = reinterpret_cast<const UInt8 *>(bytes.data());
        const CFStringRef string = CFStringCreateWithBytes(
            kCFAllocatorDefault, data, static_cast<CFIndex>(bytes.size()), encoding, external);
        const std::u16string result = units(string);
        if (string != nullptr) {
            CFRelease(string);
        }
        return result;
    }
};

using namespace std::string_view_literals;
constexpr std::u16string_view refused = u"(null)";

TEST_F(StringDecoding, NoBytesGiveAnEmptyStringInEveryEncoding) {
    for (const CFStringEncoding encoding :
         {0U, 0x100U, 0x201U, 0x500U, 0x600U, 0x08000100U, 0x0C000100U, 0x10000100U, 0x0A01U}) {
        EXPECT_EQ(decoded({}, encoding), u"") << encoding;
    }
}

TEST_F(StringDecoding, NoBytesGiveAnEmptyStringUnderAnyNumber) {
    for (const CFStringEncoding encoding :
         {0x0001U, 0x0203U, 0x0FFFU, 0x1234U, 0xFFFFU, 0x12345678U, kCFStringEncodingInvalidId}) {
        EXPECT_EQ(decoded({}, encoding), u"") << encoding;
        EXPECT_EQ(decoded({}, encoding, false), u"") << encoding;
    }
}

TEST_F(StringDecoding, MacRomanAcceptsEveryByte) {
    std::string bytes;
    for (int byte = 0; byte < 256; ++byte) {
        bytes += static_cast<char>(byte);
    }
    const std::u16string text = decoded(bytes, kCFStringEncodingMacRoman);
    ASSERT_EQ(text.size(), 256U);
    for (std::size_t byte = 0; byte < 0x80; ++byte) {
        EXPECT_EQ(text[byte], byte);
    }
    EXPECT_EQ(text[0x80], u'\u00C4');
    EXPECT_EQ(text[0x8E], u'\u00E9');
    EXPECT_EQ(text[0xBD], u'\u03A9');
    EXPECT_EQ(text[0xDB], u'\u20AC');
    EXPECT_EQ(text[0xF0], u'\uF8FF');
    EXPECT_EQ(text[0xFF], u'\u02C7');
}

TEST_F(StringDecoding, LatinOneMapsBytesToTheSameNumbers) {
    EXPECT_EQ(decoded("a\x80\xE9\xFF", kCFStringEncodingISOLatin1), u"a\u0080\u00E9\u00FF");
}

TEST_F(StringDecoding, AsciiTakesHighBytesAsLatinOne) {
    EXPECT_EQ(decoded("a\xE9", kCFStringEncodingASCII), u"a\u00E9");
}

TEST_F(StringDecoding, WindowsLatinOneHasFiveHoles) {
    EXPECT_EQ(decoded("\x80\x9F\xE9", kCFStringEncodingWindowsLatin1), u"\u20AC\u0178\u00E9");
    for (const std::string_view hole : {"\x81"sv, "\x8D"sv, "\x8F"sv, "\x90"sv, "\x9D"sv}) {
        EXPECT_EQ(decoded(hole, kCFStringEncodingWindowsLatin1), refused);
    }
}

TEST_F(StringDecoding, Utf8OfEveryLength) {
    EXPECT_EQ(decoded("a\0z\xC3\xBC\xE2\x82\xAC\xF0\x9F\x98\x80"sv, kCFStringEncodingUTF8),
              u"a\0z\u00FC\u20AC\U0001F600"sv);
}

TEST_F(StringDecoding, Utf8MarkIsDroppedOnce) {
    EXPECT_EQ(decoded("\xEF\xBB\xBF"
                      "a",
                      kCFStringEncodingUTF8),
              u"a");
    EXPECT_EQ(decoded("\xEF\xBB\xBF\xEF\xBB\xBF", kCFStringEncodingUTF8), u"\uFEFF");
}

TEST_F(StringDecoding, InvalidUtf8IsRefused) {
    for (const std::string_view bytes :
         {"a\x80"sv, "\xC3"sv, "\xC0\xAF"sv, "\xE2\x82"sv, "\xED\xA0\x80"sv, "\xF4\x90\x80\x80"sv,
          "\xFF"sv, "\xF8\x88\x80\x80\x80"sv}) {
        EXPECT_EQ(decoded(bytes, kCFStringEncodingUTF8), refused);
    }
}

TEST_F(StringDecoding, AStrayCopyrightSignOfMacRomanBecomesAReplacement) {
    EXPECT_EQ(decoded("\xA9 1994", kCFStringEncodingUTF8), u"\uFFFD 1994");
}

TEST_F(StringDecoding, ExternalUtf16IsBigEndianUnlessMarked) {
    EXPECT_EQ(decoded("\0A\xD8\x3D\xDE\x00"sv, kCFStringEncodingUTF16), u"A\U0001F600");
    EXPECT_EQ(decoded("\xFE\xFF\0A"sv, kCFStringEncodingUTF16), u"A");
    EXPECT_EQ(decoded("\xFF\xFE"
                      "A\0"sv,
                      kCFStringEncodingUTF16),
              u"A");
    EXPECT_EQ(decoded("\xFF\xFE\xFF\xFE"sv, kCFStringEncodingUTF16), u"\uFEFF");
}

TEST_F(StringDecoding, InternalUtf16IsInHostOrderAndKeepsTheMark) {
    EXPECT_EQ(decoded("A\0"sv, kCFStringEncodingUTF16, false), u"A");
    EXPECT_EQ(decoded("\xFF\xFE"
                      "A\0"sv,
                      kCFStringEncodingUTF16, false),
              u"\uFEFFA");
}

TEST_F(StringDecoding, Utf16OfANamedOrderKeepsTheMark) {
    EXPECT_EQ(decoded("\xFE\xFF\0A"sv, kCFStringEncodingUTF16BE), u"\uFEFFA");
    EXPECT_EQ(decoded("\xFF\xFE"
                      "A\0"sv,
                      kCFStringEncodingUTF16LE),
              u"\uFEFFA");
}

TEST_F(StringDecoding, AByteIsNoUtf16) {
    for (const std::string_view byte : {"a"sv, "\0"sv, "\xFF"sv}) {
        EXPECT_EQ(decoded(byte, kCFStringEncodingUTF16), refused);
        EXPECT_EQ(decoded(byte, kCFStringEncodingUTF16BE), refused);
        EXPECT_EQ(decoded(byte, kCFStringEncodingUTF16LE), refused);
    }
    EXPECT_EQ(decoded("\xFE\xFF"sv, kCFStringEncodingUTF16), u"") << "a mark is one unit";
    EXPECT_EQ(decoded("a", kCFStringEncodingUTF16, false), u"") << "no unit is looked at";
}

TEST_F(StringDecoding, ThreeBytesAreNoUtf32) {
    for (const std::string_view bytes : {"a"sv, "\0\0"sv, "\0\0\xFE"sv}) {
        for (const bool external : {true, false}) {
            EXPECT_EQ(decoded(bytes, kCFStringEncodingUTF32, external), refused);
            EXPECT_EQ(decoded(bytes, kCFStringEncodingUTF32BE, external), refused);
            EXPECT_EQ(decoded(bytes, kCFStringEncodingUTF32LE, external), refused);
        }
    }
    EXPECT_EQ(decoded("\0\0\xFE\xFF"sv, kCFStringEncodingUTF32), u"");
    EXPECT_EQ(decoded("\0\0\0A\0"sv, kCFStringEncodingUTF32), u"A");
}

TEST_F(StringDecoding, Utf16AcceptsLoneSurrogatesAndDropsAnOddByte) {
    const std::u16string text = decoded("\xD8\x00\0A\0"sv, kCFStringEncodingUTF16);
    ASSERT_EQ(text.size(), 2U);
    EXPECT_EQ(text[0], 0xD800);
    EXPECT_EQ(text[1], u'A');
}

TEST_F(StringDecoding, ExternalUtf32IsBigEndianUnlessMarked) {
    EXPECT_EQ(decoded("\0\0\0A\0\x01\xF6\0"sv, kCFStringEncodingUTF32), u"A\U0001F600");
    EXPECT_EQ(decoded("\0\0\xFE\xFF\0\0\0A"sv, kCFStringEncodingUTF32), u"A");
    EXPECT_EQ(decoded("\xFF\xFE\0\0"
                      "A\0\0\0"sv,
                      kCFStringEncodingUTF32),
              u"A");
    EXPECT_EQ(decoded("A\0\0\0"sv, kCFStringEncodingUTF32LE), u"A");
}

TEST_F(StringDecoding, InternalUtf32IsReadLikeExternal) {
    EXPECT_EQ(decoded("\0\0\0A"sv, kCFStringEncodingUTF32, false), u"A");
    EXPECT_EQ(decoded("A\0\0\0"sv, kCFStringEncodingUTF32, false), refused) << "beyond U+10FFFF";
    EXPECT_EQ(decoded("\0\0\xFE\xFF\0\0\0A"sv, kCFStringEncodingUTF32, false), u"A");
    EXPECT_EQ(decoded("\xFF\xFE\0\0"
                      "A\0\0\0"sv,
                      kCFStringEncodingUTF32, false),
              u"A");
}

TEST_F(StringDecoding, Utf32RefusesWhatIsNoCharacter) {
    EXPECT_EQ(decoded("\0\x10\xFF\xFF"sv, kCFStringEncodingUTF32), u"\U0010FFFF");
    EXPECT_EQ(decoded("\0\x11\0\0"sv, kCFStringEncodingUTF32), refused);
    EXPECT_EQ(decoded("\0\0\xD8\0"sv, kCFStringEncodingUTF32), refused);
    EXPECT_EQ(decoded("\0\0\xDF\xFF"sv, kCFStringEncodingUTF32), refused);
    EXPECT_EQ(decoded("\0\0\0A\0\0"sv, kCFStringEncodingUTF32), u"A");
}

TEST_F(StringDecoding, OtherEncodingsGoByTheirNumber) {
    EXPECT_EQ(decoded("\xB1", 0x0202), u"\u0105");
    EXPECT_EQ(decoded("\xC1", 0x0A02), u"\u0430");
    EXPECT_EQ(decoded("\x82\xA0", 0x0A01), u"\u3042");
    EXPECT_EQ(decoded("\x82", 0x0A01), refused);
}

TEST_F(StringDecoding, AsciiIsTakenInEverySupersetOfIt) {
    // Of Mac OS, ISO 8859, a family without members, DOS, Windows, ASCII itself, another without
    // members, EUC, and the rest.
    for (const CFStringEncoding encoding :
         {0x0000U, 0x0002U, 0x0006U, 0x0025U, 0x00FFU, 0x0201U,  0x0203U,  0x0210U,    0x0300U,
          0x0400U, 0x04FFU, 0x0500U, 0x05FFU, 0x0600U, 0x0700U,  0x0777U,  0x0920U,    0x09FFU,
          0x0A00U, 0x0A02U, 0x0A08U, 0x0B01U, 0x0BFEU, 0x10000U, 0x10001U, 0x08000100U}) {
        EXPECT_EQ(decoded("a\0bc\x7F"sv, encoding), u"a\0bc\x7F"sv) << std::hex << encoding;
    }
}

TEST_F(StringDecoding, AsciiUnderAnyOtherNumberNeedsAConverter) {
    for (const CFStringEncoding encoding : {0x0001U,
                                            0x0004U,
                                            0x0005U,
                                            0x0021U,
                                            0x0022U,
                                            0x0098U,
                                            0x0101U,
                                            0x01FFU,
                                            0x0206U,
                                            0x0601U,
                                            0x06FFU,
                                            0x0800U,
                                            0x08FFU,
                                            0x0A05U,
                                            0x0A10U,
                                            0x0BFFU,
                                            0x0C00U,
                                            0x0D00U,
                                            0x1234U,
                                            0xFF00U,
                                            0xFFFFU,
                                            0x10000600U,
                                            kCFStringEncodingInvalidId}) {
        EXPECT_EQ(decoded("abc", encoding), refused) << std::hex << encoding;
    }
    EXPECT_EQ(decoded("abc\\", 0x0A01), u"abc\\") << "Shift-JIS has one";
}

TEST_F(StringDecoding, MoreThanAsciiIsRefusedInUnknownEncodings) {
    for (const CFStringEncoding encoding : {0x0300U, 0x0777U, 0x10000U, 0xFFFFU}) {
        EXPECT_EQ(decoded("abc\x80", encoding), refused) << std::hex << encoding;
    }
}

TEST_F(StringDecoding, CharactersAreTakenAsTheyAre) {
    const UniChar characters[] = {0xFEFF, 'a', 0xD800, 0};
    const CFStringRef string = CFStringCreateWithCharacters(nullptr, characters, 4);
    const std::u16string text = units(string);
    ASSERT_EQ(text.size(), 4U);
    EXPECT_TRUE(std::equal(text.begin(), text.end(), characters));
    EXPECT_EQ([(NSString *)string retainCount], 1U);
    CFRelease(string);
}

TEST_F(StringDecoding, NoCharactersGiveAnEmptyString) {
    const CFStringRef string = CFStringCreateWithCharacters(nullptr, nullptr, 0);
    EXPECT_EQ(units(string), u"");
    CFRelease(string);
}

TEST_F(StringDecoding, NegativeLengthsEndTheProcess) {
    const UInt8 byte = 'a';
    const UniChar unit = 'a';
    EXPECT_DEATH(CFStringCreateWithBytes(nullptr, &byte, -1, kCFStringEncodingUTF8, true),
                 "CFStringCreateWithBytes: there are no such bytes");
    EXPECT_DEATH(CFStringCreateWithBytes(nullptr, nullptr, 1, kCFStringEncodingUTF8, true),
                 "no such bytes");
    EXPECT_DEATH(CFStringCreateWithCharacters(nullptr, &unit, -1), "no such characters");
}

} // namespace
