// What Foundation's header forbids for activities without saying what comes of it: no reason, and
// ending what is no activity. On some macOS it may raise; what a program sees with and without.

#include "LoadedPlugin.h"

#import <Foundation/Foundation.h>

#include "standin/StandIn.h"

#include <gmock/gmock.h>

using testing::HasSubstr;
using testing::IsEmpty;
using testing::SizeIs;

namespace {

struct ActivityArgument : testing::Test {
    LoadedPlugin loaded;
    host::Host &host = loaded.host;
    const host::ObjectRef info = host.newInstance(processInfoClass);

    host::Outcome begin(const host::Value &reason) {
        return host.call(info, "beginActivity", {255, reason});
    }
    host::Outcome end(const host::ObjectRef &activity) {
        return host.call(info, "endActivity", {activity});
    }
    static void expectRefusal(const host::Outcome &outcome, const char *method) {
        ASSERT_TRUE(outcome.raised());
        EXPECT_EQ(outcome.exception->className, "NSExceptionZKT");
        EXPECT_EQ(outcome.exception->cocoaName, "NSInvalidArgumentException");
        EXPECT_THAT(outcome.exception->cocoaReason, HasSubstr(method));
    }
};

} // namespace

TEST_F(ActivityArgument, WithoutAReasonTheActivityRuns) {
    const host::ObjectRef empty = begin("").object();
    const host::ObjectRef none = begin({}).object();
    EXPECT_THAT(standin::activities(), SizeIs(2));
    EXPECT_EQ(host.get(empty, "Reason").text(), "");
    EXPECT_EQ(host.get(none, "Options").integer(), 255);
}

TEST_F(ActivityArgument, WithoutAReasonThatIsNeededThereIsAnExceptionAndNoActivity) {
    standin::refuse(standin::Argument::noReason);
    const host::ObjectRef fine = begin("why").object();
    for (const host::Value &reason :
         {host::Value(""), host::Value(), host::Value(host.makeString(""))}) {
        const host::Outcome outcome = begin(reason);
        EXPECT_TRUE(outcome.value.isNil());
        expectRefusal(outcome, "beginActivityWithOptions:reason:");
    }
    EXPECT_THAT(standin::activities(), SizeIs(1));
    host.shutDown();
    EXPECT_THAT(host.violations(),
                testing::Contains(HasSubstr("NSProcessInfoActivityZKT")).Times(3))
        << "the instances that were made before are not given back";
}

TEST_F(ActivityArgument, WhatIsNoActivityEndsWithoutAWord) {
    for (NSString *handle : {@"no activity", static_cast<NSString *>(nil)}) {
        const host::ObjectRef activity = begin("why").object();
        setHandle(host, activity, handle);
        const host::Outcome outcome = end(activity);
        EXPECT_FALSE(outcome.raised());
        EXPECT_EQ(handleOf(host, activity), nullptr);
    }
}

TEST_F(ActivityArgument, WhatIsNoActivityRaisesWhenEndedAndAgainWhenItsObjectDies) {
    standin::refuse(standin::Argument::noActivity);
    for (NSString *handle : {@"no activity", static_cast<NSString *>(nil)}) {
        host::ObjectRef activity = begin("why").object();
        setHandle(host, activity, handle);
        expectRefusal(end(activity), "endActivity:");
        EXPECT_EQ(handleOf(host, activity), (const void *)handle) << "still to be ended";
        expectRefusal(host.release(std::move(activity)), "endActivity:");
    }
    EXPECT_THAT(host.liveStrings(), IsEmpty()) << "the reasons are given back all the same";
}

TEST_F(ActivityArgument, AnActivityThatHasEndedIsOneStill) {
    standin::refuse(standin::Argument::noActivity);
    host::ObjectRef activity = begin("why").object();
    EXPECT_FALSE(end(activity).raised());
    EXPECT_FALSE(end(activity).raised());
    EXPECT_FALSE(host.release(std::move(activity)).raised());
    EXPECT_THAT(standin::activities(), IsEmpty());
}
