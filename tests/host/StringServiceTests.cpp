#include "tests/host/FakePlugin.h"

#include <array>

namespace {

using namespace host;
using namespace std::string_literals;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

StringHandle build(const std::string &bytes, std::uint32_t encoding) {
    return service<StringHandle(const char *, std::int32_t, std::uint32_t)>(
        "REALBuildStringWithEncoding")(bytes.data(), static_cast<std::int32_t>(bytes.size()),
                                       encoding);
}

StringHandle convert(StringHandle string, std::uint32_t encoding) {
    return service<StringHandle(StringHandle, std::uint32_t)>("REALConvertString")(string,
                                                                                   encoding);
}

TEST(StringServices, BuiltStringHasOneReferenceAndNoEncoding) {
    Host host;
    const StringHandle string = buildString("abc");
    EXPECT_EQ(host.bytes(string), "abc");
    EXPECT_EQ(host.encodingOf(string), encoding::unknown);
    EXPECT_EQ(host.references(string), 1);
    unlockString(string);
    EXPECT_FALSE(host.isLive(string));
}

TEST(StringServices, BuiltStringIsACopy) {
    Host host;
    std::string bytes = "abc";
    const StringHandle string = build(bytes, encoding::ascii);
    bytes[0] = 'x';
    EXPECT_EQ(host.bytes(string), "abc");
    EXPECT_EQ(host.encodingOf(string), encoding::ascii);
    unlockString(string);
}

TEST(StringServices, EmptyStringsAreStrings) {
    Host host;
    const StringHandle string = buildString("");
    ASSERT_NE(string, nullptr);
    EXPECT_EQ(host.bytes(string), "");
    unlockString(string);
}

TEST(StringServices, ConversionGivesANewString) {
    Host host;
    const StringHandle utf16 = build("\xE9\0"s, encoding::utf16);
    const StringHandle utf8 = convert(utf16, encoding::utf8);
    EXPECT_NE(utf8, utf16);
    EXPECT_EQ(host.bytes(utf8), "\xC3\xA9");
    EXPECT_EQ(host.encodingOf(utf8), encoding::utf8);
    EXPECT_EQ(host.references(utf16), 1);
    unlockString(utf16);
    unlockString(utf8);
}

TEST(StringServices, ConversionOfNilIsNil) {
    Host host;
    EXPECT_EQ(convert(nullptr, encoding::utf8), nullptr);
    EXPECT_THAT(host.calls(), ElementsAre("REALConvertString(nil, 0x08000100) = nil"));
}

TEST(StringServices, DeclaringAnEncodingKeepsTheBytes) {
    Host host;
    const StringHandle string = buildString("\x8E");
    service<void(StringHandle, std::uint32_t)>("REALSetStringEncoding")(string, encoding::macRoman);
    EXPECT_EQ(host.bytes(string), "\x8E");
    EXPECT_EQ(host.text(string), "\xC3\xA9");
    EXPECT_EQ(service<std::uint32_t(StringHandle)>("REALGetStringEncoding")(string), 0U);
    unlockString(string);
}

TEST(StringServices, UnknownEncodingNumberIsAViolation) {
    Host host;
    const StringHandle string = buildString("a");
    EXPECT_EQ(convert(string, 0x0101), nullptr);
    service<void(StringHandle, std::uint32_t)>("REALSetStringEncoding")(string, 77);
    EXPECT_EQ(host.encodingOf(string), encoding::unknown);
    EXPECT_EQ(build("a", 78), nullptr);
    EXPECT_THAT(host.violations(),
                ElementsAre("REALConvertString: got 0x00000101, which is no text encoding",
                            "REALSetStringEncoding: got 0x0000004D, which is no text encoding",
                            "REALBuildStringWithEncoding: got 0x0000004E, which is no text "
                            "encoding"));
    unlockString(string);
}

TEST(StringServices, BadLengthsAndBytesAreViolations) {
    Host host;
    const auto buildRaw = service<StringHandle(const char *, std::int32_t)>("REALBuildString");
    EXPECT_EQ(buildRaw("abc", -1), nullptr);
    EXPECT_EQ(buildRaw(nullptr, 1), nullptr);
    EXPECT_THAT(host.violations(),
                ElementsAre("REALBuildString: got the length -1", "REALBuildString: got no bytes"));
}

TEST(StringServices, LengthIsTakenAs32Bits) {
    Host host;
    // The upper half of the register is the caller's to leave undefined.
    const auto wide = service<StringHandle(const char *, std::uint64_t)>("REALBuildString");
    const StringHandle string = wide("abcdef", 0xDEADBEEF00000003);
    EXPECT_EQ(host.bytes(string), "abc");
    unlockString(string);
}

TEST(StringServices, BytesEndWithAZeroAndBelongToTheString) {
    Host host;
    const StringHandle string = buildString("a\0b"s);
    const auto *bytes = service<const char *(StringHandle)>("StringGetCString")(string);
    EXPECT_EQ(std::string(bytes, 4), "a\0b\0"s);
    unlockString(string);
}

TEST(StringServices, NilReadsAsTheEmptyString) {
    Host host;
    EXPECT_STREQ(service<const char *(StringHandle)>("StringGetCString")(nullptr), "");
    const auto load = service<void *(void *, const char *)>("REALLoadGlobalMethod");
    auto *lengthInBytes = reinterpret_cast<std::int64_t (*)(StringHandle)>(
        load(nullptr, "LenB( s as string ) as integer"));
    ASSERT_NE(lengthInBytes, nullptr);
    EXPECT_EQ(lengthInBytes(nullptr), 0);
}

TEST(StringServices, LengthInBytesCountsZeroes) {
    Host host;
    auto *lengthInBytes =
        reinterpret_cast<std::int64_t (*)(StringHandle)>(service<void *(void *, const char *)>(
            "REALLoadGlobalMethod")(nullptr, "lenb(anything As String) As Integer"));
    ASSERT_NE(lengthInBytes, nullptr);
    const StringHandle string = buildString("a\0\0b"s);
    EXPECT_EQ(lengthInBytes(string), 4);
    unlockString(string);
}

TEST(StringServices, GlobalMethodsAreFoundByTheirWholeDeclaration) {
    Host host;
    const auto load = service<void *(void *, const char *)>("REALLoadGlobalMethod");
    EXPECT_EQ(load(nullptr, "LenB(s As String) As Int32"), nullptr);
    EXPECT_EQ(load(nullptr, "LenB As Integer"), nullptr);
    EXPECT_EQ(load(nullptr, "Len(s As String) As Integer"), nullptr);
    EXPECT_THAT(host.violations(), IsEmpty());
    EXPECT_EQ(load(nullptr, "LenB(s As"), nullptr);
    EXPECT_EQ(load(nullptr, nullptr), nullptr);
    int module = 0;
    EXPECT_NE(load(&module, "LenB(s As String) As Integer"), nullptr);
    EXPECT_THAT(host.violations(),
                ElementsAre(HasSubstr("column 10: expected a type"),
                            HasSubstr("got no declaration"), HasSubstr("got a module")));
}

TEST(StringServices, HiddenMethodsAreNotFound) {
    Host host;
    const auto load = service<void *(void *, const char *)>("REALLoadGlobalMethod");
    host.hideMethod("lenb(x as string) as integer");
    EXPECT_EQ(load(nullptr, "LenB( s as string ) as integer"), nullptr);
    host.showMethod("LenB(s As String) As Integer");
    EXPECT_NE(load(nullptr, "LenB( s as string ) as integer"), nullptr);
}

TEST(StringServices, DisposingStringDataTouchesNothing) {
    Host host;
    std::array<std::uint64_t, 2> data{1, 2};
    const auto dispose = service<void(void *)>("PluginDisposeStringData");
    dispose(data.data());
    EXPECT_THAT(data, ElementsAre(1, 2));
    EXPECT_THAT(host.violations(), IsEmpty());
    dispose(nullptr);
    EXPECT_THAT(host.violations(), ElementsAre("PluginDisposeStringData: got no string data"));
}

TEST(StringServices, TextInProgramsIsUtf8) {
    Host host;
    const Value value = "Gr\xC3\xBC\xC3\x9F"
                        "e";
    EXPECT_EQ(host.encodingOf(value.string()), encoding::utf8);
    EXPECT_EQ(host.bytes(value.string()).size(), 7U);
    const StringRef latin = host.makeString("\xE9", encoding::latin1);
    EXPECT_EQ(host.text(latin), "\xC3\xA9");
}

} // namespace
