// The five classes that are looked up once, by the first conversion that comes as far as they
// stand, and what counts from then on.

#include "ClassLookupSpy.h"
#import "ClassPairs.h"
#include "DispatchScene.h"
#import "MethodFunctions.h"
#import "ShapedObject.h"
#include "UntypedObjects.h"

#include <gmock/gmock.h>

#include <objc/runtime.h>

namespace {

struct OnceOnlyClasses : testing::Test {
    const UntypedObjects untyped;
    DispatchScene scene;
    host::Host &host = scene.host;

    OnceOnlyClasses() {
        for (const ClassPair &pair : lateClassPairs) {
            EXPECT_EQ(objc_lookUpClass(pair.name), Nil);
            scene.know(pair.hostClass());
        }
        scene.know("NSObjectZKT");
        scene.know("NSImageZKT");
    }
    std::string classOf(id object) { return host.className(scene.convert(object)); }
    // By its row, which enters the object in the registry. The class-name walk, which finds the
    // same host class, does not.
    bool isTaken(const ClassPair &pair) {
        const id object = objectOf(pair);
        const host::ObjectRef made = scene.convert(object);
        EXPECT_EQ(host.className(made), pair.hostClass());
        return host::siblings::registered((const void *)object) == made.handle();
    }
    id plain() { return [[[NSObject alloc] init] autorelease]; }
};

void *unwrapNothing(id, SEL) {
    return nullptr;
}

} // namespace

TEST_F(OnceOnlyClasses, AreTakenWhenTheyExist) {
    makeAllClasses();
    for (const ClassPair &pair : lateClassPairs) {
        SCOPED_TRACE(pair.name);
        const id object = objectOf(pair);
        const host::ObjectRef made = scene.convert(object);
        EXPECT_EQ(host.className(made), pair.hostClass());
        EXPECT_EQ(host::siblings::registered((const void *)object), made.handle());
    }
}

TEST_F(OnceOnlyClasses, AreTakenForSubclassesToo) {
    for (const ClassPair &pair : lateClassPairs)
        makeClass(std::string(pair.name) + "OfTheUser", classNamed(pair.name));
    for (const ClassPair &pair : lateClassPairs) {
        SCOPED_TRACE(pair.name);
        const Class users = classNamed(std::string(pair.name) + "OfTheUser");
        EXPECT_EQ(classOf([[[users alloc] init] autorelease]), pair.hostClass());
    }
}

TEST_F(OnceOnlyClasses, AreSkippedWithoutErrorWhileTheyAreAbsent) {
    EXPECT_EQ(classOf(plain()), "NSObjectZKT");
    EXPECT_EQ(classOf(plain()), "NSObjectZKT");
}

TEST_F(OnceOnlyClasses, StayAbsentOnceAConversionLookedForThem) {
    EXPECT_EQ(classOf(plain()), "NSObjectZKT");
    for (const ClassPair &pair : lateClassPairs) {
        SCOPED_TRACE(pair.name);
        EXPECT_FALSE(isTaken(pair));
    }
}

TEST_F(OnceOnlyClasses, StayAbsentForObjectsThatAnswerForThemselves) {
    const Shaped object({"NSUserNotification", "NSDraggingImageComponent", "QuartzFilter",
                         "QCComposition", "QCCompositionRepository"});
    EXPECT_EQ(classOf(object), "NSObjectZKT");
    makeAllClasses();
    EXPECT_EQ(classOf(object), "NSObjectZKT");
}

TEST_F(OnceOnlyClasses, OneMayBePresentWhileTheOthersStayAbsent) {
    const ClassPair &present = lateClassPairs[2];
    classNamed(present.name);
    EXPECT_EQ(classOf(plain()), "NSObjectZKT");
    for (const ClassPair &pair : lateClassPairs) {
        SCOPED_TRACE(pair.name);
        EXPECT_EQ(isTaken(pair), &pair == &present);
    }
}

TEST_F(OnceOnlyClasses, AreNotLookedForByAnEarlierTest) {
    classNamed("NSImage");
    scene.convert([NSURL URLWithString:@"http://example.com/"]);
    scene.convert(@"text");
    scene.convert([NSData data]);
    scene.convert([NSArray array]);
    scene.convert([NSSet set]);
    scene.convert((id)kCFBooleanTrue);
    scene.convert([NSNumber numberWithInt:1]);
    scene.convert([NSDate date]);
    scene.convert([NSDictionary dictionary]);
    scene.convertRaw(nil);
    scene.convertRaw((id)[NSNull null]);
    EXPECT_TRUE(isTaken({"NSImage"}));
    for (const ClassPair &pair : lateClassPairs) {
        SCOPED_TRACE(pair.name);
        EXPECT_TRUE(isTaken(pair));
    }
}

// Each is taken before the next one is looked for.
TEST_F(OnceOnlyClasses, AreLookedForOneByOne) {
    for (const ClassPair &pair : lateClassPairs) {
        SCOPED_TRACE(pair.name);
        EXPECT_TRUE(isTaken(pair));
    }
}

TEST_F(OnceOnlyClasses, AreLookedForByAnObjectThatIsARegistryHitOnlyWhenItIsNot) {
    const id object = plain();
    const host::ObjectRef stored = host.newInstance(processInfoClass);
    {
        const RegistryEntry entry((const void *)object, stored.handle());
        EXPECT_EQ(classOf(object), processInfoClass);
    }
    EXPECT_TRUE(isTaken(lateClassPairs[0]));
}

TEST_F(OnceOnlyClasses, AValueComesAsFarAsTheyStand) {
    const int number = 0;
    NSValue *const value = [NSValue valueWithBytes:&number objCType:"{NoSuchStructure=i}"];
    EXPECT_EQ(scene.convertRaw((id)value), nullptr);
    for (const ClassPair &pair : lateClassPairs) {
        SCOPED_TRACE(pair.name);
        EXPECT_FALSE(isTaken(pair));
    }
}

TEST_F(OnceOnlyClasses, ABoxedObjectComesAsFarAsTheyStand) {
    const Class wrapper = makeClass("ZKTREALobjectWrapper", [NSObject class]);
    class_addMethod(wrapper, sel_registerName("unwrap"), implementationOf(unwrapNothing), "^v@:");
    EXPECT_EQ(scene.convertRaw([[[wrapper alloc] init] autorelease]), nullptr);
    EXPECT_FALSE(isTaken(lateClassPairs[0]));
}

TEST_F(OnceOnlyClasses, AreAskedForByNameOnceWhetherFoundOrNot) {
    classNamed("QuartzFilter");
    const ClassLookupSpy spy(scene.image);
    for (int i = 0; i < 3; ++i)
        scene.convert(plain());
    for (const ClassPair &pair : lateClassPairs)
        EXPECT_EQ(spy.count(pair.name), 1u) << pair.name;
}

TEST_F(OnceOnlyClasses, AnEarlierRowWinsOverThem) {
    const Class image = classNamed("NSImage");
    const Class both = makeClass("QuartzFilter", image);
    EXPECT_EQ(classOf([[[both alloc] init] autorelease]), "NSImageZKT");
}

TEST_F(OnceOnlyClasses, LetTheFirstInOrderWinWhateverTheClassTree) {
    const Class notification = makeClass("NSUserNotification", [NSObject class]);
    const Class repository = makeClass("QCCompositionRepository", [NSObject class]);
    const Class filter = makeClass("QuartzFilter", repository);
    const Class component = makeClass("NSDraggingImageComponent", notification);
    EXPECT_EQ(classOf([[[filter alloc] init] autorelease]), "QuartzFilterZKT");
    EXPECT_EQ(classOf([[[component alloc] init] autorelease]), "NSUserNotificationZKT");
}
