// Calls of Core Foundation that fail in the middle of an instance's life: what is left behind.

#include "ActingScene.h"
#include "Caught.h"
#include "CoreFoundationSpy.h"
#import "SharedScene.h"

#include "host/family/Siblings.h"

#include <gmock/gmock.h>

#include <stdexcept>

using testing::ElementsAre;
using testing::IsEmpty;

static void raiseTrouble() {
    raiseNSException("Trouble", "on the way");
}

static void throwError() {
    throw std::runtime_error("not Cocoa's");
}

static host::Outcome callProcessInfo(host::Host &host) {
    return host.callShared(processInfoClass, "processInfo");
}

TEST(ConstructorFailure, AtTheRegistrationLeavesTheInstanceBoundAndUnregistered) {
    SharedScene scene;
    const auto instance = scene.host.newInstance(processInfoClass);
    CoreFoundationSpy spy(scene.image);
    spy.before("CFDictionarySetValue", raiseTrouble);
    expectRaised(scene.host.call(instance, "Constructor"), "Trouble", "on the way");
    EXPECT_THAT(scene.host.calls(), ElementsAre("[NSProcessInfo processInfo]", "[shared retain]",
                                                "RuntimeRaiseException(NSExceptionZKT#2)",
                                                "REALUnlockObject(NSExceptionZKT#2)"));
    EXPECT_EQ(handleOf(scene.host, instance), (const void *)scene.shared);
    EXPECT_EQ(host::siblings::registryCount(), 0u);
}

TEST(ConstructorFailure, OfAnotherKindAtTheRegistrationLeavesTheInstanceBound) {
    SharedScene scene;
    const auto instance = scene.host.newInstance(processInfoClass);
    CoreFoundationSpy spy(scene.image);
    spy.before("CFDictionarySetValue", throwError);
    EXPECT_EQ(standardExceptionFrom([&] { scene.host.call(instance, "Constructor"); }),
              "not Cocoa's");
    EXPECT_EQ(handleOf(scene.host, instance), (const void *)scene.shared);
}

TEST(ConstructorFailure, LeavesAnInstanceThatCanBeBoundLater) {
    SharedScene scene;
    const auto instance = scene.host.newInstance(processInfoClass);
    scene.substitute.interrupt(1, raiseTrouble);
    expectRaised(scene.host.call(instance, "Constructor"), "Trouble", "on the way");
    EXPECT_EQ(handleOf(scene.host, instance), nullptr);
    EXPECT_FALSE(scene.host.call(instance, "Constructor").raised());
    EXPECT_EQ(handleOf(scene.host, instance), (const void *)scene.shared);
}

TEST(ProcessInfoFailure, AtTheRegistryLookUpMakesNoInstance) {
    SharedScene scene;
    CoreFoundationSpy spy(scene.image);
    spy.before("CFDictionaryGetValue", raiseTrouble);
    const auto outcome = callProcessInfo(scene.host);
    expectRaised(outcome, "Trouble", "on the way");
    EXPECT_TRUE(outcome.value.isNil());
    EXPECT_EQ(scene.host.services().calls("PluginNewInstance"), 0u);
}

TEST(ProcessInfoFailure, AtTheRegistrationGivesNilAndReleasesTheBoundInstance) {
    SharedScene scene;
    CoreFoundationSpy spy(scene.image);
    spy.before("CFDictionarySetValue", raiseTrouble);
    const auto outcome = callProcessInfo(scene.host);
    expectRaised(outcome, "Trouble", "on the way");
    EXPECT_TRUE(outcome.value.isNil());
    EXPECT_THAT(scene.host.calls(),
                ElementsAre("[NSProcessInfo processInfo]",
                            R"(PluginNewInstance("NSProcessInfoZKT") = NSProcessInfoZKT#1)",
                            "[shared retain]", "REALUnlockObject(NSProcessInfoZKT#1)",
                            "[shared release]", "RuntimeRaiseException(NSExceptionZKT#2)",
                            "REALUnlockObject(NSExceptionZKT#2)"));
    EXPECT_EQ(host::siblings::registryCount(), 0u);
    scene.host.shutDown();
    EXPECT_THAT(scene.host.violations(), IsEmpty());
}

namespace {

// An instance bound to an object of the test's own, whose class destructor is run while it lives.
class Destruction : public testing::Test {
protected:
    Destruction() { scene.host.clearTrace(); }
    void destruct() { scene.host.registeredRecords().front()->destructor(instance); }

    SharedScene scene;
    host::ObjectRef instance = scene.host.newObject(processInfoClass).object();
    CoreFoundationSpy spy{scene.image};
};

} // namespace

TEST_F(Destruction, FailingAtTheRegistryLeavesEverythingAsItWas) {
    spy.before("CFDictionaryRemoveValue", raiseTrouble);
    destruct();
    EXPECT_EQ(scene.host.takePendingException()->cocoaName, "Trouble");
    EXPECT_THAT(scene.host.calls(), ElementsAre("RuntimeRaiseException(NSExceptionZKT#2)",
                                                "REALUnlockObject(NSExceptionZKT#2)"));
    EXPECT_EQ(handleOf(scene.host, instance), (const void *)scene.shared);
    EXPECT_EQ(host::siblings::registered(scene.shared), instance.handle());
}

TEST_F(Destruction, FailingInAnotherWayAtTheRegistryPassesThrough) {
    spy.before("CFDictionaryRemoveValue", throwError);
    EXPECT_EQ(standardExceptionFrom([&] { destruct(); }), "not Cocoa's");
    EXPECT_FALSE(scene.host.hasPendingException());
    EXPECT_THAT(scene.host.calls(), IsEmpty());
    EXPECT_EQ(handleOf(scene.host, instance), (const void *)scene.shared);
}

TEST_F(Destruction, AsksTheRegistryToRemoveAndNothingElse) {
    destruct();
    EXPECT_THAT(spy.calls(), ElementsAre("CFDictionaryRemoveValue"));
}
