// Kinds as macOS has them: NSObject's isKindOfClass: begins with what the object answers to class,
// where GNUstep's begins with the object's real class.

#import "ClassPairs.h"
#include "DispatchScene.h"
#import "MethodFunctions.h"
#include "UntypedObjects.h"

#include <gtest/gtest.h>

#include <objc/runtime.h>

namespace {

BOOL isKindByClass(id self, SEL, Class wanted) {
    for (Class each = [self class]; each != Nil; each = class_getSuperclass(each))
        if (each == wanted)
            return YES;
    return NO;
}

// Stands before the image is loaded, as the system's own method would.
struct MacosKinds {
    const Method method = class_getInstanceMethod([NSObject class], @selector(isKindOfClass:));
    const IMP before = method_setImplementation(method, implementationOf(isKindByClass));
    MacosKinds() = default;
    ~MacosKinds() { method_setImplementation(method, before); }
    MacosKinds(const MacosKinds &) = delete;
    MacosKinds &operator=(const MacosKinds &) = delete;
};

struct KindByClass : testing::Test {
    const UntypedObjects untyped;
    MacosKinds kinds;
    DispatchScene scene;
    host::Host &host = scene.host;

    KindByClass() {
        // What the plug-in took for a replacement passes for the system's own from here on.
        scene.convert(@"");
        *imageFunction<IMP>(scene.image, "(anonymous namespace)::isKindOfClassOfNSObject") =
            implementationOf(isKindByClass);
        host.clearTrace();
        scene.know("NSImageZKT");
        scene.know("NSShadowZKT");
        scene.know("NSObjectZKT");
    }
    // A class whose objects answer to class as told.
    static Class makeDisguised(const std::string &name, Class parent, Class (*answer)(id, SEL)) {
        const Class made = makeClass(name, parent);
        class_addMethod(made, @selector(class), implementationOf(answer), "#@:");
        return made;
    }
    void expectWrapper(Class cls, const std::string &hostClass, bool entered) {
        const id object = [[[cls alloc] init] autorelease];
        const host::ObjectRef made = scene.convert(object);
        EXPECT_EQ(host.className(made), hostClass);
        EXPECT_EQ(host::siblings::registered((const void *)object) != nullptr, entered);
    }
};

Class saysObject(id, SEL) {
    return [NSObject class];
}

Class saysImage(id, SEL) {
    return classNamed("NSImage");
}

} // namespace

TEST_F(KindByClass, AnOrdinaryObjectIsWhatItsClassIs) {
    expectWrapper(classNamed("NSImage"), "NSImageZKT", true);
    expectWrapper(makeClass("UsersImage", classNamed("NSImage")), "NSImageZKT", true);
    expectWrapper(makeClass("Unlisted", [NSObject class]), "NSObjectZKT", false);
}

TEST_F(KindByClass, AnObjectIsNoKindOfTheClassesThatItHides) {
    expectWrapper(makeDisguised("HiddenImage", classNamed("NSImage"), saysObject), "NSObjectZKT",
                  false);
}

TEST_F(KindByClass, AnObjectIsAKindOfTheClassThatItTells) {
    expectWrapper(makeDisguised("ToldImage", classNamed("NSShadow"), saysImage), "NSImageZKT",
                  true);
    expectWrapper(makeDisguised("ToldImageToo", [NSObject class], saysImage), "NSImageZKT", true);
}

namespace {

// Takes the place of NSObject's own before the first conversion, as a sibling might have done.
BOOL isNoImage(id self, SEL, Class wanted) {
    for (Class each = object_getClass(self); each != Nil; each = class_getSuperclass(each))
        if (each == wanted)
            return wanted != classNamed("NSImage");
    return NO;
}

} // namespace

TEST(KindByReplacement, IsAskedForAlthoughTheReplacementIsOlderThanTheFirstConversion) {
    const UntypedObjects untyped;
    DispatchScene scene;
    scene.know("NSImageZKT");
    const id image = [[[classNamed("NSImage") alloc] init] autorelease];
    const Method method = class_getInstanceMethod([NSObject class], @selector(isKindOfClass:));
    const IMP before = method_setImplementation(method, implementationOf(isNoImage));
    const host::ObjectRef made = scene.convert(image);
    method_setImplementation(method, before);
    // By the name of its class in the end, and not by the row.
    EXPECT_EQ(scene.host.className(made), "NSImageZKT");
    EXPECT_EQ(host::siblings::registered((const void *)image), nullptr);
}
