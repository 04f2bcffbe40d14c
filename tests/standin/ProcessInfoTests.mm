// What NSProcessInfo has on macOS and not, or not like that, in GNUstep.

#import "Cocoa.h"

#include "standin/StandIn.h"

#include <ctime>

#include <dlfcn.h>

/// The messages in macOS's types, some of which GNUstep does not declare.
@protocol MacProcessInfo
- (double)systemUptime;
- (long)thermalState;
- (void)disableAutomaticTermination:(NSString *)reason;
- (void)enableAutomaticTermination:(NSString *)reason;
- (signed char)automaticTerminationSupportEnabled;
- (void)setAutomaticTerminationSupportEnabled:(signed char)enabled;
@end

extern "C" NSString *const NSProcessInfoThermalStateDidChangeNotification __attribute__((weak));

namespace {

using standin::Feature;

class ProcessInfo : public CocoaTest {
protected:
    static NSProcessInfo *info() { return [NSProcessInfo processInfo]; }

    static double uptime() {
        using Send = double (*)(id, SEL);
        const SEL selector = @selector(systemUptime);
        return reinterpret_cast<Send>(
            reinterpret_cast<void (*)()>([info() methodForSelector:selector]))(info(), selector);
    }

    /// The name of the NSException; empty without one.
    template <class Operation>
    static std::string raisedBy(Operation operation) {
        std::string raised;
        @try {
            operation();
        } @catch (NSException *exception) {
            raised = [[exception name] UTF8String];
        }
        return raised;
    }

    static id<MacProcessInfo> mac() { return (id<MacProcessInfo>)info(); }

    static void expectWithdrawn(SEL selector) {
        EXPECT_FALSE([info() respondsToSelector:selector]) << sel_getName(selector);
        EXPECT_EQ(raisedBy([=] { [info() performSelector:selector]; }),
                  "NSInvalidArgumentException")
            << sel_getName(selector);
    }
};

TEST_F(ProcessInfo, UptimeHasFractionsOfASecond) {
    timespec before;
    clock_gettime(CLOCK_MONOTONIC, &before);
    const double first = uptime();
    EXPECT_GE(first, static_cast<double>(before.tv_sec));
    EXPECT_LT(first, static_cast<double>(before.tv_sec) + 10);
    EXPECT_GT(uptime(), first);
    EXPECT_STREQ([[info() methodSignatureForSelector:@selector(systemUptime)] methodReturnType],
                 "d");
}

TEST_F(ProcessInfo, ThermalStateIsNominalUntilSet) {
    EXPECT_EQ([mac() thermalState], 0);
    standin::setThermalState(3);
    EXPECT_EQ([mac() thermalState], 3);
}

TEST_F(ProcessInfo, ThermalNotificationIsNamedAfterItself) {
    EXPECT_EQ(units(NSProcessInfoThermalStateDidChangeNotification),
              u"NSProcessInfoThermalStateDidChangeNotification");
}

TEST_F(ProcessInfo, AutomaticTerminationIsCounted) {
    [mac() disableAutomaticTermination:@"saving"];
    [mac() disableAutomaticTermination:nil];
    EXPECT_EQ(standin::automaticTerminationDisableCount(), 2);
    [mac() enableAutomaticTermination:@"saving"];
    EXPECT_EQ(standin::automaticTerminationDisableCount(), 1);
}

TEST_F(ProcessInfo, AutomaticTerminationSupportKeepsItsByte) {
    EXPECT_EQ([mac() automaticTerminationSupportEnabled], 0);
    [mac() setAutomaticTerminationSupportEnabled:1];
    EXPECT_EQ([mac() automaticTerminationSupportEnabled], 1);
    [mac() setAutomaticTerminationSupportEnabled:-1];
    EXPECT_EQ([mac() automaticTerminationSupportEnabled], -1);
}

TEST_F(ProcessInfo, SuddenTerminationIsCounted) {
    [info() disableSuddenTermination];
    EXPECT_EQ(standin::suddenTerminationDisableCount(), 1);
    [info() enableSuddenTermination];
    [info() enableSuddenTermination];
    EXPECT_EQ(standin::suddenTerminationDisableCount(), -1);
}

TEST_F(ProcessInfo, ActivitiesRunUntilEnded) {
    const id first = [info() beginActivityWithOptions:NSActivityLatencyCritical
                                               reason:@"Gr\u00FC\u00DFe"];
    const id second = [info() beginActivityWithOptions:NSActivityBackground reason:nil];
    ASSERT_NE(first, nil);
    ASSERT_NE(first, second);
    std::vector<standin::Activity> running = standin::activities();
    ASSERT_EQ(running.size(), 2U);
    EXPECT_EQ(running[0].token, first);
    EXPECT_EQ(running[0].options, 0xFF00000000U);
    EXPECT_EQ(running[0].reason, "Gr\xC3\xBC\xC3\x9F"
                                 "e");
    EXPECT_EQ(running[1].reason, "");

    [info() endActivity:first];
    running = standin::activities();
    ASSERT_EQ(running.size(), 1U);
    EXPECT_EQ(running[0].token, second);
    [info() endActivity:first];
    [info() endActivity:nil];
    EXPECT_EQ(standin::activities().size(), 1U);
}

TEST_F(ProcessInfo, AnActivityEndsWithItsToken) {
    NSAutoreleasePool *const pool = [[NSAutoreleasePool alloc] init];
    [info() beginActivityWithOptions:0 reason:@"forgotten"];
    EXPECT_EQ(standin::activities().size(), 1U);
    [pool drain];
    EXPECT_EQ(standin::activities().size(), 0U);
}

TEST_F(ProcessInfo, WhatIsNoActivityIsEndedWithoutAWordUntilItIsRefused) {
    EXPECT_EQ(raisedBy([] { [info() endActivity:@"token"]; }), "");
    EXPECT_EQ(raisedBy([] { [info() endActivity:none<id>()]; }), "");
    standin::refuse(standin::Argument::noActivity);
    EXPECT_EQ(raisedBy([] { [info() endActivity:@"token"]; }), "NSInvalidArgumentException");
    EXPECT_EQ(raisedBy([] { [info() endActivity:none<id>()]; }), "NSInvalidArgumentException");
    const id activity = [info() beginActivityWithOptions:0 reason:none<NSString *>()];
    EXPECT_EQ(raisedBy([&] { [info() endActivity:activity]; }), "");
    EXPECT_EQ(raisedBy([&] { [info() endActivity:activity]; }), "") << "one that has ended";
}

TEST_F(ProcessInfo, NoReasonIsAReasonUntilItIsRefused) {
    const auto begin = [](NSString *reason) {
        return raisedBy([&] { [info() beginActivityWithOptions:0 reason:reason]; });
    };
    EXPECT_EQ(begin(@""), "");
    EXPECT_EQ(begin(nil), "");
    EXPECT_EQ(standin::activities().size(), 2U);
    standin::refuse(standin::Argument::noReason);
    EXPECT_EQ(begin(@""), "NSInvalidArgumentException");
    EXPECT_EQ(begin(nil), "NSInvalidArgumentException");
    EXPECT_EQ(begin(@"r"), "");
    EXPECT_EQ(standin::activities().size(), 3U);
}

TEST_F(ProcessInfo, TheOperatingSystemIsMach) {
    using Send = NSUInteger (*)(id, SEL);
    const SEL selector = @selector(operatingSystem);
    EXPECT_EQ(reinterpret_cast<Send>(reinterpret_cast<void (*)()>(
                  [info() methodForSelector:selector]))(info(), selector),
              5U);
    EXPECT_EQ(units([info() operatingSystemName]), u"NSMACHOperatingSystem");
}

TEST_F(ProcessInfo, RespondsToEveryFeatureAndNothingElse) {
    EXPECT_TRUE([info() respondsToSelector:@selector(thermalState)]);
    EXPECT_TRUE([info() respondsToSelector:@selector(beginActivityWithOptions:reason:)]);
    EXPECT_TRUE([info() respondsToSelector:@selector(endActivity:)]);
    EXPECT_TRUE([info() respondsToSelector:@selector(setAutomaticTerminationSupportEnabled:)]);
    EXPECT_TRUE([info() respondsToSelector:@selector(hostName)]);
    EXPECT_FALSE([info() respondsToSelector:@selector(objectAtIndex:)]);
}

TEST_F(ProcessInfo, ThermalStateCanBeWithdrawn) {
    standin::withdraw(Feature::thermalState);
    expectWithdrawn(@selector(thermalState));
    EXPECT_TRUE([info() respondsToSelector:@selector(endActivity:)]);
}

TEST_F(ProcessInfo, BeginningAndEndingActivitiesAreWithdrawnApart) {
    standin::withdraw(Feature::endActivity);
    expectWithdrawn(@selector(endActivity:));
    EXPECT_NE([info() beginActivityWithOptions:0 reason:@"r"], nil);
    standin::withdraw(Feature::beginActivity);
    expectWithdrawn(@selector(beginActivityWithOptions:reason:));
}

TEST_F(ProcessInfo, TerminationControlCanBeWithdrawn) {
    standin::withdraw(Feature::suddenTermination);
    expectWithdrawn(@selector(disableSuddenTermination));
    expectWithdrawn(@selector(enableSuddenTermination));
    EXPECT_TRUE([info() respondsToSelector:@selector(disableAutomaticTermination:)]);
    standin::withdraw(Feature::automaticTermination);
    expectWithdrawn(@selector(disableAutomaticTermination:));
    expectWithdrawn(@selector(enableAutomaticTermination:));
    expectWithdrawn(@selector(automaticTerminationSupportEnabled));
    expectWithdrawn(@selector(setAutomaticTerminationSupportEnabled:));
}

TEST_F(ProcessInfo, ThermalNotificationCanBeWithdrawn) {
    standin::withdraw(Feature::thermalStateNotification);
    EXPECT_EQ(
        *static_cast<id *>(dlsym(RTLD_DEFAULT, "NSProcessInfoThermalStateDidChangeNotification")),
        nil);
    EXPECT_TRUE([info() respondsToSelector:@selector(thermalState)]);
}

} // namespace
