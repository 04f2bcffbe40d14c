// An activity's instance data: where it lies, what programs do to it, and activities that nobody
// began.

#import "ActivityScene.h"

#include "host/classes/ClassTable.h"
#include "host/core/Core.h"
#include "macos/standin/StandIn.h"

#include <gmock/gmock.h>

using testing::ElementsAre;
using testing::IsEmpty;

TEST(ProgramMadeActivity, IsEmpty) {
    ActivityScene scene;
    const auto activity = scene.host.newObject(activityClass).object();
    EXPECT_EQ(scene.fields(activity), ActivityFields{});
    EXPECT_THAT(scene.host.trace(), IsEmpty());
}

TEST(ProgramMadeActivity, KeepsItsDataThroughTheConstructor) {
    ActivityScene scene;
    const auto activity = scene.begun();
    const ActivityFields before = scene.fields(activity);
    reinterpret_cast<void (*)(host::ObjectHandle)>(
        scene.host.methodOf(activityClass, "Constructor"))(activity);
    EXPECT_EQ(scene.fields(activity), before);
    EXPECT_THAT(scene.host.trace(), IsEmpty());
}

TEST(ProgramMadeActivity, CannotBeEnded) {
    ActivityScene scene;
    const auto activity = scene.host.newObject(activityClass).object();
    scene.end(activity).result();
    EXPECT_THAT(scene.host.trace(), ElementsAre("[NSProcessInfo processInfo]",
                                                "[shared respondsToSelector:endActivity:]"));
    EXPECT_EQ(scene.fields(activity), ActivityFields{});
}

TEST(ProgramMadeActivity, DiesWithoutATrace) {
    ActivityScene scene;
    auto activity = scene.host.newObject(activityClass).object();
    scene.host.release(std::move(activity)).result();
    EXPECT_THAT(scene.host.trace(), IsEmpty());
}

TEST(ProgramMadeActivity, IsNotEndedForAHandleThatWasWrittenToIt) {
    ActivityScene scene;
    auto activity = scene.host.newObject(activityClass).object();
    setHandle(scene.host, activity, scene.token);
    scene.end(activity).result();
    EXPECT_EQ(scene.fields(activity).token, nullptr) << "cleared all the same";
    setHandle(scene.host, activity, scene.token);
    scene.host.release(std::move(activity)).result();
    EXPECT_THAT(scene.host.trace(), ElementsAre("[NSProcessInfo processInfo]",
                                                "[shared respondsToSelector:endActivity:]"));
}

TEST(ProgramMadeActivity, GivesBackAReasonThatWasWrittenToIt) {
    ActivityScene scene;
    auto activity = scene.host.newObject(activityClass).object();
    scene.host.set(activity, "Reason", "written");
    scene.host.release(std::move(activity)).result();
    EXPECT_THAT(scene.host.calls(), ElementsAre("REALUnlockString(String#1)"));
    EXPECT_THAT(scene.host.liveStrings(), IsEmpty());
}

TEST(ActivityHandle, WrittenReplacesTheTokenWithoutAMessage) {
    ActivityScene scene;
    const Traced other("other");
    const auto activity = scene.begun();
    setHandle(scene.host, activity, other);
    EXPECT_EQ(handleOf(scene.host, activity), (const void *)other);
    EXPECT_EQ(scene.fields(activity).active, 1);
    EXPECT_THAT(scene.host.trace(), IsEmpty());
    setHandle(scene.host, activity, scene.token);
}

TEST(ActivityHandle, WrittenIsWhatEnds) {
    ActivityScene scene;
    const Traced other("other");
    [other retain];
    const auto activity = scene.begun();
    setHandle(scene.host, activity, other);
    scene.host.clearTrace();
    const NSUInteger first = [scene.token retainCount];
    scene.end(activity).result();
    EXPECT_THAT(scene.host.trace(), ElementsAre("[NSProcessInfo processInfo]",
                                                "[shared respondsToSelector:endActivity:]",
                                                "[NSProcessInfo processInfo]",
                                                "[shared endActivity:other]", "[other release]"));
    EXPECT_EQ([scene.token retainCount], first) << "nobody gives the old one back";
    [scene.token release];
}

TEST(ActivityHandle, SetToZeroEndsNil) {
    ActivityScene scene;
    auto activity = scene.begun(255, {});
    setHandle(scene.host, activity, nullptr);
    scene.host.release(std::move(activity)).result();
    EXPECT_THAT(scene.host.trace(),
                ElementsAre("[NSProcessInfo processInfo]", "[shared endActivity:nil]"));
    [scene.token release];
}

TEST(ActivityReason, WrittenTakesTheOldOnesPlace) {
    ActivityScene scene;
    const host::Value first = "first", second = "second";
    const auto firstReferences = scene.host.references(first.string().handle());
    const auto secondReferences = scene.host.references(second.string().handle());
    auto activity = scene.begun(255, first);
    scene.host.set(activity, "Reason", second).result();
    EXPECT_EQ(scene.host.get(activity, "Reason").text(), "second");
    EXPECT_EQ(scene.host.references(first.string().handle()), firstReferences);
    EXPECT_THAT(scene.host.trace(), IsEmpty()) << "the host does it by itself";
    scene.host.release(std::move(activity)).result();
    EXPECT_EQ(scene.host.references(second.string().handle()), secondReferences);
}

TEST(ActivityReason, SetToNilLeavesNothingToUnlock) {
    ActivityScene scene;
    auto activity = scene.begun();
    scene.host.set(activity, "Reason", {}).result();
    scene.host.release(std::move(activity)).result();
    EXPECT_EQ(scene.host.services().calls("REALUnlockString"), 0u);
    EXPECT_THAT(scene.host.liveStrings(), IsEmpty());
}

TEST(ActivityOptions, WrittenAreReadAgain) {
    ActivityScene scene;
    const auto activity = scene.begun(255);
    scene.host.set(activity, "Options", -7).result();
    EXPECT_EQ(scene.host.get(activity, "Options").integer(), -7);
    EXPECT_THAT(scene.host.trace(), IsEmpty());
    EXPECT_EQ(scene.fields(activity).active, 1);
}

// The host says where the data lies when the class is registered; the plug-in looks there.
class ActivityDataPlace : public testing::TestWithParam<std::size_t> {};

TEST_P(ActivityDataPlace, IsWhereTheHostPutIt) {
    host::Host host;
    host::Core::current().classes.placeData(activityClass, GetParam());
    host::Image &image = host.loadPlugin(imageUnderTest());
    ASSERT_EQ(host.registeredRecords().back()->dataOffset, GetParam());
    const Traced shared("shared"), token("token");
    shared->activity = token;
    const SharedObjectSubstitute substitute(image, shared);
    const auto info = host.newInstance(processInfoClass);

    const host::Value reason = "why";
    const auto activity = host.call(info, "beginActivity", {99, reason}).object();
    ActivityFields found;
    std::memcpy(&found, reinterpret_cast<const char *>(activity.handle()) + GetParam(),
                sizeof found);
    EXPECT_EQ(found,
              (ActivityFields{
                  .token = token, .reason = reason.string().handle(), .options = 99, .active = 1}));
    host.call(info, "endActivity", {activity}).result();
    EXPECT_EQ(fieldsOf(host, activity),
              (ActivityFields{.reason = reason.string().handle(), .options = 99}));
}

INSTANTIATE_TEST_SUITE_P(Offset, ActivityDataPlace, testing::Values(48, 64, 112, 4096),
                         testing::PrintToStringParamName());

TEST(ActivityDataPlaceByDefault, IsNotThatOfOtherClasses) {
    LoadedPlugin loaded;
    EXPECT_EQ(loaded.host.registeredRecords().back()->dataOffset, 64u);
    EXPECT_EQ(loaded.host.registeredRecords().front()->dataOffset, 48u);
}

TEST(ActivityOfTheProcess, EndsWithItsObject) {
    LoadedPlugin loaded;
    const auto info = loaded.host.newInstance(processInfoClass);
    auto activity = loaded.host.call(info, "beginActivity", {1, "why"}).object();
    ASSERT_EQ(standin::activities().size(), 1u);
    loaded.host.release(std::move(activity)).result();
    EXPECT_THAT(standin::activities(), IsEmpty());
}

TEST(ActivityOfTheProcess, StaysOnAnOlderSystemUntilItsObjectDies) {
    LoadedPlugin loaded;
    const auto info = loaded.host.newInstance(processInfoClass);
    auto activity = loaded.host.call(info, "beginActivity", {1, "why"}).object();
    standin::withdraw(standin::Feature::endActivity);
    loaded.host.call(info, "endActivity", {activity}).result();
    EXPECT_EQ(standin::activities().size(), 1u);
    // The message is sent to the dying object's token all the same, and not understood here.
    const host::Outcome outcome = loaded.host.release(std::move(activity));
    ASSERT_TRUE(outcome.raised());
    EXPECT_EQ(outcome.exception->cocoaName, "NSInvalidArgumentException");
}
