// Who is entered in the family's registry, who is found there, and the references taken.

#include "CoreFoundationSpy.h"
#include "DispatchScene.h"
#import "ShapedObject.h"
#include "UntypedObjects.h"

#include "host/classes/Inspect.h"

#include <CoreText/CoreText.h>
#include <gmock/gmock.h>

#include <optional>

using testing::Contains;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

namespace {

struct WrapperRegistry : testing::Test {
    DispatchScene scene;
    host::Host &host = scene.host;

    static id error() { return [NSError errorWithDomain:@"domain" code:1 userInfo:nil]; }
};

struct WithoutRegistry : testing::Test {
    DispatchScene scene{{.siblings = host::Siblings::exceptions}};
    host::Host &host = scene.host;
};

// A host object for the registry, of a class without data.
host::ObjectRef newStored(host::Host &host) {
    return host.newInstance(processInfoClass);
}

} // namespace

TEST_F(WrapperRegistry, GivesTheSameInstanceOnEveryLaterConversion) {
    scene.know("NSErrorZKT");
    const id object = error();
    const host::ObjectRef first = scene.convert(object);
    EXPECT_EQ(host.references(first), 1);
    host.clearTrace();
    const host::ObjectRef second = scene.convert(object);
    EXPECT_EQ(second.handle(), first.handle());
    EXPECT_EQ(host.references(first), 2);
    const host::ObjectRef third = scene.convert(object);
    EXPECT_EQ(third.handle(), first.handle());
    EXPECT_EQ(host.references(first), 3);
    EXPECT_THAT(host.calls(),
                ElementsAre("REALLockObject(NSErrorZKT#1)", "REALLockObject(NSErrorZKT#1)"));
}

TEST_F(WrapperRegistry, HoldsTheInstanceWithoutAReference) {
    scene.know("NSErrorZKT");
    const id object = error();
    {
        const host::ObjectRef made = scene.convert(object);
        EXPECT_EQ(host::siblings::registered((const void *)object), made.handle());
    }
    EXPECT_THAT(host.liveObjects(), IsEmpty());
    EXPECT_EQ(host::siblings::registryCount(), 0u);
}

TEST_F(WrapperRegistry, GivesANewInstanceOnceTheFormerOneDied) {
    scene.know("NSErrorZKT");
    const id object = error();
    EXPECT_EQ(host.name(scene.convert(object)), "NSErrorZKT#1");
    EXPECT_EQ(host.name(scene.convert(object)), "NSErrorZKT#2");
}

TEST_F(WrapperRegistry, IsKeyedByIdentity) {
    scene.know("NSErrorZKT");
    const id first = error();
    const id second = error();
    const host::ObjectRef one = scene.convert(first);
    const host::ObjectRef other = scene.convert(second);
    EXPECT_NE(one.handle(), other.handle());
    EXPECT_EQ(host::siblings::registryCount(), 2u);
}

TEST_F(WrapperRegistry, IsLookedIntoTwiceForARegisteringRow) {
    scene.know("NSErrorZKT");
    const CoreFoundationSpy spy(scene.image);
    const host::ObjectRef made = scene.convert(error());
    EXPECT_THAT(spy.calls(), ElementsAre("CFDictionaryGetValue", "CFDictionaryGetValue",
                                         "CFDictionarySetValue"));
}

TEST_F(WrapperRegistry, IsLookedIntoTwiceForAnUnknownHostClassAndNotWritten) {
    const CoreFoundationSpy spy(scene.image);
    EXPECT_EQ(scene.convertRaw(error()), nullptr);
    EXPECT_THAT(spy.calls(), ElementsAre("CFDictionaryGetValue", "CFDictionaryGetValue"));
}

TEST_F(WrapperRegistry, IsLookedIntoOnceForAWalkingRow) {
    scene.know("NSIndexSetZKT");
    const CoreFoundationSpy spy(scene.image);
    const host::ObjectRef made = scene.convert([NSIndexSet indexSetWithIndex:1]);
    EXPECT_THAT(spy.calls(), ElementsAre("CFDictionaryGetValue"));
}

TEST_F(WrapperRegistry, IsLookedIntoOnceForAnUnlistedObject) {
    scene.know("NSObjectZKT");
    const CoreFoundationSpy spy(scene.image);
    const host::ObjectRef made = scene.convert([[[NSObject alloc] init] autorelease]);
    EXPECT_THAT(spy.calls(), ElementsAre("CFDictionaryGetValue"));
}

TEST_F(WrapperRegistry, IsNotLookedIntoByTheWalkItself) {
    scene.know("NSObjectZKT");
    const CoreFoundationSpy spy(scene.image);
    const host::ObjectRef made =
        scene.walk([[[NSObject alloc] init] autorelease], [NSObject class]);
    EXPECT_NE(made.handle(), nullptr);
    EXPECT_THAT(spy.calls(), IsEmpty());
}

// Between the two looks another conversion may have made the wrapper.
TEST_F(WrapperRegistry, FindsAtRegistrationWhatWasEnteredMeanwhile) {
    scene.know("NSErrorZKT");
    const host::ObjectRef stored = newStored(host);
    const Shaped object({"NSError"});
    std::optional<RegistryEntry> entry;
    object->onMessage = [&](std::string_view message) {
        if (message == "isKindOfClass:NSError" && !entry)
            entry.emplace((const void *)object, stored.handle());
    };
    const NSUInteger references = [object retainCount];
    const host::ObjectRef converted = scene.convert(object);
    EXPECT_EQ(converted.handle(), stored.handle());
    EXPECT_EQ(host.references(stored), 2);
    EXPECT_EQ([object retainCount], references);
    EXPECT_THAT(scene.requests(), IsEmpty());
}

TEST_F(WrapperRegistry, GetsTheInstanceWhenItHoldsTheRetainedObject) {
    scene.know("NSErrorZKT");
    const Shaped object({"NSError"});
    CoreFoundationSpy spy(scene.image);
    NSUInteger references = 0;
    spy.before("CFDictionarySetValue", [&] {
        references = [object retainCount];
        EXPECT_THAT(host.liveObjects(), ElementsAre("NSErrorZKT#1"));
    });
    const host::ObjectRef made = scene.convert(object);
    EXPECT_EQ(scene.wrapped(made), (const void *)object);
    EXPECT_EQ(references, 2u);
}

TEST_F(WrapperRegistry, TakesOneReferenceToTheObject) {
    scene.know("NSErrorZKT");
    const Shaped object({"NSError"});
    const host::ObjectRef made = scene.convert(object);
    EXPECT_EQ([object retainCount], 2u);
    const host::ObjectRef again = scene.convert(object);
    EXPECT_EQ([object retainCount], 2u);
    EXPECT_THAT(host.calls(), Contains("[retain]").Times(1));
}

TEST_F(WrapperRegistry, IsNeverEnteredForObjectsOfTheWalk) {
    const UntypedObjects untyped;
    scene.know("NSIndexSetZKT");
    scene.know("NSObjectZKT");
    const id walked = [NSIndexSet indexSetWithIndex:1];
    const id unlisted = [[[NSObject alloc] init] autorelease];
    for (const id object : {walked, unlisted}) {
        const host::ObjectRef first = scene.convert(object);
        const host::ObjectRef second = scene.convert(object);
        EXPECT_NE(first.handle(), second.handle());
        EXPECT_EQ(scene.wrapped(second), (const void *)object);
        EXPECT_EQ(host.references(first), 1);
        EXPECT_EQ(host.references(second), 1);
        EXPECT_EQ(host::siblings::registryCount(), 0u);
    }
}

TEST_F(WrapperRegistry, IsNeverEnteredForValues) {
    const host::ObjectRef array = scene.convert([NSArray arrayWithObject:@"text"]);
    const host::ObjectRef dictionary = scene.convert([NSMutableDictionary dictionary]);
    const host::ObjectRef number = scene.convert([NSNumber numberWithInt:1]);
    const host::ObjectRef date = scene.convert([NSDate date]);
    EXPECT_EQ(host::siblings::registryCount(), 0u);
}

TEST_F(WrapperRegistry, AnswersForAnObjectThatWasEnteredByASibling) {
    const host::ObjectRef stored = newStored(host);
    const id unlisted = [[[NSObject alloc] init] autorelease];
    const RegistryEntry entry((const void *)unlisted, stored.handle());
    host.clearTrace();
    const host::ObjectRef converted = scene.convert(unlisted);
    EXPECT_EQ(converted.handle(), stored.handle());
    EXPECT_THAT(host.trace(),
                ElementsAre("find REALLockObject", "REALLockObject(NSProcessInfoZKT#1)"));
}

TEST_F(WithoutRegistry, ARegisteringRowMakesANewInstanceEachTime) {
    scene.know("NSErrorZKT");
    const id object = [NSError errorWithDomain:@"domain" code:1 userInfo:nil];
    const CoreFoundationSpy spy(scene.image);
    const NSUInteger references = [object retainCount];
    const host::ObjectRef first = scene.convert(object);
    const host::ObjectRef second = scene.convert(object);
    EXPECT_NE(first.handle(), second.handle());
    EXPECT_EQ(scene.wrapped(first), (const void *)object);
    EXPECT_EQ(scene.wrapped(second), (const void *)object);
    EXPECT_EQ([object retainCount], references + 2);
    EXPECT_THAT(spy.calls(), IsEmpty());
}

TEST_F(WithoutRegistry, EveryOtherWayWorksAlike) {
    const UntypedObjects untyped;
    scene.know("NSIndexSetZKT");
    scene.know("NSObjectZKT");
    scene.knowCoreFoundation("CTRunZKT");
    const Typed run({CTRunGetTypeID()});
    const CoreFoundationSpy spy(scene.image);
    EXPECT_EQ(host.className(scene.convert([NSIndexSet indexSetWithIndex:1])), "NSIndexSetZKT");
    EXPECT_EQ(host.className(scene.convert([[[NSObject alloc] init] autorelease])), "NSObjectZKT");
    EXPECT_EQ(host.className(scene.convert(run)), "CTRunZKT");
    EXPECT_EQ(host::variant(scene.convert(@"text")).value.text(), "text");
    EXPECT_THAT(spy.calls(), testing::Not(Contains(HasSubstr("CFDictionary"))));
}
