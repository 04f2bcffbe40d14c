// Host objects that a sibling packed into Cocoa objects come back as themselves.

#include "Caught.h"
#include "ClassLookupSpy.h"
#import "ClassPairs.h"
#include "DispatchScene.h"
#import "MethodFunctions.h"
#import "OwnObject.h"
#include "UntypedObjects.h"

#include <gmock/gmock.h>

#include <objc/runtime.h>

#include <functional>

using testing::IsEmpty;

namespace {

std::function<void *()> content;
int unwraps = 0;

void *unwrap(id, SEL) {
    ++unwraps;
    return content();
}

struct BoxedObject : testing::Test {
    DispatchScene scene;
    host::Host &host = scene.host;
    const host::ObjectRef packed = host.newInstance(processInfoClass);

    BoxedObject() {
        content = [this] { return packed.handle(); };
    }
    // A sibling's class, which stays for the life of the process.
    Class makeWrapper() {
        const Class made = makeClass("ZKTREALobjectWrapper", [NSObject class]);
        class_addMethod(made, sel_registerName("unwrap"), implementationOf(unwrap), "^v@:");
        return made;
    }
    static id newOf(Class cls) { return [[[cls alloc] init] autorelease]; }
};

} // namespace

TEST_F(BoxedObject, ComesBackAsItself) {
    const id box = newOf(makeWrapper());
    host.clearTrace();
    EXPECT_EQ(scene.convertRaw(box), packed.handle());
    EXPECT_EQ(unwraps, 1);
    EXPECT_THAT(host.trace(), IsEmpty());
}

TEST_F(BoxedObject, GetsNoReferenceAndIsNotRegistered) {
    const id box = newOf(makeWrapper());
    const NSUInteger references = [box retainCount];
    scene.convertRaw(box);
    EXPECT_EQ(host.references(packed), 1);
    EXPECT_EQ([box retainCount], references);
    EXPECT_EQ(host::siblings::registryCount(), 0u);
}

TEST_F(BoxedObject, MayBeNil) {
    content = [] { return nullptr; };
    scene.know("ZKTREALobjectWrapperZKT");
    scene.know("NSObjectZKT");
    EXPECT_EQ(scene.convertRaw(newOf(makeWrapper())), nullptr);
    EXPECT_THAT(host.calls(), IsEmpty());
}

TEST_F(BoxedObject, IsNotLookedInto) {
    content = [] { return reinterpret_cast<void *>(0x5A5A5A5A5A5A5A5A); };
    EXPECT_EQ(scene.convertRaw(newOf(makeWrapper())), content());
}

TEST_F(BoxedObject, MayBeOfASubclass) {
    const Class users = makeClass("UsersWrapper", makeWrapper());
    EXPECT_EQ(scene.convertRaw(newOf(users)), packed.handle());
}

TEST_F(BoxedObject, CountsWhenItsClassComesLater) {
    const UntypedObjects untyped;
    scene.know("NSObjectZKT");
    const id plain = newOf([NSObject class]);
    {
        EXPECT_EQ(host.className(scene.convert(plain)), "NSObjectZKT");
    }
    EXPECT_EQ(scene.convertRaw(newOf(makeWrapper())), packed.handle());
}

TEST_F(BoxedObject, HasItsClassLookedUpByEachConversion) {
    const ClassLookupSpy spy(scene.image);
    const id plain = newOf([NSObject class]);
    for (std::size_t i = 1; i <= 3; ++i) {
        scene.convert(plain);
        EXPECT_EQ(spy.count("ZKTREALobjectWrapper"), i);
    }
    const id box = newOf(makeWrapper());
    scene.convertRaw(box);
    scene.convertRaw(box);
    EXPECT_EQ(spy.count("ZKTREALobjectWrapper"), 5u);
}

TEST_F(BoxedObject, HasItsClassNotLookedUpByAnEarlierTest) {
    const ClassLookupSpy spy(scene.image);
    scene.convert(@"text");
    scene.convertRaw([NSError errorWithDomain:@"domain" code:1 userInfo:nil]);
    EXPECT_EQ(spy.count("ZKTREALobjectWrapper"), 0u);
}

TEST_F(BoxedObject, LetsAnExceptionFromUnwrapPassOut) {
    content = []() -> void * {
        [NSException raise:@"Refused" format:@"no"];
        return nullptr;
    };
    const id box = newOf(makeWrapper());
    EXPECT_EQ(cocoaExceptionFrom([&] { scene.convertRaw(box); }), "Refused: no");
}
