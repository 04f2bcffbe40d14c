// Strings, URLs that are no files, and data as host values.

#import "ValueScene.h"

#include "host/classes/Inspect.h"

#include <gmock/gmock.h>

#include <string>

using testing::ElementsAre;
using testing::IsEmpty;

namespace {

constexpr const char *buildAbc = R"(REALBuildString("abc", 3) = String#1)";
constexpr const char *declareAbc = "REALSetStringEncoding(String#1, 0x08000100)";

/// The text of a string Variant; fails the test when it is something else.
std::string textOf(host::Host &host, const host::ObjectRef &converted) {
    const host::VariantContent content = host::variant(converted);
    EXPECT_EQ(content.type, host::VariantType::string);
    return host.text(content.value.string());
}

/// What the string conversion makes of the object is a string Variant of a null string.
void expectNullStringVariant(const host::ObjectRef &converted) {
    ASSERT_NE(converted.handle(), nullptr);
    const host::VariantContent content = host::variant(converted);
    EXPECT_EQ(content.type, host::VariantType::string);
    EXPECT_TRUE(content.value.isNil());
}

NSURL *webPage() {
    return [NSURL URLWithString:@"http://example.com/a%20b?q=1#f"];
}

} // namespace

/// A URL that has no string.
@interface SilentUrl : NSURL {
@public
    int stringRequests;
}
@end

@implementation SilentUrl

- (NSString *)absoluteString {
    ++stringRequests;
    return nil;
}
- (BOOL)isFileURL {
    return NO;
}

@end

TEST(StringVariant, IsMadeByTheseCallsAlone) {
    ValueScene scene;
    const host::ObjectRef converted = scene.convert(@"abc");
    EXPECT_THAT(scene.host.trace(),
                ElementsAre("find REALBuildString", buildAbc, "find REALSetStringEncoding",
                            declareAbc, "find StringToVariant",
                            "StringToVariant(String#1) = Variant#1", "find REALUnlockString",
                            "REALUnlockString(String#1)"));
    EXPECT_EQ(textOf(scene.host, converted), "abc");
}

TEST(StringVariant, HandsOverOneReferenceAndLeavesTheStringToTheVariant) {
    ValueScene scene;
    const host::ObjectHandle converted = scene.convertObject(@"abc");
    EXPECT_EQ(scene.host.references(converted), 1);
    const host::ObjectRef owner = host::ObjectRef::adopt(converted);
    {
        const host::StringRef string = host::variant(owner).value.string();
        EXPECT_EQ(scene.host.references(string.handle()), 2) << "the Variant's and the test's";
    }
}

TEST(StringVariant, IsANewOneEachTime) {
    ValueScene scene;
    const host::ObjectRef first = scene.convert(@"abc");
    const host::ObjectRef second = scene.convert(@"abc");
    EXPECT_NE(first.handle(), second.handle());
}

TEST(StringVariant, OfTheEmptyStringHoldsANullString) {
    ValueScene scene;
    expectNullStringVariant(scene.convert(@""));
    EXPECT_THAT(scene.host.trace(),
                ElementsAre("find StringToVariant", "StringToVariant(nil) = Variant#1"));
}

TEST(StringVariant, ComesFromMutableStringsToo) {
    ValueScene scene;
    NSMutableString *string = [NSMutableString stringWithString:@"ab"];
    [string appendString:@"c"];
    EXPECT_EQ(textOf(scene.host, scene.convert(string)), "abc");
}

TEST(StringVariant, HasTheTextInUTF8) {
    ValueScene scene;
    NSString *const text = [NSString stringWithUTF8String:"Grüße, 世界 \xF0\x9F\x98\x80"];
    EXPECT_EQ(textOf(scene.host, scene.convert(text)), "Gr\xC3\xBC\xC3\x9F"
                                                       "e, \xE4\xB8\x96\xE7\x95\x8C "
                                                       "\xF0\x9F\x98\x80");
}

TEST(UrlVariant, IsTheAbsoluteString) {
    ValueScene scene;
    const host::ObjectRef converted = scene.convert(webPage());
    EXPECT_EQ(textOf(scene.host, converted), "http://example.com/a%20b?q=1#f");
    EXPECT_THAT(scene.host.calls(),
                ElementsAre(R"(REALBuildString("http://example.com/a%20b?q=1#f", 30) = String#1)",
                            declareAbc, "StringToVariant(String#1) = Variant#1",
                            "REALUnlockString(String#1)"));
}

TEST(UrlVariant, IsTheAbsoluteStringOfARelativeUrl) {
    ValueScene scene;
    NSURL *const url = [NSURL URLWithString:@"b/c"
                              relativeToURL:[NSURL URLWithString:@"http://example.com/a/"]];
    EXPECT_EQ(textOf(scene.host, scene.convert(url)), "http://example.com/a/b/c");
}

TEST(UrlVariant, IsFoldedWhereItWasRelativeAndElseAsItWasGiven) {
    ValueScene scene;
    NSURL *const base = [NSURL URLWithString:@"http://example.com/a/b"];
    const struct {
        NSURL *url;
        const char *text;
    } rows[] = {
        {[NSURL URLWithString:@"../c?q#f" relativeToURL:base], "http://example.com/c?q#f"},
        {[NSURL URLWithString:@"" relativeToURL:base], "http://example.com/a/b"},
        {[NSURL URLWithString:@"http://example.com/a/../c"], "http://example.com/a/../c"},
        {[NSURL URLWithString:@"FILE:no/path"], "FILE:no/path"},
        {[NSURL URLWithString:@"http://user@example.com/#"], "http://user@example.com/#"},
    };
    for (const auto &row : rows)
        EXPECT_EQ(textOf(scene.host, scene.convert(row.url)), row.text);
}

TEST(UrlVariant, IsTheAbsoluteStringOfAFileInNoFolder) {
    ValueScene scene;
    NSURL *const url = [NSURL URLWithString:@"file:///no/such/folder/file%20name"];
    EXPECT_EQ(textOf(scene.host, scene.convert(url)), "file:///no/such/folder/file%20name");
}

TEST(UrlVariant, HoldsANullStringWhenTheUrlHasNone) {
    ValueScene scene;
    SilentUrl *const url = [[[SilentUrl alloc] initWithString:@"silent:url"] autorelease];
    url->stringRequests = 0;
    expectNullStringVariant(scene.convert(url));
    EXPECT_THAT(scene.host.trace(),
                ElementsAre("find StringToVariant", "StringToVariant(nil) = Variant#1"));
    EXPECT_GE(url->stringRequests, 1);
}

TEST(UrlVariant, HandsOverOneReferenceAndLeavesTheStringToTheVariant) {
    ValueScene scene;
    const host::ObjectHandle converted = scene.convertObject(webPage());
    EXPECT_EQ(scene.host.references(converted), 1);
    host::ObjectRef owner = host::ObjectRef::adopt(converted);
    EXPECT_EQ(scene.host.account().liveStrings, 1u);
    owner.drop();
    EXPECT_EQ(scene.host.account().liveStrings, 0u);
}

TEST(DataValue, IsAMemoryBlockWithTheBytes) {
    ValueScene scene;
    const std::string bytes("a\0b\xFF", 4);
    const host::ObjectHandle converted = scene.convertObject([NSData dataWithBytes:bytes.data()
                                                                            length:bytes.size()]);
    EXPECT_EQ(scene.host.className(converted), "MemoryBlock");
    EXPECT_EQ(scene.host.references(converted), 1);
    EXPECT_EQ(host::memoryBlockBytes(host::ObjectRef::adopt(converted)), bytes);
}

TEST(DataValue, ComesFromMutableDataToo) {
    ValueScene scene;
    NSMutableData *const data = [NSMutableData dataWithBytes:"ab" length:2];
    [data appendBytes:"c" length:1];
    EXPECT_EQ(host::memoryBlockBytes(scene.convert(data)), "abc");
}

TEST(DataValue, IsNilWhenThereAreNoBytes) {
    ValueScene scene;
    EXPECT_EQ(scene.convertObject([NSData data]), nullptr);
    EXPECT_THAT(scene.host.trace(), IsEmpty());
}
