// Failures in the middle of an instance's life: what is left behind after each step.

#include "ActingObject.h"
#include "Caught.h"
#include "CoreFoundationSpy.h"
#import "CountedProcessInfo.h"
#include "LoadedPlugin.h"
#import "OwnObject.h"
#import "ScriptedProcessInfo.h"

#include "host/family/Siblings.h"

#include <gmock/gmock.h>

#include <stdexcept>

using host::ObjectHandle;
using testing::ElementsAre;
using testing::IsEmpty;

static void raiseTrouble() {
    raiseNSException("Trouble", "on the way");
}

static void throwError() {
    throw std::runtime_error("not Cocoa's");
}

static id raiseInsteadOfAnswering() {
    raiseTrouble();
    return nil;
}

static id throwInsteadOfAnswering() {
    throwError();
    return nil;
}

static void expectTrouble(const host::Outcome &outcome) {
    ASSERT_TRUE(outcome.raised());
    EXPECT_EQ(outcome.exception->className, "NSExceptionZKT");
    EXPECT_EQ(outcome.exception->cocoaName, "Trouble");
    EXPECT_EQ(outcome.exception->cocoaReason, "on the way");
    EXPECT_EQ(host::siblings::makeCount(), 1u);
}

static host::Outcome callProcessInfo(host::Host &host) {
    return host.callShared(processInfoClass, "processInfo");
}

TEST(ConstructorFailure, WithoutASharedObjectTheInstanceStaysEmpty) {
    LoadedPlugin loaded;
    const auto instance = loaded.host.newInstance(processInfoClass);
    const ScriptedProcessInfo script({raiseInsteadOfAnswering});
    expectTrouble(loaded.host.call(instance, "Constructor"));
    EXPECT_EQ(handleOf(loaded.host, instance), nullptr);
    EXPECT_EQ(host::siblings::registryCount(), 0u);
}

TEST(ConstructorFailure, RaisesByTheseHostCallsAlone) {
    LoadedPlugin loaded;
    const auto instance = loaded.host.newInstance(processInfoClass);
    const ScriptedProcessInfo script({raiseInsteadOfAnswering});
    loaded.host.call(instance, "Constructor");
    EXPECT_THAT(loaded.host.calls(), ElementsAre("RuntimeRaiseException(NSExceptionZKT#2)",
                                                 "REALUnlockObject(NSExceptionZKT#2)"));
}

TEST(ConstructorFailure, AtTheRetainLeavesTheInstanceEmptyAndUnregistered) {
    LoadedPlugin loaded;
    const OwnObject<CountedProcessInfo> shared;
    shared->onRetain = raiseTrouble;
    const ScriptedProcessInfo script(ScriptedProcessInfo::times(1, shared));
    const auto instance = loaded.host.newInstance(processInfoClass);
    expectTrouble(loaded.host.call(instance, "Constructor"));
    EXPECT_EQ(handleOf(loaded.host, instance), nullptr);
    EXPECT_EQ(host::siblings::registryCount(), 0u);
}

TEST(ConstructorFailure, AtTheRegistrationLeavesTheInstanceBoundAndUnregistered) {
    LoadedPlugin loaded;
    const OwnObject<CountedProcessInfo> shared;
    const ScriptedProcessInfo script(ScriptedProcessInfo::times(1, shared));
    const auto instance = loaded.host.newInstance(processInfoClass);
    {
        CoreFoundationSpy spy(loaded.image);
        spy.before("CFDictionarySetValue", raiseTrouble);
        expectTrouble(loaded.host.call(instance, "Constructor"));
    }
    EXPECT_EQ(handleOf(loaded.host, instance), (const void *)shared);
    EXPECT_EQ(shared->retains, 1);
    EXPECT_EQ(shared->releases, 0);
    EXPECT_EQ(host::siblings::registryCount(), 0u);
}

TEST(ConstructorFailure, OfAnotherKindPassesThroughAndLeavesTheInstanceEmpty) {
    LoadedPlugin loaded;
    const auto instance = loaded.host.newInstance(processInfoClass);
    const ScriptedProcessInfo script({throwInsteadOfAnswering});
    EXPECT_EQ(standardExceptionFrom([&] { loaded.host.call(instance, "Constructor"); }),
              "not Cocoa's");
    EXPECT_FALSE(loaded.host.hasPendingException());
    EXPECT_EQ(handleOf(loaded.host, instance), nullptr);
}

TEST(ConstructorFailure, OfAnotherKindAtTheRegistrationLeavesTheInstanceBound) {
    LoadedPlugin loaded;
    const OwnObject<CountedProcessInfo> shared;
    const ScriptedProcessInfo script(ScriptedProcessInfo::times(1, shared));
    const auto instance = loaded.host.newInstance(processInfoClass);
    {
        CoreFoundationSpy spy(loaded.image);
        spy.before("CFDictionarySetValue", throwError);
        EXPECT_EQ(standardExceptionFrom([&] { loaded.host.call(instance, "Constructor"); }),
                  "not Cocoa's");
    }
    EXPECT_EQ(handleOf(loaded.host, instance), (const void *)shared);
}

TEST(ConstructorFailure, LeavesAnInstanceThatCanBeBoundLater) {
    LoadedPlugin loaded;
    const auto instance = loaded.host.newInstance(processInfoClass);
    const ScriptedProcessInfo script({raiseInsteadOfAnswering});
    expectTrouble(loaded.host.call(instance, "Constructor"));
    EXPECT_FALSE(loaded.host.call(instance, "Constructor").raised());
    EXPECT_EQ(handleOf(loaded.host, instance), (const void *)[NSProcessInfo processInfo]);
}

TEST(SecondConstructorFailure, WithoutTheExceptionsClassRaisesARuntimeException) {
    LoadedPlugin loaded;
    const auto instance = loaded.host.newObject(processInfoClass).object();
    loaded.host.hideClass("UnsupportedOperationException");
    const auto outcome = loaded.host.call(instance, "Constructor");
    ASSERT_TRUE(outcome.raised());
    EXPECT_EQ(outcome.exception->className, "RuntimeException");
    EXPECT_EQ(outcome.exception->message,
              "Constructor called too often. Object is already initialized.");
}

TEST(SecondConstructorFailure, WithoutTheRaisingServiceStaysQuietAndBound) {
    LoadedPlugin loaded;
    loaded.host.services().hide("RuntimeRaiseException");
    const auto instance = loaded.host.newObject(processInfoClass).object();
    EXPECT_FALSE(loaded.host.call(instance, "Constructor").raised());
    EXPECT_EQ(handleOf(loaded.host, instance), (const void *)[NSProcessInfo processInfo]);
}

TEST(ProcessInfoFailure, WithoutASharedObjectMakesNoInstance) {
    LoadedPlugin loaded;
    const ScriptedProcessInfo script({raiseInsteadOfAnswering});
    const auto outcome = callProcessInfo(loaded.host);
    expectTrouble(outcome);
    EXPECT_TRUE(outcome.value.isNil());
    EXPECT_THAT(loaded.host.calls(), ElementsAre("RuntimeRaiseException(NSExceptionZKT#1)",
                                                 "REALUnlockObject(NSExceptionZKT#1)"));
}

TEST(ProcessInfoFailure, AtTheRegistryLookUpMakesNoInstance) {
    LoadedPlugin loaded;
    CoreFoundationSpy spy(loaded.image);
    spy.before("CFDictionaryGetValue", raiseTrouble);
    const auto outcome = callProcessInfo(loaded.host);
    expectTrouble(outcome);
    EXPECT_TRUE(outcome.value.isNil());
    EXPECT_EQ(loaded.host.services().calls("PluginNewInstance"), 0u);
}

TEST(ProcessInfoFailure, InTheHostsInstanceMakingGivesNil) {
    LoadedPlugin loaded;
    const OwnObject<CountedProcessInfo> shared;
    const ScriptedProcessInfo script(ScriptedProcessInfo::times(1, shared));
    loaded.host.services().fail("PluginNewInstance", raiseTrouble);
    const auto outcome = callProcessInfo(loaded.host);
    expectTrouble(outcome);
    EXPECT_TRUE(outcome.value.isNil());
    EXPECT_EQ(shared->retains, 0);
}

TEST(ProcessInfoFailure, InTheHostsLockingGivesNil) {
    LoadedPlugin loaded;
    const auto first = callProcessInfo(loaded.host).object();
    loaded.host.services().fail("REALLockObject", raiseTrouble);
    const auto outcome = callProcessInfo(loaded.host);
    expectTrouble(outcome);
    EXPECT_TRUE(outcome.value.isNil());
    EXPECT_EQ(loaded.host.references(first), 1);
}

TEST(ProcessInfoFailure, AtTheRetainGivesNilAndReleasesTheNewInstance) {
    LoadedPlugin loaded;
    const OwnObject<CountedProcessInfo> shared;
    shared->onRetain = raiseTrouble;
    const ScriptedProcessInfo script(ScriptedProcessInfo::times(1, shared));
    const auto outcome = callProcessInfo(loaded.host);
    expectTrouble(outcome);
    EXPECT_TRUE(outcome.value.isNil());
    EXPECT_EQ(host::siblings::registryCount(), 0u);
    EXPECT_THAT(loaded.host.calls(),
                ElementsAre(R"(PluginNewInstance("NSProcessInfoZKT") = NSProcessInfoZKT#1)",
                            "REALUnlockObject(NSProcessInfoZKT#1)",
                            "RuntimeRaiseException(NSExceptionZKT#2)",
                            "REALUnlockObject(NSExceptionZKT#2)"));
    loaded.host.shutDown();
    EXPECT_THAT(loaded.host.violations(), IsEmpty());
}

TEST(ProcessInfoFailure, AtTheRegistrationGivesNilAndReleasesTheBoundInstance) {
    LoadedPlugin loaded;
    const OwnObject<CountedProcessInfo> shared;
    const ScriptedProcessInfo script(ScriptedProcessInfo::times(1, shared));
    CoreFoundationSpy spy(loaded.image);
    spy.before("CFDictionarySetValue", raiseTrouble);
    const auto outcome = callProcessInfo(loaded.host);
    expectTrouble(outcome);
    EXPECT_TRUE(outcome.value.isNil());
    EXPECT_EQ(shared->retains, 1);
    EXPECT_EQ(shared->releases, 1);
    EXPECT_EQ(host::siblings::registryCount(), 0u);
    loaded.host.shutDown();
    EXPECT_THAT(loaded.host.violations(), IsEmpty());
}

TEST(ProcessInfoFailure, OfAnotherKindPassesThrough) {
    LoadedPlugin loaded;
    const ScriptedProcessInfo script({throwInsteadOfAnswering});
    EXPECT_EQ(standardExceptionFrom([&] { callProcessInfo(loaded.host); }), "not Cocoa's");
    EXPECT_FALSE(loaded.host.hasPendingException());
    EXPECT_THAT(loaded.host.calls(), IsEmpty());
}

TEST(ProcessInfoFailure, OfAnotherKindInAHostServicePassesThrough) {
    LoadedPlugin loaded;
    loaded.host.services().fail("PluginNewInstance", throwError);
    EXPECT_EQ(standardExceptionFrom([&] { callProcessInfo(loaded.host); }), "not Cocoa's");
    EXPECT_THAT(loaded.host.calls(), ElementsAre(R"(PluginNewInstance("NSProcessInfoZKT") threw)"));
}

namespace {

// An instance bound to an object of the test's own, whose class destructor is run while it lives.
class Destruction : public testing::Test {
protected:
    ~Destruction() override {
        shared->onRelease = nullptr;
        if (!released_)
            [shared release];
        setHandle(loaded.host, instance, nullptr);
    }
    void destruct() { loaded.host.registeredRecords().front()->destructor(instance); }
    void wasReleased() { released_ = true; }

    LoadedPlugin loaded;
    OwnObject<CountedProcessInfo> shared;
    ScriptedProcessInfo script{ScriptedProcessInfo::times(1, shared)};
    host::ObjectRef instance = loaded.host.newObject(processInfoClass).object();
    CoreFoundationSpy spy{loaded.image};

private:
    bool released_ = false;
};

} // namespace

TEST_F(Destruction, FailingAtTheRegistryLeavesEverythingAsItWas) {
    spy.before("CFDictionaryRemoveValue", raiseTrouble);
    destruct();
    EXPECT_EQ(loaded.host.takePendingException()->cocoaName, "Trouble");
    EXPECT_EQ(handleOf(loaded.host, instance), (const void *)shared);
    EXPECT_EQ(shared->releases, 0);
    EXPECT_EQ(host::siblings::registered(shared), instance.handle());
}

TEST_F(Destruction, FailingAtTheReleaseLeavesTheFieldUncleared) {
    shared->onRelease = raiseTrouble;
    destruct();
    EXPECT_EQ(loaded.host.takePendingException()->cocoaName, "Trouble");
    EXPECT_EQ(handleOf(loaded.host, instance), (const void *)shared);
    EXPECT_EQ(shared->releases, 1);
    EXPECT_EQ(host::siblings::registryCount(), 0u);
}

TEST_F(Destruction, FailingRaisesByTheseHostCallsAlone) {
    shared->onRelease = raiseTrouble;
    destruct();
    EXPECT_THAT(loaded.host.calls(), ElementsAre("RuntimeRaiseException(NSExceptionZKT#2)",
                                                 "REALUnlockObject(NSExceptionZKT#2)"));
    loaded.host.takePendingException();
}

TEST_F(Destruction, FailingInAnotherWayAtTheRegistryPassesThrough) {
    spy.before("CFDictionaryRemoveValue", throwError);
    EXPECT_EQ(standardExceptionFrom([&] { destruct(); }), "not Cocoa's");
    EXPECT_FALSE(loaded.host.hasPendingException());
    EXPECT_EQ(handleOf(loaded.host, instance), (const void *)shared);
    EXPECT_EQ(shared->releases, 0);
}

TEST_F(Destruction, FailingInAnotherWayAtTheReleasePassesThroughAndLeavesTheFieldUncleared) {
    shared->onRelease = throwError;
    EXPECT_EQ(standardExceptionFrom([&] { destruct(); }), "not Cocoa's");
    EXPECT_FALSE(loaded.host.hasPendingException());
    EXPECT_EQ(handleOf(loaded.host, instance), (const void *)shared);
    EXPECT_EQ(host::siblings::registryCount(), 0u);
}

TEST_F(Destruction, AsksTheRegistryToRemoveAndNothingElse) {
    destruct();
    wasReleased();
    EXPECT_THAT(spy.calls(), ElementsAre("CFDictionaryRemoveValue"));
}
