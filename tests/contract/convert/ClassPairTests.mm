// Objects of the classes that have a host class of their own, row by row.

#import "ClassPairs.h"
#include "DispatchScene.h"
#import "ShapedObject.h"
#include "UntypedObjects.h"

#include <gmock/gmock.h>

#include <objc/runtime.h>

using testing::Contains;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

namespace {

struct ClassPairs : testing::Test {
    DispatchScene scene;
    host::Host &host = scene.host;

    void knowAll() {
        for (const ClassPair &pair : classPairs)
            scene.know(pair.hostClass());
        for (const ClassPair &pair : lateClassPairs)
            scene.know(pair.hostClass());
    }
    std::string classOf(id object) { return host.className(scene.convert(object)); }
};

// An instance's worth of proof: which class it has, what it holds, whether it is entered.
void expectWrapper(ClassPairs &test, id object, const std::string &hostClass, bool entered) {
    const host::ObjectRef made = test.scene.convert(object);
    EXPECT_EQ(test.host.className(made), hostClass);
    EXPECT_EQ(test.scene.wrapped(made), (const void *)object);
    EXPECT_EQ(test.host.references(made), 1);
    EXPECT_EQ(host::siblings::registered((const void *)object), entered ? made.handle() : nullptr);
    EXPECT_EQ(host::siblings::registryCount(), entered ? 1u : 0u);
}

} // namespace

TEST_F(ClassPairs, GiveEachObjectItsHostClass) {
    knowAll();
    makeAllClasses();
    for (const ClassPair &pair : classPairs) {
        SCOPED_TRACE(pair.name);
        const id object = objectOf(pair);
        ASSERT_TRUE([object isKindOfClass:classNamed(pair.name)]);
        expectWrapper(*this, object, pair.hostClassOfObjects(), pair.objectsAreEntered());
    }
}

TEST_F(ClassPairs, GiveEachObjectOfALateClassItsHostClass) {
    knowAll();
    makeAllClasses();
    for (const ClassPair &pair : lateClassPairs) {
        SCOPED_TRACE(pair.name);
        expectWrapper(*this, objectOf(pair), pair.hostClass(), true);
    }
}

TEST_F(ClassPairs, MakeTheirHostClassByTheRowAlone) {
    knowAll();
    scene.know("NSObjectZKT");
    makeAllClasses();
    for (const ClassPair &pair : classPairs) {
        SCOPED_TRACE(pair.name);
        const Shaped object({pair.name});
        const std::string hostClass = pair.rowRegisters ? pair.hostClass() : "NSObjectZKT";
        expectWrapper(*this, object, hostClass, pair.rowRegisters);
    }
}

TEST_F(ClassPairs, LetTheEarlierOfTwoNeighboursWin) {
    knowAll();
    scene.know("NSObjectZKT");
    makeAllClasses();
    for (std::size_t row = 0; row + 1 < pairCount; ++row) {
        const ClassPair &pair = classPairs.at(row);
        SCOPED_TRACE(pair.name);
        const Shaped object({pair.name, classPairs.at(row + 1).name});
        const std::string hostClass = pair.rowRegisters ? pair.hostClass() : "NSObjectZKT";
        expectWrapper(*this, object, hostClass, pair.rowRegisters);
    }
}

TEST_F(ClassPairs, TakeASubclassOfTheUsersOwn) {
    knowAll();
    makeAllClasses();
    for (const ClassPair &pair : classPairs) {
        if (objc_lookUpClass((std::string(pair.name) + "OfTheUser").c_str()) != Nil)
            continue;
        SCOPED_TRACE(pair.name);
        const Class users = makeClass(std::string(pair.name) + "OfTheUser", classNamed(pair.name));
        // Without init and dealloc, which not all of Foundation's classes survive.
        const id object = NSAllocateObject(users, 0, nullptr);
        EXPECT_EQ(classOf(object), pair.hostClassOfObjects());
        NSDeallocateObject(object);
    }
}

TEST_F(ClassPairs, AnImageOfAUsersClassIsAnImage) {
    scene.know("NSImageZKT");
    const Class users = makeClass("UsersImage", classNamed("NSImage"));
    expectWrapper(*this, [[[users alloc] init] autorelease], "NSImageZKT", true);
}

TEST_F(ClassPairs, AHostClassOfTheUsersOwnIsNotAskedForByARegisteringRow) {
    scene.know("UsersImageZKT");
    scene.know("NSImageZKT");
    const Class users = makeClass("UsersImage", classNamed("NSImage"));
    EXPECT_EQ(classOf([[[users alloc] init] autorelease]), "NSImageZKT");
    EXPECT_THAT(host.calls(), Contains(HasSubstr("UsersImageZKT")).Times(0));
}

TEST_F(ClassPairs, AHostClassOfTheUsersOwnIsPreferredByAWalkingRow) {
    scene.know("UsersWindowZKT");
    scene.know("NSWindowZKT");
    const Class users = makeClass("UsersWindow", classNamed("NSWindow"));
    expectWrapper(*this, [[[users alloc] init] autorelease], "UsersWindowZKT", false);
}

TEST_F(ClassPairs, ASecureTextFieldIsATextField) {
    knowAll();
    expectWrapper(*this, [[[classNamed("NSSecureTextField") alloc] init] autorelease],
                  "NSTextFieldZKT", true);
    EXPECT_THAT(host.calls(),
                ElementsAre("PluginNewInstance(\"NSTextFieldZKT\") = NSTextFieldZKT#1"));
}

TEST_F(ClassPairs, ADirectoryEnumeratorIsAnEnumerator) {
    knowAll();
    expectWrapper(*this, [[NSFileManager defaultManager] enumeratorAtPath:@"/"], "NSEnumeratorZKT",
                  true);
}

TEST_F(ClassPairs, ATableViewIsFoundThroughTheViews) {
    knowAll();
    expectWrapper(*this, [[[classNamed("NSTableView") alloc] init] autorelease], "NSTableViewZKT",
                  false);
    EXPECT_THAT(host.calls(),
                ElementsAre("PluginNewInstance(\"NSTableViewZKT\") = NSTableViewZKT#1"));
}

TEST_F(ClassPairs, ATableViewThatTheHostDoesNotKnowIsTheNextKnownOfItsParents) {
    scene.know("NSViewZKT");
    scene.know("NSResponderZKT");
    expectWrapper(*this, [[[classNamed("NSTableView") alloc] init] autorelease], "NSViewZKT",
                  false);
    EXPECT_THAT(host.calls(),
                ElementsAre(asks("NSTableViewZKT"), asks("NSControlZKT"), asks("NSViewZKT", 1)));
}

TEST_F(ClassPairs, AnUnknownHostClassEndsTheConversion) {
    scene.know("NSObjectZKT");
    scene.know("ShapedObjectZKT");
    makeAllClasses();
    for (const ClassPair &pair : classPairs) {
        if (!pair.rowRegisters)
            continue;
        SCOPED_TRACE(pair.name);
        const Shaped object({pair.name});
        object->types = {1};
        const NSUInteger references = [object retainCount];
        EXPECT_EQ(scene.convertRaw(object), nullptr);
        EXPECT_EQ([object retainCount], references);
        EXPECT_EQ(object->typesAsked, 0u);
    }
    EXPECT_EQ(host::siblings::registryCount(), 0u);
    EXPECT_THAT(host.liveObjects(), IsEmpty());
}

TEST_F(ClassPairs, AWalkWithoutAHostClassEndsTheConversion) {
    makeAllClasses();
    for (const ClassPair &pair : classPairs) {
        if (pair.rowRegisters)
            continue;
        SCOPED_TRACE(pair.name);
        const Shaped object({pair.name});
        object->types = {1};
        EXPECT_EQ(scene.convertRaw(object), nullptr);
        EXPECT_EQ(object->typesAsked, 0u);
    }
}

TEST_F(ClassPairs, WithoutAppKitItsRowsAreSkipped) {
    knowAll();
    ASSERT_EQ(objc_lookUpClass("NSImage"), Nil);
    ASSERT_EQ(objc_lookUpClass("NSView"), Nil);
    expectWrapper(*this, [NSError errorWithDomain:@"domain" code:1 userInfo:nil], "NSErrorZKT",
                  true);
    expectWrapper(*this, [NSIndexSet indexSetWithIndex:1], "NSIndexSetZKT", false);
    expectWrapper(*this, objectOf({"NSExpression"}), "NSExpressionZKT", true);
}

TEST_F(ClassPairs, WithoutAppKitAnUnlistedObjectIsStillWalked) {
    const UntypedObjects untyped;
    scene.know("NSObjectZKT");
    expectWrapper(*this, [[[NSObject alloc] init] autorelease], "NSObjectZKT", false);
}
