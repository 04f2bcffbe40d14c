// The shared method "processInfo": one host instance for the shared object, as long as it lives.

#import "CountedProcessInfo.h"
#include "LoadedPlugin.h"
#import "OwnObject.h"
#import "ScriptedProcessInfo.h"

#include "host/family/Siblings.h"

#include <CoreFoundation/CoreFoundation.h>

#include <gmock/gmock.h>

#include <array>

using host::ObjectHandle;
using testing::ElementsAre;
using testing::IsEmpty;

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
    LoadedPlugin loaded;
    const OwnObject<CountedProcessInfo> shared;
    const ScriptedProcessInfo script(ScriptedProcessInfo::times(2, shared));
    const auto instance = sharedInstance(loaded.host);
    EXPECT_EQ(handleOf(loaded.host, instance), (const void *)shared);
    EXPECT_EQ(script.left(), 1u);
    EXPECT_EQ(shared->retains, 1);
    EXPECT_EQ(shared->releases, 0);
    EXPECT_THAT(shared->received, IsEmpty());
}

TEST(ProcessInfo, EntersANewInstanceIntoTheRegistry) {
    LoadedPlugin loaded;
    const auto instance = sharedInstance(loaded.host);
    EXPECT_EQ(host::siblings::registered([NSProcessInfo processInfo]), instance.handle());
    EXPECT_EQ(host::siblings::registryCount(), 1u);
}

TEST(ProcessInfo, EntersANewInstanceUnderTheSharedObjectWhateverRetainAnswers) {
    LoadedPlugin loaded;
    const OwnObject<ProcessInfoDouble> retained;
    for (const id answer : std::array<id, 2>{retained, nil}) {
        const OwnObject<AnotherWhenRetained> shared;
        shared->another = answer;
        const ScriptedProcessInfo script(ScriptedProcessInfo::times(1, shared));
        const auto instance = sharedInstance(loaded.host);
        EXPECT_EQ(handleOf(loaded.host, instance), (const void *)answer);
        EXPECT_EQ(host::siblings::registered(shared), instance.handle());
        EXPECT_EQ(host::siblings::registered(retained), nullptr);
        EXPECT_EQ(host::siblings::registryCount(), 1u);
        setHandle(loaded.host, instance, nullptr);
        CFDictionaryRemoveValue(static_cast<CFMutableDictionaryRef>(host::siblings::registry()),
                                shared);
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
    LoadedPlugin loaded;
    const OwnObject<CountedProcessInfo> shared;
    const ScriptedProcessInfo script(ScriptedProcessInfo::times(2, shared));
    const auto first = sharedInstance(loaded.host);
    const auto second = sharedInstance(loaded.host);
    EXPECT_EQ(script.left(), 0u);
    EXPECT_EQ(shared->retains, 1);
    EXPECT_EQ(shared->releases, 0);
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
    LoadedPlugin loaded;
    const OwnObject<CountedProcessInfo> one;
    const OwnObject<CountedProcessInfo> other;
    const ScriptedProcessInfo script({[&]() -> id { return one; }, [&]() -> id { return other; }});
    const auto first = sharedInstance(loaded.host);
    const auto second = sharedInstance(loaded.host);
    EXPECT_NE(second.handle(), first.handle());
    EXPECT_EQ(host::siblings::registered(one), first.handle());
    EXPECT_EQ(host::siblings::registered(other), second.handle());
}

TEST(ProcessInfo, WithoutARegistryMakesANewInstanceOnEveryCall) {
    LoadedPlugin loaded({.siblings = host::Siblings::exceptions});
    const OwnObject<CountedProcessInfo> shared;
    const ScriptedProcessInfo script(ScriptedProcessInfo::times(2, shared));
    const auto first = sharedInstance(loaded.host);
    const auto second = sharedInstance(loaded.host);
    EXPECT_NE(second.handle(), first.handle());
    EXPECT_EQ(shared->retains, 2);
    EXPECT_THAT(loaded.host.calls(),
                ElementsAre(R"(PluginNewInstance("NSProcessInfoZKT") = NSProcessInfoZKT#1)",
                            R"(PluginNewInstance("NSProcessInfoZKT") = NSProcessInfoZKT#2)"));
}

TEST(ProcessInfo, GivesNilWithoutASharedObject) {
    LoadedPlugin loaded;
    const ScriptedProcessInfo script({[] { return nil; }});
    EXPECT_TRUE(loaded.host.callShared(processInfoClass, "processInfo").isNil());
    EXPECT_EQ(script.left(), 0u);
    EXPECT_THAT(loaded.host.trace(), IsEmpty());
    EXPECT_EQ(host::siblings::registryCount(), 0u);
}

// What takes the host the means to make an instance.
struct NoInstance {
    const char *name;
    void (*apply)(host::Host &);
    const char *trace;
};
static void PrintTo(const NoInstance &cause, std::ostream *stream) {
    *stream << cause.name;
}

class ProcessInfoWithoutInstance : public testing::TestWithParam<NoInstance> {};

TEST_P(ProcessInfoWithoutInstance, GivesNilAndRetainsAndRegistersNothing) {
    LoadedPlugin loaded;
    const OwnObject<CountedProcessInfo> shared;
    const ScriptedProcessInfo script(ScriptedProcessInfo::times(1, shared));
    // Taken before the host stops knowing the class.
    auto *processInfo = reinterpret_cast<ObjectHandle (*)()>(
        loaded.host.sharedMethodOf(processInfoClass, "processInfo"));
    GetParam().apply(loaded.host);
    EXPECT_EQ(processInfo(), nullptr);
    EXPECT_EQ(shared->retains, 0);
    EXPECT_EQ(host::siblings::registryCount(), 0u);
    EXPECT_EQ(loaded.host.trace().back(), GetParam().trace);
}

INSTANTIATE_TEST_SUITE_P(
    , ProcessInfoWithoutInstance,
    testing::Values(
        NoInstance{"ServiceMissing",
                   [](host::Host &host) { host.services().hide("PluginNewInstance"); },
                   "miss PluginNewInstance"},
        NoInstance{"ServiceAnsweringNull",
                   [](host::Host &host) { host.services().answerNull("PluginNewInstance"); },
                   R"(PluginNewInstance("NSProcessInfoZKT") = nil)"},
        NoInstance{"ClassUnknown", [](host::Host &host) { host.hideClass(processInfoClass); },
                   R"(PluginNewInstance("NSProcessInfoZKT") = nil)"}),
    [](const auto &parameter) { return parameter.param.name; });

TEST(ProcessInfo, WorksAgainOnceTheHostCanMakeInstances) {
    LoadedPlugin loaded;
    loaded.host.services().hide("PluginNewInstance");
    loaded.host.callShared(processInfoClass, "processInfo");
    loaded.host.services().restore("PluginNewInstance");
    const auto instance = sharedInstance(loaded.host);
    EXPECT_EQ(handleOf(loaded.host, instance), (const void *)[NSProcessInfo processInfo]);
}

// Called directly: the host itself would notice the reference that is not there.
TEST(ProcessInfo, GivesTheRegisteredInstanceWithoutAReferenceWhenTheHostCannotLock) {
    LoadedPlugin loaded;
    loaded.host.services().hide("REALLockObject");
    const auto first = sharedInstance(loaded.host);
    auto *processInfo = reinterpret_cast<ObjectHandle (*)()>(
        loaded.host.sharedMethodOf(processInfoClass, "processInfo"));
    EXPECT_EQ(processInfo(), first.handle());
    EXPECT_EQ(loaded.host.references(first), 1);
}
