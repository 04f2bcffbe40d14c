// "beginActivity": what is sent and called, in which order, and what the new instance then holds.

#import "ActivityScene.h"

#include "macos/standin/StandIn.h"

#include <gmock/gmock.h>

#include <limits>

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;

TEST(BeginActivity, SendsAndCallsInThisOrder) {
    ActivityScene scene;
    const auto activity = scene.begin(255, "why").object();
    EXPECT_THAT(
        scene.host.calls(),
        ElementsAre("[NSProcessInfo processInfo]",
                    "[shared respondsToSelector:beginActivityWithOptions:reason:]",
                    "PluginNewInstance(\"NSProcessInfoActivityZKT\") = NSProcessInfoActivityZKT#2",
                    "REALGetStringEncoding(String#1) = 0x08000100",
                    "REALGetStringCFString(String#1, 0) = pointer", "[NSProcessInfo processInfo]",
                    "[shared beginActivityWithOptions:255 reason:\"why\"]", "[token retain]",
                    "REALLockString(String#1)"));
}

TEST(BeginActivity, LooksEachServiceUpWhereItIsNeededFirst) {
    ActivityScene scene;
    const auto activity = scene.begin(255, "why").object();
    EXPECT_THAT(scene.host.lookups(),
                ElementsAre("find PluginNewInstance", "find REALGetStringEncoding",
                            "find REALGetStringCFString", "find REALLockString"));
}

TEST(BeginActivity, FillsTheInstanceData) {
    ActivityScene scene;
    const host::Value reason = "why";
    const auto activity = scene.begin(-12345, reason).object();
    EXPECT_EQ(scene.fields(activity), (ActivityFields{.token = scene.token,
                                                      .reason = reason.string().handle(),
                                                      .options = -12345,
                                                      .active = 1}));
}

TEST(BeginActivity, GivesAnActivityWithOneReference) {
    ActivityScene scene;
    const auto activity = scene.begin().object();
    EXPECT_EQ(scene.host.className(activity), activityClass);
    EXPECT_EQ(scene.host.references(activity.handle()), 1);
}

TEST(BeginActivity, RetainsTheTokenOnce) {
    ActivityScene scene;
    const NSUInteger before = [scene.token retainCount];
    const auto activity = scene.begin().object();
    EXPECT_EQ([scene.token retainCount], before + 1);
}

TEST(BeginActivity, LocksTheReasonOnce) {
    ActivityScene scene;
    const host::Value reason = "why";
    const auto before = scene.host.references(reason.string().handle());
    const auto activity = scene.begin(255, reason).object();
    EXPECT_EQ(scene.host.references(reason.string().handle()), before + 1);
}

TEST(BeginActivity, WithoutAReasonPassesAndStoresNil) {
    ActivityScene scene;
    const auto activity = scene.begin(255, {}).object();
    EXPECT_THAT(
        scene.host.calls(),
        ElementsAre("[NSProcessInfo processInfo]",
                    "[shared respondsToSelector:beginActivityWithOptions:reason:]",
                    "PluginNewInstance(\"NSProcessInfoActivityZKT\") = NSProcessInfoActivityZKT#2",
                    "[NSProcessInfo processInfo]",
                    "[shared beginActivityWithOptions:255 reason:nil]", "[token retain]"));
    EXPECT_EQ(scene.fields(activity),
              (ActivityFields{.token = scene.token, .options = 255, .active = 1}));
}

TEST(BeginActivity, WithAnEmptyReasonPassesAndStoresNil) {
    ActivityScene scene;
    const auto activity = scene.begin(255, "").object();
    EXPECT_THAT(scene.host.calls(),
                testing::Contains("[shared beginActivityWithOptions:255 reason:nil]"));
    EXPECT_EQ(scene.fields(activity).reason, nullptr);
}

// The empty string of a program is nil; a string object without text can only come from a plug-in.
TEST(BeginActivity, WithAStringObjectWithoutTextPassesAndStoresThat) {
    ActivityScene scene;
    const host::StringRef reason = scene.host.makeString("");
    const auto activity = scene.begin(255, reason).object();
    EXPECT_THAT(scene.host.calls(),
                testing::Contains("[shared beginActivityWithOptions:255 reason:\"\"]"));
    EXPECT_EQ(scene.fields(activity).reason, reason.handle());
}

TEST(BeginActivity, AsksTheClassAfreshAtEachUse) {
    ActivityScene scene;
    const Traced asked("asked"), later("later");
    later->activity = scene.token;
    scene.substitute.answer({asked, later});
    const auto activity = scene.begin(1, {}).object();
    EXPECT_THAT(
        scene.host.calls(),
        ElementsAre("[NSProcessInfo processInfo]",
                    "[asked respondsToSelector:beginActivityWithOptions:reason:]",
                    "PluginNewInstance(\"NSProcessInfoActivityZKT\") = NSProcessInfoActivityZKT#2",
                    "[NSProcessInfo processInfo]", "[later beginActivityWithOptions:1 reason:nil]",
                    "[token retain]"));
    scene.substitute.answer({scene.shared});
}

TEST(BeginActivity, KeepsNoSharedObjectForTheNextTime) {
    ActivityScene scene;
    const auto first = scene.begun(1, {});
    const Traced later("later");
    later->activity = scene.token;
    scene.substitute.answer({later});
    const auto second = scene.begin(2, {}).object();
    EXPECT_THAT(
        scene.host.calls(),
        ElementsAre("[NSProcessInfo processInfo]",
                    "[later respondsToSelector:beginActivityWithOptions:reason:]",
                    "PluginNewInstance(\"NSProcessInfoActivityZKT\") = NSProcessInfoActivityZKT#3",
                    "[NSProcessInfo processInfo]", "[later beginActivityWithOptions:2 reason:nil]",
                    "[token retain]"));
    scene.substitute.answer({scene.shared});
}

TEST(BeginActivity, NeverReadsTheInstancesOwnObject) {
    ActivityScene scene;
    const Traced own("own");
    const InstanceAround bound(scene.host, own);
    const auto activity = scene.host.call(bound, "beginActivity", {1, "why"}).object();
    EXPECT_THAT(scene.host.calls(), testing::Each(Not(HasSubstr("own"))));
    EXPECT_THAT(scene.host.calls(),
                testing::Contains("[shared beginActivityWithOptions:1 reason:\"why\"]"));
}

TEST(BeginActivity, WorksWithNonsenseBehindHandle) {
    ActivityScene scene;
    const InstanceAround nonsense(scene.host, reinterpret_cast<const void *>(8));
    const auto activity = scene.host.call(nonsense, "beginActivity", {1, "why"}).object();
    EXPECT_EQ(scene.fields(activity).active, 1);
    scene.host.call(nonsense, "endActivity", {activity}).result();
    EXPECT_EQ(scene.fields(activity).active, 0);
}

TEST(BeginActivity, MakesAnInstanceEachTime) {
    ActivityScene scene;
    const Traced secondToken("second token");
    const auto first = scene.begin(1, "one").object();
    scene.shared->activity = secondToken;
    const auto second = scene.begin(2, "two").object();
    EXPECT_NE(first.handle(), second.handle());
    EXPECT_EQ(scene.fields(first).token, (const void *)scene.token);
    EXPECT_EQ(scene.fields(first).options, 1);
    EXPECT_EQ(scene.host.get(first, "Reason").text(), "one");
    EXPECT_EQ(scene.fields(second).token, (const void *)secondToken);
    EXPECT_EQ(scene.fields(second).options, 2);
    EXPECT_EQ(scene.host.get(second, "Reason").text(), "two");
}

TEST(BeginActivity, KeepsATokenThatIsNil) {
    ActivityScene scene;
    scene.shared->activity = nil;
    const auto activity = scene.begin(7, {}).object();
    EXPECT_EQ(scene.fields(activity),
              (ActivityFields{.token = nullptr, .options = 7, .active = 1}));
}

TEST(BeginActivity, KeepsTheReasonForTheProgramToRead) {
    ActivityScene scene;
    const auto activity = scene
                              .begin(255, "warum nicht: Gr\xC3\xBC\xC3\x9F"
                                          "e")
                              .object();
    EXPECT_EQ(scene.host.get(activity, "Reason").text(), "warum nicht: Gr\xC3\xBC\xC3\x9F"
                                                         "e");
    const auto *const token = static_cast<const void *>(scene.token);
    EXPECT_EQ(scene.host.get(activity, "Handle").integer(), reinterpret_cast<std::int64_t>(token));
    EXPECT_EQ(scene.host.get(activity, "Options").integer(), 255);
}

TEST(BeginActivity, OnAnOlderSystemGivesNilAndMakesNothing) {
    ActivityScene scene;
    scene.shared->unknown.insert("beginActivityWithOptions:reason:");
    EXPECT_TRUE(scene.begin().isNil());
    EXPECT_THAT(scene.host.trace(),
                ElementsAre("[NSProcessInfo processInfo]",
                            "[shared respondsToSelector:beginActivityWithOptions:reason:]"));
}

TEST(BeginActivity, WithoutASharedObjectGivesNil) {
    ActivityScene scene;
    scene.substitute.answer({nil});
    EXPECT_TRUE(scene.begin().isNil());
    EXPECT_THAT(scene.host.trace(), ElementsAre("[NSProcessInfo processInfo]"));
}

TEST(BeginActivity, BeginsARealActivity) {
    LoadedPlugin loaded;
    const auto info = loaded.host.newInstance(processInfoClass);
    {
        const auto activity = loaded.host.call(info, "beginActivity", {0x1234, "why"}).object();
        ASSERT_EQ(standin::activities().size(), 1u);
        EXPECT_EQ(standin::activities().front().token,
                  reinterpret_cast<const void *>(loaded.host.get(activity, "Handle").integer()));
        EXPECT_EQ(standin::activities().front().options, 0x1234u);
        EXPECT_EQ(standin::activities().front().reason, "why");
        loaded.host.call(info, "endActivity", {activity}).result();
        EXPECT_THAT(standin::activities(), IsEmpty());
    }
    EXPECT_THAT(standin::activities(), IsEmpty());
}

TEST(BeginActivity, BeginsNoRealActivityOnAnOlderSystem) {
    standin::withdraw(standin::Feature::beginActivity);
    LoadedPlugin loaded;
    const auto info = loaded.host.newInstance(processInfoClass);
    EXPECT_TRUE(loaded.host.call(info, "beginActivity", {0x1234, "why"}).isNil());
    EXPECT_THAT(standin::activities(), IsEmpty());
}

TEST(ActivityOptions, PassEveryConstantOfTheClass) {
    ActivityScene scene;
    for (const char *name :
         {"NSActivityIdleDisplaySleepDisabled", "NSActivityIdleSystemSleepDisabled",
          "NSActivitySuddenTerminationDisabled", "NSActivityAutomaticTerminationDisabled",
          "NSActivityBackground", "NSActivityLatencyCritical", "NSActivityUserInitiated",
          "NSActivityUserInitiatedAllowingIdleSystemSleep"}) {
        SCOPED_TRACE(name);
        const std::int64_t options = scene.host.constant(processInfoClass, name);
        scene.host.clearTrace();
        const auto activity = scene.begin(options, {}).object();
        EXPECT_THAT(scene.host.calls(),
                    testing::Contains("[shared beginActivityWithOptions:" +
                                      std::to_string(options) + " reason:nil]"));
        EXPECT_EQ(scene.host.get(activity, "Options").integer(), options);
    }
}

TEST(ActivityOptions, HaveFoundationsValues) {
    ActivityScene scene;
    const std::pair<const char *, std::int64_t> values[] = {
        {"NSActivityIdleDisplaySleepDisabled", 1LL << 40},
        {"NSActivityIdleSystemSleepDisabled", 1LL << 20},
        {"NSActivitySuddenTerminationDisabled", 1LL << 14},
        {"NSActivityAutomaticTerminationDisabled", 1LL << 15},
        {"NSActivityBackground", 0xFF},
        {"NSActivityLatencyCritical", 0xFFLL << 32},
        {"NSActivityUserInitiated", 0xFFFFFF},
        {"NSActivityUserInitiatedAllowingIdleSystemSleep", 0xFFFFFF & ~(1LL << 20)},
    };
    for (const auto &[name, value] : values)
        EXPECT_EQ(scene.host.constant(processInfoClass, name), value) << name;
}

TEST(ActivityOptions, PassUnchanged) {
    ActivityScene scene;
    std::vector<std::int64_t> all = {0,
                                     -1,
                                     -2,
                                     std::numeric_limits<std::int64_t>::min(),
                                     std::numeric_limits<std::int64_t>::max(),
                                     0x0123456789ABCDEF,
                                     -0x0123456789ABCDEF};
    for (int bit = 0; bit < 64; ++bit)
        all.push_back(static_cast<std::int64_t>(std::uint64_t{1} << bit));
    for (const std::int64_t options : all) {
        SCOPED_TRACE(options);
        scene.host.clearTrace();
        const auto activity = scene.begin(options, {}).object();
        EXPECT_THAT(scene.host.calls(),
                    testing::Contains("[shared beginActivityWithOptions:" +
                                      std::to_string(options) + " reason:nil]"));
        EXPECT_EQ(scene.fields(activity).options, options);
    }
}
