// How instances come to be: the class constructor and the "Constructor" method.

#import "SharedScene.h"

#include "host/family/Siblings.h"

#include <gmock/gmock.h>

using testing::Each;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::Not;
using testing::StartsWith;

TEST(ClassConstructor, LeavesTheInstanceEmpty) {
    LoadedPlugin loaded;
    const auto instance = loaded.host.newInstance(processInfoClass);
    EXPECT_EQ(handleOf(loaded.host, instance), nullptr);
}

TEST(ClassConstructor, NeitherAsksForTheSharedObjectNorRegisters) {
    SharedScene scene;
    const auto instance = scene.host.newInstance(processInfoClass);
    EXPECT_THAT(scene.host.trace(), IsEmpty());
    EXPECT_EQ(host::siblings::registryCount(), 0u);
}

TEST(Constructor, BindsTheInstanceToTheSharedObject) {
    LoadedPlugin loaded;
    const auto instance = loaded.host.newObject(processInfoClass).object();
    EXPECT_EQ(handleOf(loaded.host, instance), (const void *)[NSProcessInfo processInfo]);
}

TEST(Constructor, AsksForTheSharedObjectAndRetainsItOnce) {
    SharedScene scene;
    const auto instance = scene.host.newObject(processInfoClass).object();
    EXPECT_EQ(handleOf(scene.host, instance), (const void *)scene.shared);
    EXPECT_THAT(scene.host.trace(), ElementsAre("[NSProcessInfo processInfo]", "[shared retain]"));
}

TEST(Constructor, StoresWhatRetainAnswers) {
    SharedScene scene;
    const Traced retained("retained");
    scene.shared->retained = retained;
    const auto instance = scene.host.newObject(processInfoClass).object();
    EXPECT_EQ(handleOf(scene.host, instance), (const void *)retained);
    EXPECT_EQ(host::siblings::registered(retained), instance.handle());
    EXPECT_EQ(host::siblings::registryCount(), 1u);
    [retained retain]; // what the destructor gives back
}

TEST(Constructor, EntersTheInstanceIntoTheRegistry) {
    LoadedPlugin loaded;
    const auto instance = loaded.host.newObject(processInfoClass).object();
    EXPECT_EQ(host::siblings::registered([NSProcessInfo processInfo]), instance.handle());
    EXPECT_EQ(host::siblings::registryCount(), 1u);
}

TEST(Constructor, RegistersWithoutAReferenceToTheInstance) {
    LoadedPlugin loaded;
    const auto instance = loaded.host.newObject(processInfoClass).object();
    EXPECT_EQ(loaded.host.references(instance), 1);
}

TEST(Constructor, ReplacesAnEarlierEntryForTheSharedObject) {
    LoadedPlugin loaded;
    const auto first = loaded.host.newObject(processInfoClass).object();
    const auto second = loaded.host.newObject(processInfoClass).object();
    EXPECT_EQ(host::siblings::registered([NSProcessInfo processInfo]), second.handle());
    EXPECT_EQ(host::siblings::registryCount(), 1u);
}

TEST(Constructor, BindsWithoutARegistry) {
    LoadedPlugin loaded({.siblings = host::Siblings::exceptions});
    const auto instance = loaded.host.newObject(processInfoClass).object();
    EXPECT_EQ(handleOf(loaded.host, instance), (const void *)[NSProcessInfo processInfo]);
}

TEST(Constructor, LeavesTheInstanceEmptyAndUnregisteredWithoutASharedObject) {
    SharedScene scene;
    scene.substitute.answer({nil});
    const auto outcome = scene.host.newObject(processInfoClass);
    ASSERT_FALSE(outcome.raised());
    EXPECT_THAT(scene.host.trace(), ElementsAre("[NSProcessInfo processInfo]"));
    EXPECT_EQ(handleOf(scene.host, outcome.object()), nullptr);
    EXPECT_EQ(host::siblings::registryCount(), 0u);
}

TEST(Constructor, LeavesTheInstanceEmptyAndUnregisteredWhenRetainAnswersNil) {
    SharedScene scene;
    scene.shared->retained = nil;
    const auto instance = scene.host.newObject(processInfoClass).object();
    EXPECT_EQ(handleOf(scene.host, instance), nullptr);
    EXPECT_EQ(host::siblings::registryCount(), 0u);
}

TEST(Constructor, CanBindAnInstanceThatItLeftEmpty) {
    SharedScene scene;
    scene.substitute.answer({nil, scene.shared});
    const auto instance = scene.host.newObject(processInfoClass).object();
    EXPECT_FALSE(scene.host.call(instance, "Constructor").raised());
    EXPECT_EQ(handleOf(scene.host, instance), (const void *)scene.shared);
}

TEST(SecondConstructor, RaisesUnsupportedOperation) {
    LoadedPlugin loaded;
    const auto instance = loaded.host.newObject(processInfoClass).object();
    const auto outcome = loaded.host.call(instance, "Constructor");
    ASSERT_TRUE(outcome.raised());
    EXPECT_EQ(outcome.exception->className, "UnsupportedOperationException");
    EXPECT_EQ(outcome.exception->message,
              "Constructor called too often. Object is already initialized.");
    EXPECT_EQ(outcome.exception->errorNumber, 0);
}

TEST(SecondConstructor, LeavesTheInstanceBoundAsItWas) {
    SharedScene scene;
    const auto instance = scene.host.newObject(processInfoClass).object();
    scene.host.clearTrace();
    scene.host.call(instance, "Constructor");
    EXPECT_EQ(handleOf(scene.host, instance), (const void *)scene.shared);
    EXPECT_EQ(host::siblings::registered(scene.shared), instance.handle());
    EXPECT_THAT(scene.host.calls(), Each(Not(StartsWith("["))));
}

TEST(SecondConstructor, RaisesByTheseHostCallsAlone) {
    LoadedPlugin loaded;
    const auto instance = loaded.host.newObject(processInfoClass).object();
    loaded.host.call(instance, "Constructor");
    EXPECT_THAT(
        loaded.host.calls(),
        ElementsAre(
            R"(REALBuildString("Constructor called too often. Object is already initialized.", 60) = String#1)",
            "REALSetStringEncoding(String#1, 0x00000600)",
            R"(PluginNewInstance("UnsupportedOperationException") = UnsupportedOperationException#2)",
            R"(REALSetPropValueString(UnsupportedOperationException#2, "Message", String#1) = true)",
            R"(REALSetPropValueInteger(UnsupportedOperationException#2, "ErrorNumber", 0) = true)",
            "RuntimeRaiseException(UnsupportedOperationException#2)",
            "REALUnlockObject(UnsupportedOperationException#2)", "REALUnlockString(String#1)"));
}

TEST(SecondConstructor, RaisesOnAnInstanceThatProcessInfoMade) {
    LoadedPlugin loaded;
    const auto instance = loaded.host.callShared(processInfoClass, "processInfo").object();
    const auto outcome = loaded.host.call(instance, "Constructor");
    ASSERT_TRUE(outcome.raised());
    EXPECT_EQ(outcome.exception->className, "UnsupportedOperationException");
}

TEST(SecondConstructor, RaisesOnAnInstanceThatWasBoundThroughHandle) {
    LoadedPlugin loaded;
    const OwnObject<NSObject> object;
    const InstanceAround instance(loaded.host, object);
    const auto outcome = loaded.host.call(instance, "Constructor");
    ASSERT_TRUE(outcome.raised());
    EXPECT_EQ(outcome.exception->className, "UnsupportedOperationException");
    EXPECT_EQ(handleOf(loaded.host, instance), (const void *)object);
}

TEST(SecondConstructor, BindsAgainAfterHandleWasSetToZero) {
    SharedScene scene;
    const auto instance = scene.host.newObject(processInfoClass).object();
    setHandle(scene.host, instance, nullptr);
    scene.host.clearTrace();
    EXPECT_FALSE(scene.host.call(instance, "Constructor").raised());
    EXPECT_EQ(handleOf(scene.host, instance), (const void *)scene.shared);
    EXPECT_THAT(scene.host.trace(), ElementsAre("[NSProcessInfo processInfo]", "[shared retain]"));
    [scene.shared release]; // the first one was lost with the field's old value
}
