// How instances come to be: the class constructor and the "Constructor" method.

#import "CountedProcessInfo.h"
#include "LoadedPlugin.h"
#import "OwnObject.h"
#import "ScriptedProcessInfo.h"

#include "host/family/Siblings.h"

#include <gmock/gmock.h>

using testing::ElementsAre;
using testing::IsEmpty;

TEST(ClassConstructor, LeavesTheInstanceEmpty) {
    LoadedPlugin loaded;
    const auto instance = loaded.host.newInstance(processInfoClass);
    EXPECT_EQ(handleOf(loaded.host, instance), nullptr);
}

TEST(ClassConstructor, NeitherAsksForTheSharedObjectNorRegisters) {
    LoadedPlugin loaded;
    const ScriptedProcessInfo script({[] { return nil; }});
    const auto instance = loaded.host.newInstance(processInfoClass);
    EXPECT_EQ(script.left(), 1u);
    EXPECT_EQ(host::siblings::registryCount(), 0u);
}

TEST(ClassConstructor, CallsNoHostService) {
    LoadedPlugin loaded;
    const auto instance = loaded.host.newInstance(processInfoClass);
    EXPECT_THAT(loaded.host.trace(), IsEmpty());
}

TEST(Constructor, BindsTheInstanceToTheSharedObject) {
    LoadedPlugin loaded;
    const auto instance = loaded.host.newObject(processInfoClass).object();
    EXPECT_EQ(handleOf(loaded.host, instance), (const void *)[NSProcessInfo processInfo]);
}

TEST(Constructor, AsksForTheSharedObjectAndRetainsItOnce) {
    LoadedPlugin loaded;
    const OwnObject<CountedProcessInfo> shared;
    const ScriptedProcessInfo script(ScriptedProcessInfo::times(2, shared));
    const auto instance = loaded.host.newObject(processInfoClass).object();
    EXPECT_EQ(handleOf(loaded.host, instance), (const void *)shared);
    EXPECT_EQ(script.left(), 1u);
    EXPECT_EQ(shared->retains, 1);
    EXPECT_EQ(shared->releases, 0);
    EXPECT_THAT(shared->received, IsEmpty());
}

TEST(Constructor, StoresWhatRetainAnswers) {
    LoadedPlugin loaded;
    const OwnObject<ProcessInfoDouble> retained;
    const OwnObject<AnotherWhenRetained> shared;
    shared->another = retained;
    const ScriptedProcessInfo script(ScriptedProcessInfo::times(1, shared));
    const auto instance = loaded.host.newObject(processInfoClass).object();
    EXPECT_EQ(handleOf(loaded.host, instance), (const void *)retained);
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

TEST(Constructor, CallsNoHostService) {
    LoadedPlugin loaded;
    const auto instance = loaded.host.newObject(processInfoClass).object();
    EXPECT_THAT(loaded.host.trace(), IsEmpty());
}

TEST(Constructor, LeavesTheInstanceEmptyAndUnregisteredWithoutASharedObject) {
    LoadedPlugin loaded;
    const ScriptedProcessInfo script({[] { return nil; }});
    const auto outcome = loaded.host.newObject(processInfoClass);
    ASSERT_FALSE(outcome.raised());
    EXPECT_EQ(script.left(), 0u);
    EXPECT_EQ(handleOf(loaded.host, outcome.object()), nullptr);
    EXPECT_EQ(host::siblings::registryCount(), 0u);
}

TEST(Constructor, LeavesTheInstanceEmptyAndUnregisteredWhenRetainAnswersNil) {
    LoadedPlugin loaded;
    const OwnObject<AnotherWhenRetained> shared;
    const ScriptedProcessInfo script(ScriptedProcessInfo::times(1, shared));
    const auto instance = loaded.host.newObject(processInfoClass).object();
    EXPECT_EQ(handleOf(loaded.host, instance), nullptr);
    EXPECT_EQ(host::siblings::registryCount(), 0u);
}

TEST(Constructor, CanBindAnInstanceThatItLeftEmpty) {
    LoadedPlugin loaded;
    const ScriptedProcessInfo script({[] { return nil; }});
    const auto instance = loaded.host.newObject(processInfoClass).object();
    EXPECT_FALSE(loaded.host.call(instance, "Constructor").raised());
    EXPECT_EQ(handleOf(loaded.host, instance), (const void *)[NSProcessInfo processInfo]);
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
    LoadedPlugin loaded;
    const OwnObject<CountedProcessInfo> shared;
    const ScriptedProcessInfo script(ScriptedProcessInfo::times(2, shared));
    const auto instance = loaded.host.newObject(processInfoClass).object();
    loaded.host.call(instance, "Constructor");
    EXPECT_EQ(handleOf(loaded.host, instance), (const void *)shared);
    EXPECT_EQ(host::siblings::registered(shared), instance.handle());
    EXPECT_EQ(script.left(), 1u);
    EXPECT_EQ(shared->retains, 1);
    EXPECT_EQ(shared->releases, 0);
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
    const OwnObject<CountedProcessInfo> object;
    const InstanceAround instance(loaded.host, object);
    const auto outcome = loaded.host.call(instance, "Constructor");
    ASSERT_TRUE(outcome.raised());
    EXPECT_EQ(outcome.exception->className, "UnsupportedOperationException");
    EXPECT_EQ(handleOf(loaded.host, instance), (const void *)object);
}

TEST(SecondConstructor, BindsAgainAfterHandleWasSetToZero) {
    LoadedPlugin loaded;
    const OwnObject<CountedProcessInfo> shared;
    const ScriptedProcessInfo script(ScriptedProcessInfo::times(2, shared));
    const auto instance = loaded.host.newObject(processInfoClass).object();
    setHandle(loaded.host, instance, nullptr);
    EXPECT_FALSE(loaded.host.call(instance, "Constructor").raised());
    EXPECT_EQ(handleOf(loaded.host, instance), (const void *)shared);
    EXPECT_EQ(shared->retains, 2); // the first one was lost with the field's old value
    [shared release];
}
