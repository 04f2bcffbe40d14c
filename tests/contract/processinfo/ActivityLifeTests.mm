// How activities end: by "endActivity", or when their object dies.

#import "ActivityScene.h"

#include "Caught.h"

#include <gmock/gmock.h>

#include <stdexcept>

using testing::ElementsAre;

namespace {

std::function<void()> refusal(const char *what) {
    return [what] { refusing(what)(what); };
}

} // namespace

TEST(EndActivity, SendsInThisOrder) {
    ActivityScene scene;
    const auto activity = scene.begun();
    scene.end(activity).result();
    EXPECT_THAT(scene.host.trace(), ElementsAre("[NSProcessInfo processInfo]",
                                                "[shared respondsToSelector:endActivity:]",
                                                "[NSProcessInfo processInfo]",
                                                "[shared endActivity:token]", "[token release]"));
}

TEST(EndActivity, AsksTheClassAfreshAtEachUse) {
    ActivityScene scene;
    const auto activity = scene.begun();
    const Traced asked("asked"), later("later");
    scene.substitute.answer({asked, later});
    scene.end(activity).result();
    EXPECT_THAT(scene.host.trace(), ElementsAre("[NSProcessInfo processInfo]",
                                                "[asked respondsToSelector:endActivity:]",
                                                "[NSProcessInfo processInfo]",
                                                "[later endActivity:token]", "[token release]"));
    scene.substitute.answer({scene.shared});
}

TEST(EndActivity, KeepsNoSharedObjectForTheNextTime) {
    ActivityScene scene;
    const auto first = scene.begun(), second = scene.begun();
    scene.end(first).result();
    scene.host.clearTrace();
    const Traced later("later");
    scene.substitute.answer({later});
    scene.end(second).result();
    EXPECT_THAT(scene.host.trace(), ElementsAre("[NSProcessInfo processInfo]",
                                                "[later respondsToSelector:endActivity:]",
                                                "[NSProcessInfo processInfo]",
                                                "[later endActivity:token]", "[token release]"));
    scene.substitute.answer({scene.shared});
}

TEST(EndActivity, KeepsReasonAndOptions) {
    ActivityScene scene;
    const host::Value reason = "why";
    const auto activity = scene.begun(77, reason);
    const auto references = scene.host.references(reason.string().handle());
    scene.end(activity).result();
    EXPECT_EQ(scene.fields(activity),
              (ActivityFields{.reason = reason.string().handle(), .options = 77}));
    EXPECT_EQ(scene.host.references(reason.string().handle()), references);
}

TEST(EndActivity, BalancesTheToken) {
    ActivityScene scene;
    const NSUInteger before = [scene.token retainCount];
    const auto activity = scene.begun();
    scene.end(activity).result();
    EXPECT_EQ([scene.token retainCount], before);
}

TEST(EndActivity, ASecondTimeEndsNothing) {
    ActivityScene scene;
    const auto activity = scene.begun();
    scene.end(activity).result();
    scene.host.clearTrace();
    scene.end(activity).result();
    EXPECT_THAT(scene.host.trace(), ElementsAre("[NSProcessInfo processInfo]",
                                                "[shared respondsToSelector:endActivity:]"));
}

TEST(EndActivity, EndsItsOwnActivityOnly) {
    ActivityScene scene;
    const Traced other("other token");
    const auto first = scene.begun(1);
    scene.shared->activity = other;
    const auto second = scene.begun(2);
    scene.end(first).result();
    EXPECT_THAT(scene.host.calls(), testing::Contains("[shared endActivity:token]"));
    EXPECT_EQ(scene.fields(second).active, 1);
    EXPECT_EQ(scene.fields(second).token, (const void *)other);
}

TEST(EndActivity, EndsWhatAnotherInstanceBegan) {
    ActivityScene scene;
    const auto activity = scene.begun();
    const Traced own("own");
    const InstanceAround other(scene.host, own);
    scene.host.call(other, "endActivity", {activity}).result();
    EXPECT_THAT(scene.host.trace(), ElementsAre("[NSProcessInfo processInfo]",
                                                "[shared respondsToSelector:endActivity:]",
                                                "[NSProcessInfo processInfo]",
                                                "[shared endActivity:token]", "[token release]"));
}

TEST(EndActivity, SendsATokenThatIsNil) {
    ActivityScene scene;
    scene.shared->activity = nil;
    const auto activity = scene.begun();
    scene.end(activity).result();
    EXPECT_THAT(scene.host.trace(),
                ElementsAre("[NSProcessInfo processInfo]",
                            "[shared respondsToSelector:endActivity:]",
                            "[NSProcessInfo processInfo]", "[shared endActivity:nil]"));
}

TEST(EndActivity, OfNilRaisesNilObjectException) {
    ActivityScene scene;
    const host::Outcome outcome = scene.end({});
    ASSERT_TRUE(outcome.raised());
    EXPECT_EQ(outcome.exception->className, "NilObjectException");
    EXPECT_EQ(outcome.exception->message, "activity is nil");
    EXPECT_EQ(outcome.exception->errorNumber, 0);
}

TEST(EndActivity, OfNilSendsNothing) {
    ActivityScene scene;
    scene.end({});
    EXPECT_THAT(
        scene.host.calls(),
        ElementsAre("REALBuildString(\"activity is nil\", 15) = String#1",
                    "REALSetStringEncoding(String#1, 0x00000600)",
                    "PluginNewInstance(\"NilObjectException\") = NilObjectException#2",
                    "REALSetPropValueString(NilObjectException#2, \"Message\", String#1) = true",
                    "REALSetPropValueInteger(NilObjectException#2, \"ErrorNumber\", 0) = true",
                    "RuntimeRaiseException(NilObjectException#2)",
                    "REALUnlockObject(NilObjectException#2)", "REALUnlockString(String#1)"));
}

TEST(EndActivity, OnAnOlderSystemLeavesTheActivityActive) {
    ActivityScene scene;
    const auto activity = scene.begun();
    const ActivityFields before = scene.fields(activity);
    scene.shared->unknown.insert("endActivity:");
    scene.end(activity).result();
    EXPECT_THAT(scene.host.trace(), ElementsAre("[NSProcessInfo processInfo]",
                                                "[shared respondsToSelector:endActivity:]"));
    EXPECT_EQ(scene.fields(activity), before);
    EXPECT_EQ(before.active, 1);
}

TEST(EndActivity, WithoutASharedObjectLeavesTheActivityActive) {
    ActivityScene scene;
    const auto activity = scene.begun();
    scene.substitute.answer({nil});
    scene.end(activity).result();
    EXPECT_THAT(scene.host.trace(), ElementsAre("[NSProcessInfo processInfo]"));
    EXPECT_EQ(scene.fields(activity).active, 1);
    scene.substitute.answer({scene.shared});
}

TEST(EndActivity, RefusedByTheClassLeavesTheActivityActive) {
    ActivityScene scene;
    const auto activity = scene.begun();
    const ActivityFields before = scene.fields(activity);
    for (const std::size_t request : {1u, 2u}) {
        SCOPED_TRACE(request);
        scene.substitute.interrupt(request, refusal("processInfo"));
        EXPECT_TRUE(scene.end(activity).raised());
        EXPECT_EQ(scene.fields(activity), before);
    }
}

TEST(EndActivity, RefusedByTheTokenLeavesTheActivityActive) {
    ActivityScene scene;
    const auto activity = scene.begun();
    const ActivityFields before = scene.fields(activity);
    scene.token->onMessage = refusing("release");
    expectRaised(scene.end(activity), "Refused", "release");
    scene.token->onMessage = nullptr;
    EXPECT_EQ(scene.fields(activity), before);
}

TEST(DyingActivity, IsEnded) {
    ActivityScene scene;
    auto activity = scene.begun();
    scene.host.release(std::move(activity)).result();
    EXPECT_THAT(scene.host.trace(),
                ElementsAre("[NSProcessInfo processInfo]", "[shared endActivity:token]",
                            "[token release]", "find REALUnlockString",
                            "REALUnlockString(String#1)"));
}

TEST(DyingActivity, KeepsNoSharedObjectForTheNextOne) {
    ActivityScene scene;
    auto first = scene.begun(255, {}), second = scene.begun(255, {});
    scene.host.release(std::move(first)).result();
    scene.host.clearTrace();
    const Traced later("later");
    scene.substitute.answer({later});
    scene.host.release(std::move(second)).result();
    EXPECT_THAT(scene.host.trace(), ElementsAre("[NSProcessInfo processInfo]",
                                                "[later endActivity:token]", "[token release]"));
    scene.substitute.answer({scene.shared});
}

TEST(DyingActivity, LeavesTokenAndReasonAsTheyWere) {
    ActivityScene scene;
    const host::Value reason = "why";
    const auto reasonReferences = scene.host.references(reason.string().handle());
    const NSUInteger tokenReferences = [scene.token retainCount];
    {
        const auto activity = scene.begun(255, reason);
    }
    EXPECT_EQ(scene.host.references(reason.string().handle()), reasonReferences);
    EXPECT_EQ([scene.token retainCount], tokenReferences);
}

TEST(DyingActivity, AfterItsEndOnlyGivesTheReasonBack) {
    ActivityScene scene;
    auto activity = scene.begun();
    scene.end(activity).result();
    scene.host.clearTrace();
    scene.host.release(std::move(activity)).result();
    EXPECT_THAT(scene.host.calls(), ElementsAre("REALUnlockString(String#1)"));
}

TEST(DyingActivity, WithoutAReasonUnlocksNothing) {
    ActivityScene scene;
    auto activity = scene.begun(255, {});
    scene.host.release(std::move(activity)).result();
    EXPECT_THAT(scene.host.trace(), ElementsAre("[NSProcessInfo processInfo]",
                                                "[shared endActivity:token]", "[token release]"));
}

TEST(DyingActivity, IsEndedOnASystemThatDoesNotKnowTheMessageEither) {
    ActivityScene scene;
    auto activity = scene.begun();
    scene.shared->unknown.insert("endActivity:");
    scene.end(activity).result();
    scene.host.clearTrace();
    scene.host.release(std::move(activity)).result();
    EXPECT_THAT(scene.host.calls(),
                ElementsAre("[NSProcessInfo processInfo]", "[shared endActivity:token]",
                            "[token release]", "REALUnlockString(String#1)"));
}

TEST(DyingActivity, ClearsItsFields) {
    ActivityScene scene;
    const auto activity = scene.begun(77);
    scene.destruct(activity);
    EXPECT_EQ(scene.fields(activity), ActivityFields{.options = 77});
}

TEST(DyingActivity, RefusedByTheClassClearsItsFieldsAllTheSame) {
    ActivityScene scene;
    const auto activity = scene.begun(77);
    scene.substitute.interrupt(1, refusal("processInfo"));
    scene.destruct(activity);
    EXPECT_EQ(scene.fields(activity), ActivityFields{.options = 77});
    EXPECT_TRUE(scene.host.takePendingException());
    [scene.token release];
}

TEST(DyingActivity, ShowsItsExceptionToTheProgram) {
    ActivityScene scene;
    auto activity = scene.begun();
    scene.shared->onMessage = refusing("endActivity:");
    expectRaised(scene.host.release(std::move(activity)), "Refused", "endActivity:");
    [scene.token release];
}

TEST(DyingActivity, LeftByAnotherExceptionThanCocoasLetsItPass) {
    ActivityScene scene;
    auto activity = scene.begun();
    scene.substitute.interrupt(1, [] { throw std::runtime_error("not Cocoa's"); });
    EXPECT_EQ(standardExceptionFrom([&] { scene.destruct(activity); }), "not Cocoa's");
    EXPECT_EQ(scene.fields(activity).active, 1) << "nothing was cleared";
}
