// The walk up an object's classes for the first that the host knows, with a check of the object's
// kind (NewNSObjectZKT) and without (the last step of a conversion).

#import "ClassPairs.h"
#include "DispatchScene.h"
#import "ShapedObject.h"
#include "UntypedObjects.h"

#include <gmock/gmock.h>

using testing::Each;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::SizeIs;

namespace {

struct ClassNameWalk : testing::Test {
    const UntypedObjects untyped;
    DispatchScene scene;
    host::Host &host = scene.host;

    static id newOf(Class cls) { return [[[cls alloc] init] autorelease]; }

    const Class base = makeClass("WalkBase", [NSObject class]);
    const Class middle = makeClass("WalkMiddle", base);
    const Class derived = makeClass("WalkDerived", middle);
    const id object = newOf(derived);

    // Both ways, for what they have in common.
    void expectBoth(id walked, const std::string &hostClass) {
        const host::ObjectRef checked = scene.walk(walked, [NSObject class]);
        EXPECT_EQ(host.className(checked), hostClass);
        const host::ObjectRef unchecked = scene.convert(walked);
        EXPECT_EQ(host.className(unchecked), hostClass);
        EXPECT_NE(checked.handle() == nullptr, checked.handle() != unchecked.handle());
        for (const host::ObjectRef &made : {checked, unchecked})
            EXPECT_EQ(scene.wrapped(made),
                      made.handle() == nullptr ? nullptr : (const void *)walked);
    }
};

// Of this length.
std::string longName(std::size_t length) {
    const std::string start = "Long" + std::to_string(length);
    return start + std::string(length - start.size(), 'x');
}

host::ObjectHandle lastMade = nullptr;

host::ObjectHandle makeAndRemember(const char *hostClass) {
    const host::ObjectHandle made = host::Host::current().newInstance(hostClass).release();
    if (made != nullptr)
        lastMade = made;
    return made;
}

} // namespace

TEST_F(ClassNameWalk, OfNilIsNil) {
    EXPECT_EQ(scene.walkRaw(nil, [NSObject class]), nullptr);
    EXPECT_THAT(host.trace(), IsEmpty());
}

TEST_F(ClassNameWalk, WithoutARequiredClassIsNil) {
    scene.know("NSObjectZKT");
    EXPECT_EQ(scene.walkRaw(object, Nil), nullptr);
    EXPECT_EQ(scene.walkRaw(nil, Nil), nullptr);
    EXPECT_THAT(host.trace(), IsEmpty());
}

TEST_F(ClassNameWalk, TakesTheMostDerivedClass) {
    for (const char *known : {"WalkDerivedZKT", "WalkMiddleZKT", "WalkBaseZKT", "NSObjectZKT"})
        scene.know(known);
    expectBoth(object, "WalkDerivedZKT");
    EXPECT_THAT(scene.requests(),
                ElementsAre(asks("WalkDerivedZKT", 1), asks("WalkDerivedZKT", 2)));
}

TEST_F(ClassNameWalk, GoesUpToTheFirstKnownClass) {
    scene.know("WalkBaseZKT");
    scene.know("NSObjectZKT");
    expectBoth(object, "WalkBaseZKT");
    EXPECT_THAT(scene.requests(),
                ElementsAre(asks("WalkDerivedZKT"), asks("WalkMiddleZKT"), asks("WalkBaseZKT", 1),
                            asks("WalkDerivedZKT"), asks("WalkMiddleZKT"), asks("WalkBaseZKT", 2)));
}

TEST_F(ClassNameWalk, GoesUpToTheRoot) {
    scene.know("NSObjectZKT");
    expectBoth(object, "NSObjectZKT");
}

TEST_F(ClassNameWalk, WithoutAnyHostClassIsNil) {
    const NSUInteger references = [object retainCount];
    expectBoth(object, "");
    const std::vector<std::string> once = {asks("WalkDerivedZKT"), asks("WalkMiddleZKT"),
                                           asks("WalkBaseZKT"), asks("NSObjectZKT")};
    std::vector<std::string> twice = once;
    twice.insert(twice.end(), once.begin(), once.end());
    EXPECT_EQ(scene.requests(), twice);
    EXPECT_EQ([object retainCount], references);
}

TEST_F(ClassNameWalk, RetainsTheObjectOnce) {
    scene.know("WalkBaseZKT");
    scene.know("WalkMiddleZKT");
    const NSUInteger references = [object retainCount];
    const host::ObjectRef checked = scene.walk(object, base);
    EXPECT_EQ([object retainCount], references + 1);
    EXPECT_EQ(host.references(checked), 1);
    const host::ObjectRef unchecked = scene.convert(object);
    EXPECT_EQ([object retainCount], references + 2);
    EXPECT_EQ(host.references(unchecked), 1);
}

TEST_F(ClassNameWalk, IsNotRegistered) {
    scene.know("WalkBaseZKT");
    expectBoth(object, "WalkBaseZKT");
    EXPECT_EQ(host::siblings::registryCount(), 0u);
}

TEST_F(ClassNameWalk, OfARegisteredObjectMakesAnInstanceAllTheSame) {
    scene.know("WalkBaseZKT");
    const host::ObjectRef stored = host.newInstance(processInfoClass);
    const RegistryEntry entry((const void *)object, stored.handle());
    const host::ObjectRef made = scene.walk(object, base);
    EXPECT_EQ(host.className(made), "WalkBaseZKT");
    EXPECT_EQ(host.references(stored), 1);
}

TEST_F(ClassNameWalk, AcceptsAnySuperclassAsTheRequiredOne) {
    scene.know("WalkDerivedZKT");
    for (const Class required : {derived, middle, base, [NSObject class]}) {
        EXPECT_EQ(host.className(scene.walk(object, required)), "WalkDerivedZKT");
    }
}

TEST_F(ClassNameWalk, WithAFailingCheckAbandonsAnInstancePerKnownClass) {
    for (const char *known : {"WalkDerivedZKT", "WalkBaseZKT", "NSObjectZKT"})
        scene.know(known);
    const NSUInteger references = [object retainCount];
    EXPECT_EQ(scene.walkRaw(object, [NSError class]), nullptr);
    EXPECT_THAT(scene.requests(), ElementsAre(asks("WalkDerivedZKT", 1), asks("WalkMiddleZKT"),
                                              asks("WalkBaseZKT", 2), asks("NSObjectZKT", 3)));
    EXPECT_THAT(host.calls(), SizeIs(4));
    EXPECT_EQ([object retainCount], references);
    EXPECT_THAT(host.liveObjects(),
                ElementsAre("WalkDerivedZKT#1", "WalkBaseZKT#2", "NSObjectZKT#3"));
    host.shutDown();
    EXPECT_THAT(host.violations(), ElementsAre(HasSubstr("WalkDerivedZKT#1 leaked, 1 reference"),
                                               HasSubstr("WalkBaseZKT#2 leaked, 1 reference"),
                                               HasSubstr("NSObjectZKT#3 leaked, 1 reference")));
}

TEST_F(ClassNameWalk, LeavesAbandonedInstancesEmpty) {
    scene.know("WalkDerivedZKT");
    host.services().replace("PluginNewInstance", makeAndRemember);
    EXPECT_EQ(scene.walkRaw(object, [NSError class]), nullptr);
    ASSERT_NE(lastMade, nullptr);
    EXPECT_EQ(scene.wrapped(lastMade), nullptr);
    host.shutDown();
    EXPECT_THAT(host.violations(), SizeIs(1));
}

TEST_F(ClassNameWalk, ChecksTheKindOnceAnInstanceIsAtHand) {
    scene.know("NSObjectZKT");
    const Shaped shaped({"NSError"});
    const host::ObjectRef made = scene.walk(shaped, [NSError class]);
    EXPECT_THAT(host.calls(),
                ElementsAre("[class]", asks("ShapedObjectZKT"), asks("NSObjectZKT", 1),
                            "[isKindOfClass:NSError]", "[retain]"));
}

TEST_F(ClassNameWalk, ChecksTheKindAgainForEachInstance) {
    scene.know("NSObjectZKT");
    scene.know("ShapedObjectZKT");
    const Shaped shaped;
    EXPECT_EQ(scene.walkRaw(shaped, [NSError class]), nullptr);
    EXPECT_THAT(host.calls(),
                ElementsAre("[class]", asks("ShapedObjectZKT", 1), "[isKindOfClass:NSError]",
                            asks("NSObjectZKT", 2), "[isKindOfClass:NSError]"));
    host.shutDown();
    EXPECT_THAT(host.violations(), SizeIs(2));
}

TEST_F(ClassNameWalk, ChecksNoKindInAConversion) {
    scene.know("ShapedObjectZKT");
    const Shaped shaped;
    const host::ObjectRef made = scene.convert(shaped);
    const std::vector<std::string> calls = host.calls();
    ASSERT_GE(calls.size(), 3u);
    EXPECT_THAT(std::vector(calls.end() - 3, calls.end()),
                ElementsAre("[class]", asks("ShapedObjectZKT", 1), "[retain]"));
}

TEST_F(ClassNameWalk, StartsAtTheClassThatTheObjectTells) {
    scene.know("WalkMiddleZKT");
    const Shaped shaped({"NSObject"});
    shaped->itsClass = derived;
    expectBoth(shaped, "WalkMiddleZKT");
    EXPECT_THAT(scene.requests(), ElementsAre(asks("WalkDerivedZKT"), asks("WalkMiddleZKT", 1),
                                              asks("WalkDerivedZKT"), asks("WalkMiddleZKT", 2)));
}

TEST_F(ClassNameWalk, OfAnObjectWithoutAClassIsNil) {
    scene.know("NSObjectZKT");
    scene.know("ShapedObjectZKT");
    const Shaped shaped({"NSObject"});
    shaped->itsClass = Nil;
    expectBoth(shaped, "");
    EXPECT_THAT(scene.requests(), IsEmpty());
}

TEST_F(ClassNameWalk, AsksForNamesOf199Characters) {
    const Class longest = makeClass(longName(199), base);
    scene.know(longName(199) + "ZKT");
    expectBoth(newOf(longest), longName(199) + "ZKT");
}

TEST_F(ClassNameWalk, PassesOverLongerNames) {
    for (const std::size_t length : {200U, 201U, 252U, 253U, 255U, 256U, 1000U}) {
        SCOPED_TRACE(length);
        const Class tooLong = makeClass(longName(length), base);
        scene.know(longName(length) + "ZKT");
        host.clearTrace();
        expectBoth(newOf(tooLong), "");
        EXPECT_THAT(scene.requests(), ElementsAre(asks("WalkBaseZKT"), asks("NSObjectZKT"),
                                                  asks("WalkBaseZKT"), asks("NSObjectZKT")));
    }
}

TEST_F(ClassNameWalk, GoesOnAboveALongerName) {
    scene.know("WalkBaseZKT");
    const Class below = makeClass("BelowTheLongOne", makeClass(longName(200), base));
    expectBoth(newOf(below), "WalkBaseZKT");
    EXPECT_THAT(scene.requests(), ElementsAre(asks("BelowTheLongOneZKT"), asks("WalkBaseZKT", 1),
                                              asks("BelowTheLongOneZKT"), asks("WalkBaseZKT", 2)));
}

TEST_F(ClassNameWalk, AsksForANameOfOneCharacter) {
    scene.know("WZKT");
    expectBoth(newOf(makeClass("W", base)), "WZKT");
}

TEST_F(ClassNameWalk, WithoutTheServiceAsksForItAgainForEachClass) {
    host.services().hide("PluginNewInstance");
    EXPECT_EQ(scene.walkRaw(object, base), nullptr);
    EXPECT_THAT(host.trace(), testing::AllOf(SizeIs(4), Each("miss PluginNewInstance")));
    host.clearTrace();
    EXPECT_EQ(scene.convertRaw(object), nullptr);
    EXPECT_THAT(host.trace(), testing::AllOf(SizeIs(4), Each("miss PluginNewInstance")));
}

TEST_F(ClassNameWalk, OfAClassObjectStartsAtTheClass) {
    scene.know("WalkMiddleZKT");
    scene.know("NSErrorZKT");
    const host::ObjectRef made = scene.convert((id)derived);
    EXPECT_EQ(host.className(made), "WalkMiddleZKT");
    EXPECT_EQ(scene.wrapped(made), (const void *)derived);
    // Not itself an error, so no row takes it.
    const host::ObjectRef errors = scene.convert((id)[NSError class]);
    EXPECT_EQ(host.className(errors), "NSErrorZKT");
    EXPECT_EQ(host::siblings::registryCount(), 0u);
}
