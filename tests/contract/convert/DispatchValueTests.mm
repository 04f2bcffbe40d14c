// URLs, strings and booleans as host values, and the kinds of ordinary objects.

#include "Caught.h"
#include "DispatchScene.h"

#include "host/classes/Inspect.h"

#include <gmock/gmock.h>

#include <objc/runtime.h>

using testing::ElementsAre;
using testing::IsEmpty;

/// A web address without text.
@interface TextlessURL : NSURL
@end

@implementation TextlessURL

- (NSString *)absoluteString {
    return nil;
}

@end

/// A string of a class of the user's.
@interface UsersString : NSString
@end

@implementation UsersString

- (NSUInteger)length {
    return 2;
}

- (unichar)characterAtIndex:(NSUInteger)index {
    return index == 0 ? 'o' : 'k';
}

@end

/// Raises when it is read.
@interface UnreadableString : UsersString
@end

@implementation UnreadableString

- (unichar)characterAtIndex:(NSUInteger)index {
    [NSException raise:@"Refused" format:@"no characters"];
    return [super characterAtIndex:index];
}

@end

namespace {

struct DispatchValue : testing::Test {
    DispatchScene scene;
    host::Host &host = scene.host;

    host::VariantContent variantOf(id object) { return host::variant(scene.convert(object)); }
    std::string textOf(id object) {
        const host::VariantContent content = variantOf(object);
        EXPECT_EQ(content.type, host::VariantType::string);
        return content.value.text();
    }
};

// What makes the host string of @"text", and these lines.
std::vector<std::string> textThen(const std::string &boxes, const std::string &releases) {
    return {R"(REALBuildString("text", 4) = String#1)",
            "REALSetStringEncoding(String#1, 0x08000100)", boxes, releases};
}

} // namespace

TEST_F(DispatchValue, NilIsNil) {
    EXPECT_EQ(scene.convertRaw(nil), nullptr);
    EXPECT_THAT(host.trace(), IsEmpty());
}

TEST_F(DispatchValue, TheNullSingletonIsNil) {
    scene.know("NSNullZKT");
    scene.know("NSObjectZKT");
    EXPECT_EQ(scene.convertRaw((id)[NSNull null]), nullptr);
    EXPECT_THAT(host.trace(), IsEmpty());
}

TEST_F(DispatchValue, AStringIsBoxedAndItsHostStringReleased) {
    const host::ObjectRef variant = scene.convert(@"text");
    EXPECT_EQ(host.calls(),
              textThen("StringToVariant(String#1) = Variant#1", "REALUnlockString(String#1)"));
    EXPECT_EQ(host.references(variant), 1);
    EXPECT_EQ(textOf(@"text"), "text");
}

TEST_F(DispatchValue, AnEmptyStringIsAVariantOfTheNullString) {
    const host::ObjectRef variant = scene.convert(@"");
    EXPECT_THAT(host.calls(), ElementsAre("StringToVariant(nil) = Variant#1"));
    EXPECT_TRUE(host::variant(variant).value.isNil());
}

TEST_F(DispatchValue, EveryKindOfStringIsText) {
    EXPECT_EQ(textOf([NSMutableString stringWithString:@"mutable"]), "mutable");
    EXPECT_EQ(textOf([NSString stringWithUTF8String:"größer"]), "größer");
    EXPECT_EQ(textOf([[[UsersString alloc] init] autorelease]), "ok");
}

TEST_F(DispatchValue, AStringThatRaisesPassesTheExceptionOut) {
    const id unreadable = [[[UnreadableString alloc] init] autorelease];
    EXPECT_EQ(cocoaExceptionFrom([&] { scene.convertRaw(unreadable); }), "Refused: no characters");
}

TEST_F(DispatchValue, AWebAddressIsItsAbsoluteText) {
    EXPECT_EQ(textOf([NSURL URLWithString:@"http://example.com/a?b=c#d"]),
              "http://example.com/a?b=c#d");
    NSURL *const base = [NSURL URLWithString:@"http://example.com/folder/"];
    EXPECT_EQ(textOf([NSURL URLWithString:@"page" relativeToURL:base]),
              "http://example.com/folder/page");
}

TEST_F(DispatchValue, AWebAddressReleasesItsHostString) {
    const host::ObjectRef variant = scene.convert([NSURL URLWithString:@"ab:c"]);
    EXPECT_THAT(host.calls(),
                ElementsAre(R"(REALBuildString("ab:c", 4) = String#1)",
                            "REALSetStringEncoding(String#1, 0x08000100)",
                            "StringToVariant(String#1) = Variant#1", "REALUnlockString(String#1)"));
}

TEST_F(DispatchValue, AnAddressWithoutTextIsAVariantOfTheNullString) {
    const id url = [[[TextlessURL alloc] initWithString:@"http://example.com/"] autorelease];
    const host::ObjectRef variant = scene.convert(url);
    EXPECT_THAT(host.calls(), ElementsAre("StringToVariant(nil) = Variant#1"));
    EXPECT_EQ(host::variant(variant).type, host::VariantType::string);
    EXPECT_TRUE(host::variant(variant).value.isNil());
}

TEST_F(DispatchValue, AFileURLIsAFolderItem) {
    const host::ObjectRef item = scene.convert([NSURL fileURLWithPath:NSHomeDirectory()]);
    EXPECT_EQ(host.className(item), "FolderItem");
    EXPECT_EQ(host.references(item), 1);
}

TEST_F(DispatchValue, TheBooleansAreBooleans) {
    const host::ObjectRef yes = scene.convert((id)kCFBooleanTrue);
    const host::ObjectRef no = scene.convert((id)kCFBooleanFalse);
    EXPECT_THAT(host.calls(), ElementsAre("BooleanToVariant(true) = Variant#1",
                                          "BooleanToVariant(false) = Variant#2"));
}

TEST_F(DispatchValue, EveryOrdinaryObjectHasItsHostClass) {
    scene.know("NSObjectZKT");
    scene.knowCoreFoundation("CFObjectZKT");
    const struct {
        id object;
        const char *hostClass;
    } rows[] = {
        {.object = @"", .hostClass = "Variant"},
        {.object = [NSMutableString string], .hostClass = "Variant"},
        {.object = [NSURL URLWithString:@"http://example.com/"], .hostClass = "Variant"},
        {.object = [@"a" dataUsingEncoding:NSUTF8StringEncoding], .hostClass = "MemoryBlock"},
        {.object = [NSMutableData dataWithLength:3], .hostClass = "MemoryBlock"},
        {.object = [NSArray array], .hostClass = "Array"},
        {.object = [NSMutableArray array], .hostClass = "Array"},
        {.object = [NSSet set], .hostClass = "Array"},
        {.object = [NSCountedSet set], .hostClass = "Array"},
        {.object = (id)kCFBooleanTrue, .hostClass = "Variant"},
        {.object = [NSNumber numberWithBool:YES], .hostClass = "Variant"},
        {.object = [NSNumber numberWithDouble:0.5], .hostClass = "Variant"},
        {.object = [NSDate date], .hostClass = "Date"},
        {.object = [NSCalendarDate date], .hostClass = "Date"},
        {.object = [NSDictionary dictionary], .hostClass = "Dictionary"},
        {.object = [NSMutableDictionary dictionary], .hostClass = "Dictionary"},
        {.object = [[[NSObject alloc] init] autorelease], .hostClass = "CFObjectZKT"},
    };
    for (const auto &row : rows) {
        SCOPED_TRACE(class_getName([row.object class]));
        const host::ObjectRef made = scene.convert(row.object);
        EXPECT_EQ(host.className(made), row.hostClass);
        EXPECT_EQ(host.references(made), 1);
    }
    EXPECT_EQ(host::siblings::registryCount(), 0u);
}
