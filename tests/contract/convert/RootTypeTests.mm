// Objects that no row takes, as macOS has them: each is a Core Foundation object of the root type,
// unless it denies that. Only then the names of its classes count.

#import "ClassPairs.h"
#include "DispatchScene.h"
#import "MethodFunctions.h"

#include <gmock/gmock.h>

#include <objc/runtime.h>

using testing::ElementsAre;

namespace {

struct RootType : testing::Test {
    DispatchScene scene;
    host::Host &host = scene.host;

    // What the walk would find.
    RootType() {
        for (const char *known : {"NSLockZKT", "NSErrorZKT", "UsersClassZKT", "NSObjectZKT"})
            scene.know(known);
    }

    std::string classOf(id object) { return host.className(scene.convert(object)); }
    std::string classOfNew(Class cls) { return classOf([[[cls alloc] init] autorelease]); }

    /// A class whose objects answer a message in their own way.
    template <class Function>
    static Class usersClass(const char *selector, Function *function, const char *types) {
        const Class made = makeClass("UsersClass", [NSObject class]);
        class_addMethod(made, sel_registerName(selector), implementationOf(function), types);
        return made;
    }
};

CFTypeID noType(id, SEL) {
    return 0;
}

BOOL respondsToNoType(id self, SEL, SEL selector) {
    return !sel_isEqual(selector, sel_registerName("_cfTypeID")) &&
           class_respondsToSelector(object_getClass(self), selector);
}

} // namespace

TEST_F(RootType, MakesACoreFoundationObjectOfWhateverNoRowTakes) {
    scene.knowCoreFoundation("CFObjectZKT");
    EXPECT_EQ(classOfNew([NSObject class]), "CFObjectZKT");
    EXPECT_EQ(classOfNew([NSLock class]), "CFObjectZKT");
    EXPECT_EQ(classOfNew(makeClass("UsersClass", [NSObject class])), "CFObjectZKT");
    EXPECT_EQ(classOf([NSProcessInfo processInfo]), "CFObjectZKT") << "not " << processInfoClass;
    EXPECT_EQ(classOf((id)[NSError class]), "CFObjectZKT") << "a class is an object";
}

TEST_F(RootType, HasAWrapperThatHoldsTheObjectAndIsNotRegistered) {
    scene.knowCoreFoundation("CFObjectZKT");
    const id object = [[[NSObject alloc] init] autorelease];
    const NSUInteger references = [object retainCount];
    {
        const host::ObjectRef made = scene.convert(object);
        EXPECT_EQ(scene.wrapped(made), (const void *)object);
        EXPECT_EQ([object retainCount], references + 1);
        EXPECT_EQ(host::siblings::registryCount(), 0u);
        EXPECT_THAT(scene.requests(), ElementsAre(asks("CFObjectZKT", 1)));
    }
    EXPECT_EQ([object retainCount], references);
}

TEST_F(RootType, IsNilWhereTheHostHasNoClassForIt) {
    const id object = [[[NSLock alloc] init] autorelease];
    EXPECT_EQ(scene.convertRaw(object), nullptr);
    EXPECT_THAT(scene.requests(), ElementsAre(asks("CFObjectZKT"), asks("CFObjectZKT")))
        << "and no class of the object's is asked for";
}

TEST_F(RootType, StandsBehindTheRows) {
    scene.knowCoreFoundation("CFObjectZKT");
    scene.know("NSFileManagerZKT");
    EXPECT_EQ(classOf([NSFileManager defaultManager]), "NSFileManagerZKT");
    EXPECT_EQ(scene.convertRaw((id)[NSNull null]), nullptr);
}

TEST_F(RootType, MayBeDeniedByTheAnswer) {
    scene.knowCoreFoundation("CFObjectZKT");
    EXPECT_EQ(classOfNew(usersClass("_cfTypeID", noType, "Q@:")), "UsersClassZKT");
}

TEST_F(RootType, MayBeDeniedByNotResponding) {
    scene.knowCoreFoundation("CFObjectZKT");
    EXPECT_EQ(classOfNew(usersClass("respondsToSelector:", respondsToNoType, "c@::")),
              "UsersClassZKT");
}
