// The wrapped object as programs can reach it, and what happens to it when an instance dies.

#include "CoreFoundationSpy.h"
#import "CountedProcessInfo.h"
#include "LoadedPlugin.h"
#import "OwnObject.h"
#import "ScriptedProcessInfo.h"

#include "host/family/Siblings.h"

#include <gmock/gmock.h>

#include <limits>

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
    const OwnObject<ProcessInfoDouble> object;
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
    const OwnObject<CountedProcessInfo> object;
    const auto instance = loaded.host.newInstance(processInfoClass);
    setHandle(loaded.host, instance, object);
    EXPECT_EQ(handleOf(loaded.host, instance), (const void *)object);
    setHandle(loaded.host, instance, nullptr);
    EXPECT_EQ(object->retains, 0);
    EXPECT_EQ(object->releases, 0);
    EXPECT_THAT(object->received, IsEmpty());
    EXPECT_THAT(loaded.host.trace(), IsEmpty());
}

TEST(Handle, WritesPastTheRegistry) {
    LoadedPlugin loaded;
    const OwnObject<CountedProcessInfo> object;
    const OwnObject<CountedProcessInfo> shared;
    const ScriptedProcessInfo script(ScriptedProcessInfo::times(1, shared));
    const auto instance = loaded.host.newObject(processInfoClass).object();
    setHandle(loaded.host, instance, object);
    EXPECT_EQ(host::siblings::registered(shared), instance.handle());
    EXPECT_EQ(host::siblings::registered(object), nullptr);
    setHandle(loaded.host, instance, shared);
}

TEST(Destructor, ReleasesTheWrappedObjectOnce) {
    LoadedPlugin loaded;
    const OwnObject<CountedProcessInfo> shared;
    const ScriptedProcessInfo script(ScriptedProcessInfo::times(1, shared));
    {
        const auto instance = loaded.host.newObject(processInfoClass).object();
    }
    EXPECT_EQ(shared->retains, 1);
    EXPECT_EQ(shared->releases, 1);
    EXPECT_THAT(shared->received, IsEmpty());
}

TEST(Destructor, RunsWithTheLastReferenceOnly) {
    LoadedPlugin loaded;
    const OwnObject<CountedProcessInfo> shared;
    const ScriptedProcessInfo script(ScriptedProcessInfo::times(2, shared));
    {
        const auto first = loaded.host.callShared(processInfoClass, "processInfo").object();
        {
            const auto second = loaded.host.callShared(processInfoClass, "processInfo").object();
        }
        EXPECT_EQ(shared->releases, 0);
    }
    EXPECT_EQ(shared->releases, 1);
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
    LoadedPlugin loaded;
    std::size_t entriesAtRelease = 99;
    const OwnObject<CountedProcessInfo> shared;
    shared->onRelease = [&] { entriesAtRelease = host::siblings::registryCount(); };
    const ScriptedProcessInfo script(ScriptedProcessInfo::times(1, shared));
    {
        const auto instance = loaded.host.newObject(processInfoClass).object();
    }
    shared->onRelease = nullptr;
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
    LoadedPlugin loaded;
    const OwnObject<CountedProcessInfo> shared;
    const ScriptedProcessInfo script(ScriptedProcessInfo::times(1, shared));
    auto instance = loaded.host.newObject(processInfoClass).object();
    const void *const registered = instance.handle();
    setHandle(loaded.host, instance, nullptr);
    EXPECT_FALSE(loaded.host.release(std::move(instance)).raised());
    EXPECT_EQ(shared->releases, 0);
    EXPECT_EQ(host::siblings::registered(shared), registered);
    [shared release];
}

TEST(Destructor, ReleasesAndUnregistersWhatWasWrittenToHandle) {
    LoadedPlugin loaded;
    const OwnObject<CountedProcessInfo> shared;
    const OwnObject<CountedProcessInfo> other;
    const ScriptedProcessInfo script(
        {[&]() -> id { return shared; }, [&]() -> id { return other; }});
    auto first = loaded.host.newObject(processInfoClass).object();
    const auto second = loaded.host.newObject(processInfoClass).object();
    setHandle(loaded.host, first, other);
    [other retain]; // the reference that the destructor gives back
    loaded.host.release(std::move(first));
    EXPECT_EQ(other->releases, 1);
    EXPECT_EQ(shared->releases, 0);
    EXPECT_EQ(host::siblings::registered(other), nullptr);
    EXPECT_NE(host::siblings::registered(shared), nullptr);
    [shared release];
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
    LoadedPlugin loaded({.siblings = host::Siblings::exceptions});
    const OwnObject<CountedProcessInfo> shared;
    const ScriptedProcessInfo script(ScriptedProcessInfo::times(1, shared));
    {
        const auto instance = loaded.host.newObject(processInfoClass).object();
    }
    EXPECT_EQ(shared->releases, 1);
}

TEST(Destructor, CallsNoHostService) {
    LoadedPlugin loaded;
    {
        const auto instance = loaded.host.newObject(processInfoClass).object();
    }
    EXPECT_THAT(loaded.host.trace(), IsEmpty());
}
