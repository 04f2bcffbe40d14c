// Classes that are loaded after a first conversion, and classes that change afterwards.

#import "ClassPairs.h"
#include "DispatchScene.h"
#import "MethodFunctions.h"
#import "ShapedObject.h"
#include "UntypedObjects.h"

#include <gtest/gtest.h>

#include <objc/runtime.h>

namespace {

IMP foundationsIsKindOfClass = nullptr;

// As NSObject answers, and an image besides.
BOOL isAnImageToo(id self, SEL selector, Class wanted) {
    return wanted == objc_lookUpClass("NSImage") ||
           functionOf<BOOL(id, SEL, Class)>(foundationsIsKindOfClass)(self, selector, wanted);
}

struct LaterClasses : testing::Test {
    const UntypedObjects untyped;
    DispatchScene scene;
    host::Host &host = scene.host;

    LaterClasses() {
        foundationsIsKindOfClass = method_getImplementation(
            class_getInstanceMethod([NSObject class], @selector(isKindOfClass:)));
    }
    std::string classOf(id object) { return host.className(scene.convert(object)); }
    std::string classOfNew(Class cls) { return classOf([[[cls alloc] init] autorelease]); }
};

Class classOfErrors(id, SEL) {
    return [NSError class];
}

} // namespace

TEST_F(LaterClasses, CountFromThenOn) {
    for (const ClassPair &pair : classPairs)
        scene.know(pair.hostClass());
    EXPECT_EQ(scene.convertRaw([[[NSObject alloc] init] autorelease]), nullptr);
    for (const ClassPair &pair : classPairs) {
        SCOPED_TRACE(pair.name);
        if (objc_lookUpClass(pair.name) == Nil) {
            EXPECT_EQ(classOf(objectOf(pair)), pair.hostClassOfObjects());
        }
    }
}

TEST_F(LaterClasses, CountForAnObjectThatAnswersForItself) {
    scene.know("NSShadowZKT");
    const Shaped object({"NSShadow"});
    EXPECT_EQ(scene.convertRaw(object), nullptr);
    classNamed("NSShadow");
    EXPECT_EQ(classOf(object), "NSShadowZKT");
}

TEST_F(LaterClasses, AnEarlierRowThatComesLaterStillWins) {
    scene.know("NSColorZKT");
    scene.know("NSImageZKT");
    const Class color = classNamed("NSColor");
    EXPECT_EQ(classOfNew(color), "NSColorZKT");
    const Shaped both({"NSColor", "NSImage"});
    EXPECT_EQ(classOf(both), "NSColorZKT");
    classNamed("NSImage");
    EXPECT_EQ(classOf(both), "NSImageZKT");
    EXPECT_EQ(classOfNew(color), "NSColorZKT");
}

TEST_F(LaterClasses, ASubclassMadeAfterItsParentWasMetIsTakenLikeIt) {
    scene.know("NSImageZKT");
    const Class image = classNamed("NSImage");
    EXPECT_EQ(classOfNew(image), "NSImageZKT");
    EXPECT_EQ(classOfNew(makeClass("LaterImage", image)), "NSImageZKT");
}

TEST_F(LaterClasses, ManyUnlistedClassesStayUnlisted) {
    scene.know("NSObjectZKT");
    Class parent = [NSObject class];
    for (int i = 0; i < 300; ++i) {
        parent = makeClass("Unlisted" + std::to_string(i), parent);
        ASSERT_EQ(classOfNew(parent), "NSObjectZKT");
    }
}

TEST_F(LaterClasses, AnIsKindOfClassAddedLaterIsAsked) {
    scene.know("NSImageZKT");
    scene.know("NSObjectZKT");
    classNamed("NSImage");
    const Class plain = makeClass("PlainAtFirst", [NSObject class]);
    EXPECT_EQ(classOfNew(plain), "NSObjectZKT");
    class_addMethod(plain, @selector(isKindOfClass:), implementationOf(isAnImageToo), "c@:#");
    EXPECT_EQ(classOfNew(plain), "NSImageZKT");
    EXPECT_EQ(classOfNew(makeClass("BelowIt", plain)), "NSImageZKT");
}

TEST_F(LaterClasses, AnIsKindOfClassReplacedInTheRootIsAsked) {
    scene.know("NSImageZKT");
    scene.know("NSObjectZKT");
    classNamed("NSImage");
    const Class plain = makeClass("Plain", [NSObject class]);
    EXPECT_EQ(classOfNew(plain), "NSObjectZKT");
    const Method method = class_getInstanceMethod([NSObject class], @selector(isKindOfClass:));
    const id object = [[[plain alloc] init] autorelease];
    const IMP before = method_setImplementation(method, implementationOf(isAnImageToo));
    const host::ObjectHandle converted = scene.convertRaw(object);
    method_setImplementation(method, before);
    const host::ObjectRef made = host::ObjectRef::adopt(converted);
    EXPECT_EQ(host.className(made), "NSImageZKT");
}

TEST_F(LaterClasses, AClassAddedToAnObjectCounts) {
    scene.know("NSImageZKT");
    scene.know("NSObjectZKT");
    const id object = [[[NSObject alloc] init] autorelease];
    EXPECT_EQ(classOf(object), "NSObjectZKT");
    object_setClass(object, classNamed("NSImage"));
    EXPECT_EQ(classOf(object), "NSImageZKT");
}

TEST_F(LaterClasses, AClassMethodAddedLaterDecidesWhereTheWalkStarts) {
    scene.know("NSErrorZKT");
    scene.know("PlainAtFirstZKT");
    const Class plain = makeClass("PlainAtFirst", [NSObject class]);
    EXPECT_EQ(classOfNew(plain), "PlainAtFirstZKT");
    class_addMethod(plain, @selector(class), implementationOf(classOfErrors), "#@:");
    EXPECT_EQ(classOfNew(plain), "NSErrorZKT");
    EXPECT_EQ(host::siblings::registryCount(), 0u);
}
