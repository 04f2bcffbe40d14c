// nil, strings of classes of the user, and the kinds of ordinary objects.

#include "Caught.h"
#include "DispatchScene.h"

#include "host/classes/Inspect.h"

#include <gmock/gmock.h>

#include <objc/runtime.h>

using testing::IsEmpty;

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
};

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

TEST_F(DispatchValue, AStringOfAUsersClassIsText) {
    const host::ObjectRef variant = scene.convert([[[UsersString alloc] init] autorelease]);
    EXPECT_EQ(host::variant(variant).value.text(), "ok");
}

TEST_F(DispatchValue, AStringThatRaisesPassesTheExceptionOut) {
    const id unreadable = [[[UnreadableString alloc] init] autorelease];
    EXPECT_EQ(cocoaExceptionFrom([&] { scene.convertRaw(unreadable); }), "Refused: no characters");
}

TEST_F(DispatchValue, AFileURLIsAFolderItem) {
    const host::ObjectRef item = scene.convert([NSURL fileURLWithPath:NSHomeDirectory()]);
    EXPECT_EQ(host.className(item), "FolderItem");
    EXPECT_EQ(host.references(item), 1);
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
