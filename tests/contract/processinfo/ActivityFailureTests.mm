// "beginActivity" left by an exception: what was made by then stays behind.

#import "ActivityScene.h"

#include "Caught.h"
#include "host/classes/ClassTable.h"
#include "host/core/Core.h"
#include "host/family/Siblings.h"
#include "host/memory/Heap.h"

#include <gmock/gmock.h>

#include <stdexcept>

using testing::ElementsAre;
using testing::StartsWith;

namespace {

void refuse(const char *what) {
    refusing(what)(what);
}

// A begun activity that was neither returned nor released, as the host finds it in the end.
void expectOneAbandoned(host::Host &host) {
    host.shutDown();
    EXPECT_THAT(
        host.violations(),
        ElementsAre(StartsWith("NSProcessInfoActivityZKT#2 leaked, 1 reference never released")));
}

void expectRefusal(const host::Outcome &outcome, const char *what) {
    EXPECT_TRUE(outcome.value.isNil());
    ASSERT_TRUE(outcome.raised());
    EXPECT_EQ(outcome.exception->className, "NSExceptionZKT");
    EXPECT_EQ(outcome.exception->cocoaName, "Refused");
    EXPECT_EQ(outcome.exception->cocoaReason, what);
    EXPECT_EQ(host::siblings::makeCount(), 1u);
}

// The data of the one live activity; nobody has a reference to it that could be used.
ActivityFields fieldsOfAbandoned(host::Host &host) {
    for (const host::Object *object : host::Core::current().heap.liveObjects())
        if (object->type->name == activityClass)
            return fieldsOf(host, const_cast<host::Object *>(object)->handle());
    ADD_FAILURE() << "there is no activity";
    return {};
}

} // namespace

TEST(BeginActivityRefused, ByTheClassGivesNilAndMakesNothing) {
    ActivityScene scene;
    scene.substitute.interrupt(1, [] { refuse("processInfo"); });
    expectRefusal(scene.begin(), "processInfo");
    EXPECT_THAT(scene.host.calls(), ElementsAre("[NSProcessInfo processInfo]",
                                                "RuntimeRaiseException(NSExceptionZKT#2)",
                                                "REALUnlockObject(NSExceptionZKT#2)"));
}

TEST(BeginActivityRefused, WhenAskedForTheSelectorGivesNilAndMakesNothing) {
    ActivityScene scene;
    scene.shared->onMessage = refusing("respondsToSelector:");
    expectRefusal(scene.begin(), "respondsToSelector:");
    EXPECT_EQ(scene.host.services().calls("PluginNewInstance"), 0u);
}

TEST(BeginActivityRefused, ByTheClassTheSecondTimeAbandonsTheInstance) {
    ActivityScene scene;
    scene.substitute.interrupt(2, [] { refuse("processInfo"); });
    expectRefusal(scene.begin(), "processInfo");
    EXPECT_EQ(fieldsOfAbandoned(scene.host), ActivityFields{});
    expectOneAbandoned(scene.host);
}

TEST(BeginActivityRefused, ByTheSharedObjectAbandonsTheInstance) {
    ActivityScene scene;
    scene.shared->onMessage = refusing("beginActivityWithOptions:reason:");
    expectRefusal(scene.begin(), "beginActivityWithOptions:reason:");
    EXPECT_THAT(
        scene.host.calls(),
        ElementsAre("[NSProcessInfo processInfo]",
                    "[shared respondsToSelector:beginActivityWithOptions:reason:]",
                    "PluginNewInstance(\"NSProcessInfoActivityZKT\") = NSProcessInfoActivityZKT#2",
                    "REALGetStringEncoding(String#1) = 0x08000100",
                    "REALGetStringCFString(String#1, 0) = pointer", "[NSProcessInfo processInfo]",
                    "[shared beginActivityWithOptions:255 reason:\"why\"]",
                    "RuntimeRaiseException(NSExceptionZKT#3)",
                    "REALUnlockObject(NSExceptionZKT#3)"));
    EXPECT_EQ(fieldsOfAbandoned(scene.host), ActivityFields{});
    expectOneAbandoned(scene.host);
}

TEST(BeginActivityRefused, ByTheTokenLeavesTheInstanceEmpty) {
    ActivityScene scene;
    scene.token->onMessage = refusing("retain");
    expectRefusal(scene.begin(), "retain");
    scene.token->onMessage = nullptr;
    EXPECT_EQ(fieldsOfAbandoned(scene.host), ActivityFields{});
    expectOneAbandoned(scene.host);
}

TEST(BeginActivityRefused, WhileTheReasonIsReadAbandonsTheInstance) {
    ActivityScene scene;
    scene.host.services().fail("REALGetStringEncoding", [] { refuse("encoding"); });
    expectRefusal(scene.begin(), "encoding");
    EXPECT_EQ(fieldsOfAbandoned(scene.host), ActivityFields{});
    expectOneAbandoned(scene.host);
}

TEST(BeginActivityRefused, AtTheLockLeavesTheInstanceFilled) {
    ActivityScene scene;
    const host::Value reason = "why";
    scene.host.services().fail("REALLockString", [] { refuse("lock"); });
    expectRefusal(scene.begin(255, reason), "lock");
    EXPECT_EQ(fieldsOfAbandoned(scene.host), (ActivityFields{.token = scene.token,
                                                             .reason = reason.string().handle(),
                                                             .options = 255,
                                                             .active = 1}));
    expectOneAbandoned(scene.host);
    [scene.token release];
}

TEST(BeginActivityRefused, WithoutAnInstanceLeavesNothingBehind) {
    ActivityScene scene;
    scene.host.services().fail("PluginNewInstance", [] { refuse("instance"); });
    const host::Outcome outcome = scene.begin();
    EXPECT_TRUE(outcome.value.isNil());
    EXPECT_TRUE(outcome.raised());
}

TEST(BeginActivityRefused, IsNoObstacleToTheNextOne) {
    ActivityScene scene;
    scene.substitute.interrupt(1, [] { refuse("processInfo"); });
    EXPECT_TRUE(scene.begin().raised());
    const auto activity = scene.begin().object();
    EXPECT_EQ(scene.fields(activity).active, 1);
}

TEST(BeginActivityRefused, InAnotherWayThanCocoasPassesThrough) {
    ActivityScene scene;
    scene.shared->onMessage = [](std::string_view selector) {
        if (selector == "beginActivityWithOptions:reason:")
            throw std::runtime_error("not Cocoa's");
    };
    EXPECT_EQ(standardExceptionFrom([&] { scene.begin(); }), "not Cocoa's");
    EXPECT_EQ(host::siblings::makeCount(), 0u);
    expectOneAbandoned(scene.host);
}
