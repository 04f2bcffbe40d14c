// CFStringGetLength, CFStringGetCharacters, CFStringGetCString, mutable copies and normalization.

#import "Cocoa.h"

/// Has only what a string must have.
@interface MinimalString : NSString {
@public
    std::u16string text;
}
@end

@implementation MinimalString

- (NSUInteger)length {
    return text.size();
}

- (unichar)characterAtIndex:(NSUInteger)index {
    return text.at(index);
}

@end

namespace {

class StringReading : public CocoaTest {
protected:
    struct CString {
        bool succeeded;
        std::string bytes; // of the whole buffer
    };

    static CString cString(std::u16string_view text, std::size_t bufferSize,
                           CFStringEncoding encoding = kCFStringEncodingUTF8) {
        std::string buffer(bufferSize, '#');
        const Boolean succeeded = CFStringGetCString((CFStringRef)nsString(text), buffer.data(),
                                                     static_cast<CFIndex>(bufferSize), encoding);
        return {.succeeded = succeeded != 0, .bytes = buffer};
    }

    static bool hasCString(std::u16string_view text, CFStringEncoding encoding) {
        return cString(text, 6 * text.size() + 1, encoding).succeeded;
    }
};

using namespace std::string_literals;
constexpr char16_t highSurrogate[] = {u'a', 0xD83D, u'b'};
constexpr char16_t lowSurrogate[] = {u'a', 0xDE00};
constexpr char16_t highAtTheEnd[] = {u'a', 0xD83D};

TEST_F(StringReading, LengthCountsUnits) {
    EXPECT_EQ(CFStringGetLength((CFStringRef)nsString(u"")), 0);
    EXPECT_EQ(CFStringGetLength((CFStringRef)nsString(u"a\U0001F600")), 3);
}

TEST_F(StringReading, CharactersOfARange) {
    UniChar buffer[4] = {1, 2, 3, 4};
    CFStringGetCharacters((CFStringRef) @"abcd", CFRangeMake(1, 2), buffer);
    EXPECT_THAT(buffer, testing::ElementsAre('b', 'c', 3, 4));
}

TEST_F(StringReading, CStringFillsTheBufferExactly) {
    EXPECT_EQ(cString(u"abc", 4).bytes, "abc\0"s);
    EXPECT_TRUE(cString(u"abc", 4).succeeded);
    EXPECT_EQ(cString(u"abc", 6).bytes, "abc\0##"s);
    EXPECT_EQ(cString(u"Gr\u00FC\u00DFe", 8).bytes, "Gr\xC3\xBC\xC3\x9F"
                                                    "e\0"s);
}

TEST_F(StringReading, CStringFailsWithoutRoomForTheTerminator) {
    EXPECT_FALSE(cString(u"abc", 3).succeeded);
    EXPECT_EQ(cString(u"abc", 3).bytes[0], '\0');
    EXPECT_FALSE(cString(u"\u00FC", 2).succeeded);
    EXPECT_FALSE(cString(u"", 0).succeeded);
    EXPECT_TRUE(cString(u"", 1).succeeded);
}

TEST_F(StringReading, EmbeddedZeroIsWrittenOut) {
    EXPECT_EQ(cString(std::u16string_view(u"a\0b", 3), 4).bytes, "a\0b\0"s);
}

TEST_F(StringReading, LoneSurrogatesHaveNoUtf8) {
    EXPECT_FALSE(hasCString({highSurrogate, 3}, kCFStringEncodingUTF8));
    EXPECT_FALSE(hasCString({lowSurrogate, 2}, kCFStringEncodingUTF8));
    EXPECT_FALSE(hasCString({highAtTheEnd, 2}, kCFStringEncodingUTF8));
}

TEST_F(StringReading, LongTextIsWrittenWholeAndPairsStayTogether) {
    // A pair at every offset modulo two, across whatever pieces the text is read in.
    for (const std::size_t lead : {0U, 1U}) {
        std::u16string text(lead, u'x');
        std::string expected(lead, 'x');
        for (int count = 0; count < 500; ++count) {
            text += u"\U0001F600";
            expected += "\xF0\x9F\x98\x80";
        }
        expected += '\0';
        EXPECT_EQ(cString(text, expected.size()).bytes, expected);
        EXPECT_FALSE(cString(text, expected.size() - 1).succeeded);
    }
}

TEST_F(StringReading, EncodingsWithoutTheCharacterFail) {
    EXPECT_TRUE(hasCString(u"az\x7F", kCFStringEncodingASCII));
    EXPECT_FALSE(hasCString(u"\u00E9", kCFStringEncodingASCII));
    EXPECT_EQ(cString(u"\u00E9", 2, kCFStringEncodingISOLatin1).bytes, "\xE9\0"s);
    EXPECT_FALSE(hasCString(u"\u20AC", kCFStringEncodingISOLatin1));
    EXPECT_EQ(cString(u"\u20AC", 2, kCFStringEncodingWindowsLatin1).bytes, "\x80\0"s);
    EXPECT_EQ(cString(u"\u00E9", 2, kCFStringEncodingMacRoman).bytes, "\x8E\0"s);
    EXPECT_FALSE(hasCString(u"\u3042", kCFStringEncodingMacRoman));
    EXPECT_FALSE(hasCString(u"a", 0xFFFF));
}

TEST_F(StringReading, Utf16IsWrittenInHostOrder) {
    EXPECT_EQ(cString(u"a\u00FC", 5, kCFStringEncodingUTF16).bytes, "a\0\xFC\0\0"s);
}

TEST_F(StringReading, AStringThatOnlyHasLengthAndCharactersWillDo) {
    MinimalString *const string = [[[MinimalString alloc] init] autorelease];
    string->text = u"Gr\u00FC\u00DFe";
    char buffer[8] = {};
    EXPECT_EQ(CFStringGetLength((CFStringRef)string), 5);
    EXPECT_TRUE(CFStringGetCString((CFStringRef)string, buffer, 8, kCFStringEncodingUTF8));
    EXPECT_STREQ(buffer, "Gr\xC3\xBC\xC3\x9F"
                         "e");
}

TEST_F(StringReading, MutableCopyIsTheCallersOwn) {
    NSString *const original = nsString(u"caf\u00E9");
    const CFMutableStringRef copy = CFStringCreateMutableCopy(nullptr, 0, (CFStringRef)original);
    EXPECT_EQ([(NSString *)copy retainCount], 1U);
    [(NSMutableString *)copy appendString:@"!"];
    EXPECT_EQ(units(copy), u"caf\u00E9!");
    EXPECT_EQ(units(original), u"caf\u00E9");
    CFRelease(copy);
}

TEST_F(StringReading, CreatedStringsAreStringsLikeAnyOther) {
    NSString *const created = nsString(u"Gr\u00FC\u00DFe");
    NSString *const literal = [NSString stringWithUTF8String:"Gr\xC3\xBC\xC3\x9F"
                                                             "e"];
    EXPECT_TRUE([created isEqual:literal]);
    EXPECT_TRUE([literal isEqual:created]);
    EXPECT_EQ([created hash], [literal hash]);
    EXPECT_STREQ([created UTF8String], [literal UTF8String]);
    NSDictionary *const dictionary = [NSDictionary dictionaryWithObject:@"v" forKey:literal];
    EXPECT_TRUE([[dictionary objectForKey:created] isEqual:@"v"]);
    NSString *const formatted = [NSString stringWithFormat:@"<%@>", created];
    EXPECT_TRUE([formatted hasSuffix:@"e>"]);
}

TEST_F(StringReading, LoneSurrogatesAndMarksSurviveCopyingAndNormalizing) {
    for (const std::u16string_view text :
         {std::u16string_view(highSurrogate, 3), std::u16string_view(lowSurrogate, 2),
          std::u16string_view(u"\uFEFFa"), std::u16string_view(u"\uFEFF")}) {
        NSString *const original = nsString(text);
        const CFMutableStringRef copy =
            CFStringCreateMutableCopy(nullptr, 0, (CFStringRef)original);
        EXPECT_EQ(units(copy), text);
        CFStringNormalize(copy, kCFStringNormalizationFormD);
        EXPECT_EQ(units(copy), text);
        CFRelease(copy);
    }
}

TEST_F(StringReading, NormalizesToEveryForm) {
    const struct {
        CFStringNormalizationForm form;
        std::u16string_view result;
    } rows[] = {
        {.form = kCFStringNormalizationFormD, .result = u"e\u0301\uFB01"},
        {.form = kCFStringNormalizationFormKD, .result = u"e\u0301fi"},
        {.form = kCFStringNormalizationFormC, .result = u"\u00E9\uFB01"},
        {.form = kCFStringNormalizationFormKC, .result = u"\u00E9fi"},
    };
    for (const auto &row : rows) {
        NSMutableString *const text = [[nsString(u"e\u0301\uFB01") mutableCopy] autorelease];
        CFStringNormalize((CFMutableStringRef)text, row.form);
        EXPECT_EQ(units(text), row.result) << row.form;
    }
}

TEST_F(StringReading, DecompositionReordersMarksAndTakesHangulApart) {
    NSMutableString *const text = [[nsString(u"a\u0301\u0323\uAC01") mutableCopy] autorelease];
    CFStringNormalize((CFMutableStringRef)text, kCFStringNormalizationFormD);
    EXPECT_EQ(units(text), u"a\u0323\u0301\u1100\u1161\u11A8");
}

TEST_F(StringReading, NormalizingTheEmptyStringLeavesItEmpty) {
    NSMutableString *const text = [NSMutableString string];
    CFStringNormalize((CFMutableStringRef)text, kCFStringNormalizationFormD);
    EXPECT_EQ(units(text), u"");
}

TEST_F(StringReading, NullStringsEndTheProcess) {
    char buffer[1];
    EXPECT_DEATH(CFStringGetLength(none<CFStringRef>()), "CFStringGetLength: the object is null");
    EXPECT_DEATH(CFStringGetCString(none<CFStringRef>(), buffer, 1, kCFStringEncodingUTF8),
                 "is null");
}

} // namespace
