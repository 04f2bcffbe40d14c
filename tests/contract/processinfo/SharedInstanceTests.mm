// The shared method "processInfo": one host instance for the shared object, as long as it lives.

#import "SharedScene.h"

#include "host/family/Siblings.h"

#include <CoreFoundation/CoreFoundation.h>

#include <gmock/gmock.h>

#include <array>

using testing::ElementsAre;

static host::ObjectRef sharedInstance(host::Host &host) {
    return host.callShared(processInfoClass, "processInfo").object();
}

TEST(ProcessInfo, GivesAnInstanceBoundToTheSharedObject) {
    LoadedPlugin loaded;
    const auto instance = sharedInstance(loaded.host);
    EXPECT_EQ(loaded.host.className(instance), processInfoClass);
    EXPECT_EQ(handleOf(loaded.host, instance), (const void *)[NSProcessInfo processInfo]);
}

TEST(ProcessInfo, HandsOverTheOneReferenceThatTheHostGave) {
    LoadedPlugin loaded;
    const auto instance = sharedInstance(loaded.host);
    EXPECT_EQ(loaded.host.references(instance), 1);
}

TEST(ProcessInfo, RetainsTheSharedObjectOnceForANewInstance) {
    SharedScene scene;
    const auto instance = sharedInstance(scene.host);
    EXPECT_EQ(handleOf(scene.host, instance), (const void *)scene.shared);
    EXPECT_THAT(scene.host.calls(),
                ElementsAre("[NSProcessInfo processInfo]",
                            R"(PluginNewInstance("NSProcessInfoZKT") = NSProcessInfoZKT#1)",
                            "[shared retain]"));
}

TEST(ProcessInfo, EntersANewInstanceIntoTheRegistry) {
    LoadedPlugin loaded;
    const auto instance = sharedInstance(loaded.host);
    EXPECT_EQ(host::siblings::registered([NSProcessInfo processInfo]), instance.handle());
    EXPECT_EQ(host::siblings::registryCount(), 1u);
}

TEST(ProcessInfo, EntersANewInstanceUnderTheSharedObjectWhateverRetainAnswers) {
    SharedScene scene;
    const OwnObject<NSObject> retained;
    for (const id answer : std::array<id, 2>{retained, nil}) {
        scene.shared->retained = answer;
        const auto instance = sharedInstance(scene.host);
        EXPECT_EQ(handleOf(scene.host, instance), (const void *)answer);
        EXPECT_EQ(host::siblings::registered(scene.shared), instance.handle());
        EXPECT_EQ(host::siblings::registered(retained), nullptr);
        EXPECT_EQ(host::siblings::registryCount(), 1u);
        setHandle(scene.host, instance, nullptr);
        CFDictionaryRemoveValue(static_cast<CFMutableDictionaryRef>(host::siblings::registry()),
                                scene.shared);
    }
}

TEST(ProcessInfo, SecondCallGivesTheSameInstanceWithOneMoreReference) {
    LoadedPlugin loaded;
    const auto first = sharedInstance(loaded.host);
    const auto second = sharedInstance(loaded.host);
    EXPECT_EQ(second.handle(), first.handle());
    EXPECT_EQ(loaded.host.references(first), 2);
}

TEST(ProcessInfo, SecondCallRetainsNothing) {
    SharedScene scene;
    const auto first = sharedInstance(scene.host);
    scene.host.clearTrace();
    const auto second = sharedInstance(scene.host);
    EXPECT_THAT(scene.host.calls(),
                ElementsAre("[NSProcessInfo processInfo]", "REALLockObject(NSProcessInfoZKT#1)"));
}

TEST(ProcessInfo, CallsOneHostServiceForEachUse) {
    LoadedPlugin loaded;
    const auto first = sharedInstance(loaded.host);
    const auto second = sharedInstance(loaded.host);
    const auto third = sharedInstance(loaded.host);
    EXPECT_THAT(loaded.host.trace(),
                ElementsAre("find PluginNewInstance",
                            R"(PluginNewInstance("NSProcessInfoZKT") = NSProcessInfoZKT#1)",
                            "find REALLockObject", "REALLockObject(NSProcessInfoZKT#1)",
                            "REALLockObject(NSProcessInfoZKT#1)"));
}

TEST(ProcessInfo, GivesTheInstanceThatAProgramMade) {
    LoadedPlugin loaded;
    const auto made = loaded.host.newObject(processInfoClass).object();
    const auto shared = sharedInstance(loaded.host);
    EXPECT_EQ(shared.handle(), made.handle());
    EXPECT_EQ(loaded.host.references(made), 2);
    EXPECT_THAT(loaded.host.calls(), ElementsAre("REALLockObject(NSProcessInfoZKT#1)"));
}

TEST(ProcessInfo, GivesTheInstanceThatWasRegisteredLast) {
    LoadedPlugin loaded;
    const auto first = loaded.host.newObject(processInfoClass).object();
    const auto second = loaded.host.newObject(processInfoClass).object();
    EXPECT_EQ(sharedInstance(loaded.host).handle(), second.handle());
}

TEST(ProcessInfo, MakesANewInstanceWhenTheFirstHasDied) {
    LoadedPlugin loaded;
    {
        const auto first = sharedInstance(loaded.host);
    }
    const auto second = sharedInstance(loaded.host);
    EXPECT_EQ(loaded.host.name(second), "NSProcessInfoZKT#2");
    EXPECT_EQ(host::siblings::registered([NSProcessInfo processInfo]), second.handle());
}

TEST(ProcessInfo, MakesAnInstanceForEachSharedObject) {
    SharedScene scene;
    const Traced other("other");
    scene.substitute.answer({scene.shared, other});
    const auto first = sharedInstance(scene.host);
    const auto second = sharedInstance(scene.host);
    EXPECT_NE(second.handle(), first.handle());
    EXPECT_EQ(host::siblings::registered(scene.shared), first.handle());
    EXPECT_EQ(host::siblings::registered(other), second.handle());
}

TEST(ProcessInfo, WithoutARegistryMakesANewInstanceOnEveryCall) {
    SharedScene scene({.siblings = host::Siblings::exceptions});
    const auto first = sharedInstance(scene.host);
    const auto second = sharedInstance(scene.host);
    EXPECT_NE(second.handle(), first.handle());
    EXPECT_THAT(scene.host.calls(),
                ElementsAre("[NSProcessInfo processInfo]",
                            R"(PluginNewInstance("NSProcessInfoZKT") = NSProcessInfoZKT#1)",
                            "[shared retain]", "[NSProcessInfo processInfo]",
                            R"(PluginNewInstance("NSProcessInfoZKT") = NSProcessInfoZKT#2)",
                            "[shared retain]"));
}

TEST(ProcessInfo, GivesNilWithoutASharedObject) {
    SharedScene scene;
    scene.substitute.answer({nil});
    EXPECT_TRUE(scene.host.callShared(processInfoClass, "processInfo").isNil());
    EXPECT_THAT(scene.host.trace(), ElementsAre("[NSProcessInfo processInfo]"));
    EXPECT_EQ(host::siblings::registryCount(), 0u);
}
