// Views are offered to a sibling first, which may make the host object itself.

#include "Caught.h"
#import "ClassPairs.h"
#include "DispatchScene.h"
#import "MethodFunctions.h"
#import "ShapedObject.h"
#include "TraceLines.h"

#include <gmock/gmock.h>

#include <objc/runtime.h>

#include <functional>

using testing::ElementsAre;
using testing::IsEmpty;

namespace {

std::function<void *(id)> hookAnswer;

void *answer(id, SEL, id view) {
    noteInTrace("[NSValue NewQTKitNSViewZKT:" + std::string(object_getClassName(view)) + "]");
    return hookAnswer(view);
}

IMP foundationsRespondsToSelector = nullptr;

BOOL respondsToSelector(id self, SEL selector, SEL asked) {
    noteInTrace(std::string("[NSValue respondsToSelector:") + sel_getName(asked) + "]");
    return functionOf<BOOL(id, SEL, SEL)>(foundationsRespondsToSelector)(self, selector, asked);
}

struct ViewHook : testing::Test {
    DispatchScene scene;
    host::Host &host = scene.host;
    const id view = [[[classNamed("NSView") alloc] init] autorelease];

    // Both stay for the life of the process.
    void install(std::function<void *(id)> hook) {
        hookAnswer = std::move(hook);
        class_addMethod(object_getClass([NSValue class]), sel_registerName("NewQTKitNSViewZKT:"),
                        implementationOf(answer), "^v@:@");
    }
    void watchQuestions() {
        const Class metaclass = object_getClass([NSValue class]);
        foundationsRespondsToSelector =
            class_getMethodImplementation(metaclass, @selector(respondsToSelector:));
        class_addMethod(metaclass, @selector(respondsToSelector:),
                        implementationOf(respondsToSelector), "c@::");
    }
    std::string classOf(id object) { return host.className(scene.convert(object)); }

    const std::string question = "[NSValue respondsToSelector:NewQTKitNSViewZKT:]";
    const std::string offer = "[NSValue NewQTKitNSViewZKT:NSView]";
};

} // namespace

TEST_F(ViewHook, IsLookedForBeforeTheWalk) {
    scene.know("NSViewZKT");
    watchQuestions();
    const host::ObjectRef made = scene.convert(view);
    EXPECT_THAT(host.calls(), ElementsAre(question, asks("NSViewZKT", 1)));
    EXPECT_EQ(host::siblings::registryCount(), 0u);
}

TEST_F(ViewHook, MakesTheResult) {
    scene.know("NSViewZKT");
    scene.know("QTMovieViewZKT");
    id offered = nil;
    host::ObjectHandle made = nullptr;
    install([&](id object) {
        offered = object;
        return made = host.newInstance("QTMovieViewZKT").release();
    });
    watchQuestions();
    const NSUInteger references = [view retainCount];
    const host::ObjectRef converted = scene.convert(view);
    EXPECT_EQ(converted.handle(), made);
    EXPECT_EQ(offered, view);
    EXPECT_EQ(host.references(converted), 1);
    EXPECT_EQ([view retainCount], references);
    EXPECT_EQ(scene.wrapped(converted), nullptr);
    EXPECT_EQ(host::siblings::registryCount(), 0u);
    EXPECT_THAT(host.calls(), ElementsAre(question, offer));
}

TEST_F(ViewHook, MayMakeNothing) {
    scene.know("NSViewZKT");
    install([](id) { return nullptr; });
    watchQuestions();
    const host::ObjectRef converted = scene.convert(view);
    EXPECT_THAT(host.calls(), ElementsAre(question, offer, asks("NSViewZKT", 1)));
    EXPECT_EQ(scene.wrapped(converted), (const void *)view);
}

TEST_F(ViewHook, MayMakeNothingForAViewWithoutAHostClass) {
    install([](id) { return nullptr; });
    EXPECT_EQ(scene.convertRaw(view), nullptr);
    EXPECT_THAT(host.calls(),
                ElementsAre(offer, asks("NSViewZKT"), asks("NSResponderZKT"), asks("NSObjectZKT")));
}

TEST_F(ViewHook, CountsWhenItComesLater) {
    scene.know("NSViewZKT");
    EXPECT_EQ(classOf(view), "NSViewZKT");
    const host::ObjectRef siblings = host.newInstance(processInfoClass);
    install([&](id) { return host::ObjectRef(siblings).release(); });
    EXPECT_EQ(classOf(view), processInfoClass);
}

TEST_F(ViewHook, IsAskedAgainForEachConversion) {
    scene.know("NSViewZKT");
    int offers = 0;
    install([&](id) {
        ++offers;
        return nullptr;
    });
    EXPECT_EQ(classOf(view), "NSViewZKT");
    EXPECT_EQ(classOf(view), "NSViewZKT");
    EXPECT_EQ(offers, 2);
}

TEST_F(ViewHook, IsOfferedEveryViewThatNoEarlierRowTakes) {
    makeAllClasses();
    std::vector<std::string> offered;
    install([&](id object) {
        offered.emplace_back(object_getClassName(object));
        return nullptr;
    });
    for (const ClassPair &pair : classPairs)
        if (![classNamed(pair.name) isSubclassOfClass:classNamed("NSView")])
            scene.convert(objectOf(pair));
    EXPECT_THAT(offered, IsEmpty());
    for (const ClassPair &pair : classPairs)
        if ([classNamed(pair.name) isSubclassOfClass:classNamed("NSView")])
            scene.convert(objectOf(pair));
    EXPECT_THAT(offered, ElementsAre("NSView", "NSScroller", "NSText", "NSTableHeaderView",
                                     "NSTableView", "NSTextView"));
}

TEST_F(ViewHook, IsNotLookedForWithoutAView) {
    scene.know("NSObjectZKT");
    install([](id) { return nullptr; });
    watchQuestions();
    const host::ObjectRef window = scene.convert(objectOf({"NSWindow"}));
    EXPECT_EQ(scene.convertRaw([[[NSObject alloc] init] autorelease]), nullptr);
    EXPECT_THAT(host.calls(),
                ElementsAre(asks("NSWindowZKT"), asks("NSResponderZKT"), asks("NSObjectZKT", 1),
                            asks("CFObjectZKT"), asks("CFObjectZKT")));
}

TEST_F(ViewHook, IsOfferedAnObjectThatOnlySaysItIsAView) {
    install([](id) { return nullptr; });
    const Shaped object({"NSView", "NSWindow"});
    EXPECT_EQ(scene.convertRaw(object), nullptr);
    EXPECT_THAT(host.calls(), testing::Contains("[NSValue NewQTKitNSViewZKT:ShapedObject]"));
}

TEST_F(ViewHook, LetsItsExceptionPassOut) {
    install([](id) -> void * {
        [NSException raise:@"Refused" format:@"no"];
        return nullptr;
    });
    EXPECT_EQ(cocoaExceptionFrom([&] { scene.convertRaw(view); }), "Refused: no");
}
