// The wrapped object as programs can reach it, and what happens to it when an instance dies.

#include "CoreFoundationSpy.h"
#import "SharedScene.h"

#include "host/family/Siblings.h"

#include <gmock/gmock.h>

#include <limits>

using testing::ElementsAre;
using testing::IsEmpty;

// The class destructor as the host runs it, on an instance that goes on living.
static void destruct(host::Host &host, host::ObjectHandle instance) {
    host.registeredRecords().front()->destructor(instance);
}

TEST(Handle, ReadsTheAddressOfTheWrappedObject) {
    LoadedPlugin loaded;
    const auto instance = loaded.host.newObject(processInfoClass).object();
    EXPECT_EQ(loaded.host.get(instance, "Handle").integer(),
              reinterpret_cast<std::int64_t>([NSProcessInfo processInfo]));
}

TEST(Handle, StandsAtTheStartOfTheInstanceData) {
    LoadedPlugin loaded;
    const OwnObject<NSObject> object;
    const InstanceAround instance(loaded.host, object);
    const void *const field =
        *reinterpret_cast<void **>(reinterpret_cast<char *>((host::ObjectHandle)instance) + 48);
    EXPECT_EQ(field, (const void *)object);
}

TEST(Handle, StoresAnyIntegerUnchanged) {
    LoadedPlugin loaded;
    const auto instance = loaded.host.newInstance(processInfoClass);
    for (const std::int64_t value :
         {std::int64_t{1}, std::int64_t{-1}, std::numeric_limits<std::int64_t>::min(),
          std::numeric_limits<std::int64_t>::max(), std::int64_t{0x1234567890ABCDEF},
          std::int64_t{0}}) {
        loaded.host.set(instance, "Handle", host::Value(value));
        EXPECT_EQ(loaded.host.get(instance, "Handle").integer(), value);
    }
}

TEST(Handle, IsReadAndWrittenWithoutAMessageOrAHostCall) {
    LoadedPlugin loaded;
    const Traced object("object");
    const auto instance = loaded.host.newInstance(processInfoClass);
    setHandle(loaded.host, instance, object);
    EXPECT_EQ(handleOf(loaded.host, instance), (const void *)object);
    setHandle(loaded.host, instance, nullptr);
    EXPECT_THAT(loaded.host.trace(), IsEmpty());
}

TEST(Handle, WritesPastTheRegistry) {
    SharedScene scene;
    const OwnObject<NSObject> object;
    const auto instance = scene.host.newObject(processInfoClass).object();
    setHandle(scene.host, instance, object);
    EXPECT_EQ(host::siblings::registered(scene.shared), instance.handle());
    EXPECT_EQ(host::siblings::registered(object), nullptr);
    setHandle(scene.host, instance, scene.shared);
}

TEST(Destructor, ReleasesTheWrappedObjectOnce) {
    SharedScene scene;
    {
        const auto instance = scene.host.newObject(processInfoClass).object();
        scene.host.clearTrace();
    }
    EXPECT_THAT(scene.host.trace(), ElementsAre("[shared release]"));
}

TEST(Destructor, RunsWithTheLastReferenceOnly) {
    SharedScene scene;
    {
        const auto first = scene.host.callShared(processInfoClass, "processInfo").object();
        {
            const auto second = scene.host.callShared(processInfoClass, "processInfo").object();
            scene.host.clearTrace();
        }
        EXPECT_THAT(scene.host.trace(), IsEmpty());
    }
    EXPECT_THAT(scene.host.trace(), ElementsAre("[shared release]"));
}

TEST(Destructor, ClearsTheField) {
    LoadedPlugin loaded;
    const auto instance = loaded.host.newObject(processInfoClass).object();
    destruct(loaded.host, instance);
    EXPECT_EQ(handleOf(loaded.host, instance), nullptr);
}

TEST(Destructor, RemovesTheRegistryEntry) {
    LoadedPlugin loaded;
    {
        const auto instance = loaded.host.newObject(processInfoClass).object();
        ASSERT_EQ(host::siblings::registryCount(), 1u);
    }
    EXPECT_EQ(host::siblings::registryCount(), 0u);
}

TEST(Destructor, RemovesTheEntryBeforeTheRelease) {
    SharedScene scene;
    std::size_t entriesAtRelease = 99;
    scene.shared->onMessage = [&](std::string_view selector) {
        if (selector == "release")
            entriesAtRelease = host::siblings::registryCount();
    };
    {
        const auto instance = scene.host.newObject(processInfoClass).object();
    }
    scene.shared->onMessage = nullptr;
    EXPECT_EQ(entriesAtRelease, 0u);
}

TEST(Destructor, RemovesByKeyAloneEvenTheEntryOfALaterInstance) {
    LoadedPlugin loaded;
    auto first = loaded.host.newObject(processInfoClass).object();
    const auto second = loaded.host.newObject(processInfoClass).object();
    loaded.host.release(std::move(first));
    EXPECT_EQ(host::siblings::registryCount(), 0u);
    const auto third = loaded.host.callShared(processInfoClass, "processInfo").object();
    EXPECT_NE(third.handle(), second.handle());
}

TEST(Destructor, OfTheLaterInstanceLeavesTheFirstOneUsable) {
    LoadedPlugin loaded;
    const auto first = loaded.host.newObject(processInfoClass).object();
    auto second = loaded.host.newObject(processInfoClass).object();
    loaded.host.release(std::move(second));
    EXPECT_EQ(handleOf(loaded.host, first), (const void *)[NSProcessInfo processInfo]);
    EXPECT_EQ(host::siblings::registryCount(), 0u);
}

TEST(Destructor, ReleasesNothingAfterHandleWasSetToZero) {
    SharedScene scene;
    auto instance = scene.host.newObject(processInfoClass).object();
    const void *const registered = instance.handle();
    setHandle(scene.host, instance, nullptr);
    scene.host.clearTrace();
    EXPECT_FALSE(scene.host.release(std::move(instance)).raised());
    EXPECT_THAT(scene.host.trace(), IsEmpty());
    EXPECT_EQ(host::siblings::registered(scene.shared), registered);
    [scene.shared release];
}

TEST(Destructor, ReleasesAndUnregistersWhatWasWrittenToHandle) {
    SharedScene scene;
    const Traced other("other");
    scene.substitute.answer({scene.shared, other});
    auto first = scene.host.newObject(processInfoClass).object();
    const auto second = scene.host.newObject(processInfoClass).object();
    setHandle(scene.host, first, other);
    [other retain]; // the reference that the destructor gives back
    scene.host.clearTrace();
    scene.host.release(std::move(first));
    EXPECT_THAT(scene.host.trace(), ElementsAre("[other release]"));
    EXPECT_EQ(host::siblings::registered(other), nullptr);
    EXPECT_NE(host::siblings::registered(scene.shared), nullptr);
    [scene.shared release];
}

TEST(Destructor, OfAnEmptyInstanceTouchesNothing) {
    LoadedPlugin loaded;
    const auto bound = loaded.host.newObject(processInfoClass).object();
    auto empty = loaded.host.newInstance(processInfoClass);
    const CoreFoundationSpy spy(loaded.image);
    EXPECT_FALSE(loaded.host.release(std::move(empty)).raised());
    EXPECT_THAT(spy.calls(), IsEmpty());
    EXPECT_EQ(host::siblings::registered([NSProcessInfo processInfo]), bound.handle());
    EXPECT_EQ(host::siblings::registryCount(), 1u);
}

TEST(Destructor, ReleasesWithoutARegistry) {
    SharedScene scene({.siblings = host::Siblings::exceptions});
    {
        const auto instance = scene.host.newObject(processInfoClass).object();
        scene.host.clearTrace();
    }
    EXPECT_THAT(scene.host.trace(), ElementsAre("[shared release]"));
}
