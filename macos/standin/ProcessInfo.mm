// NSProcessInfo as macOS has it: what GNUstep's lacks, only declares, or answers in another type.

#import <Foundation/Foundation.h>

#include "Methods.h"
#include "StandIn.h"

#include <algorithm>
#include <ctime>
#include <set>
#include <string_view>

/// The token of an activity. The list of running ones does not retain it.
@interface StandInActivity : NSObject {
@public
    uint64_t options;
    NSString *reason;
}
@end

extern "C" NSString *NSProcessInfoThermalStateDidChangeNotification;
NSString *NSProcessInfoThermalStateDidChangeNotification =
    @"NSProcessInfoThermalStateDidChangeNotification";

namespace standin {
namespace {

struct ProcessState {
    long thermalState = 0;
    long suddenTerminationDisableCount = 0;
    long automaticTerminationDisableCount = 0;
    signed char automaticTerminationSupportEnabled = 0;
    std::vector<StandInActivity *> activities;
    std::set<std::string_view> withdrawnSelectors;
    bool refusesNoReason = false;
    bool refusesNoActivity = false;
};

// Never destroyed: activities may be deallocated while the process exits.
ProcessState &state() {
    static auto &state = *new ProcessState;
    return state;
}

double systemUptime(id, SEL) {
    timespec now; // this clock stands still while the machine sleeps, as macOS's uptime does
    clock_gettime(CLOCK_MONOTONIC, &now);
    return static_cast<double>(now.tv_sec) + static_cast<double>(now.tv_nsec) / 1e9;
}

void disableSuddenTermination(id, SEL) {
    ++state().suddenTerminationDisableCount;
}
void enableSuddenTermination(id, SEL) {
    --state().suddenTerminationDisableCount;
}
void disableAutomaticTermination(id, SEL, NSString *) {
    ++state().automaticTerminationDisableCount;
}
void enableAutomaticTermination(id, SEL, NSString *) {
    --state().automaticTerminationDisableCount;
}

signed char automaticTerminationSupportEnabled(id, SEL) {
    return state().automaticTerminationSupportEnabled;
}
void setAutomaticTerminationSupportEnabled(id, SEL, signed char enabled) {
    state().automaticTerminationSupportEnabled = enabled;
}

// NSMACHOperatingSystem, in Foundation's own numbering.
NSUInteger operatingSystem(id, SEL) {
    return 5;
}
NSString *operatingSystemName(id, SEL) {
    return @"NSMACHOperatingSystem";
}

id beginActivity(id, SEL, uint64_t options, NSString *reason) {
    if (state().refusesNoReason && [reason length] == 0) {
        [NSException raise:NSInvalidArgumentException
                    format:@"beginActivityWithOptions:reason: takes a reason that is not empty"];
    }
    StandInActivity *const activity = [[[StandInActivity alloc] init] autorelease];
    activity->options = options;
    activity->reason = [reason copy];
    state().activities.push_back(activity);
    return activity;
}

void endActivity(id, SEL, id activity) {
    if (state().refusesNoActivity && ![activity isKindOfClass:[StandInActivity class]]) {
        [NSException raise:NSInvalidArgumentException
                    format:@"endActivity: takes what beginActivityWithOptions:reason: returned, "
                           @"not %@",
                           activity];
    }
    std::erase(state().activities, activity);
}

long thermalState(id, SEL) {
    return state().thermalState;
}

// The runtime cannot take a method out of a class again: it is refused and denied instead.
BOOL respondsToSelector(id object, SEL, SEL selector) {
    if (selector != nullptr && state().withdrawnSelectors.contains(sel_getName(selector))) {
        return NO;
    }
    return class_respondsToSelector(object_getClass(object), selector);
}

struct FeatureMethod {
    Feature feature;
    const char *selector;
};
constexpr FeatureMethod featureMethods[] = {
    {.feature = Feature::suddenTermination, .selector = "disableSuddenTermination"},
    {.feature = Feature::suddenTermination, .selector = "enableSuddenTermination"},
    {.feature = Feature::automaticTermination, .selector = "disableAutomaticTermination:"},
    {.feature = Feature::automaticTermination, .selector = "enableAutomaticTermination:"},
    {.feature = Feature::automaticTermination, .selector = "automaticTerminationSupportEnabled"},
    {.feature = Feature::automaticTermination,
     .selector = "setAutomaticTerminationSupportEnabled:"},
    {.feature = Feature::beginActivity, .selector = "beginActivityWithOptions:reason:"},
    {.feature = Feature::endActivity, .selector = "endActivity:"},
    {.feature = Feature::thermalState, .selector = "thermalState"},
};

void installMethods(Class info) {
    replaceMethod(info, "operatingSystem", operatingSystem, "Q16@0:8");
    replaceMethod(info, "operatingSystemName", operatingSystemName, "@16@0:8");
    replaceMethod(info, "systemUptime", systemUptime, "d16@0:8");
    replaceMethod(info, "disableSuddenTermination", disableSuddenTermination, "v16@0:8");
    replaceMethod(info, "enableSuddenTermination", enableSuddenTermination, "v16@0:8");
    replaceMethod(info, "disableAutomaticTermination:", disableAutomaticTermination, "v24@0:8@16");
    replaceMethod(info, "enableAutomaticTermination:", enableAutomaticTermination, "v24@0:8@16");
    replaceMethod(info, "automaticTerminationSupportEnabled", automaticTerminationSupportEnabled,
                  "c16@0:8");
    replaceMethod(info,
                  "setAutomaticTerminationSupportEnabled:", setAutomaticTerminationSupportEnabled,
                  "v20@0:8c16");
    replaceMethod(info, "beginActivityWithOptions:reason:", beginActivity, "@32@0:8Q16@24");
    replaceMethod(info, "endActivity:", endActivity, "v24@0:8@16");
    replaceMethod(info, "thermalState", thermalState, "q16@0:8");
    replaceMethod(info, "respondsToSelector:", respondsToSelector, "c24@0:8:16");
}

id denyMethod(id object, SEL selector) {
    [object doesNotRecognizeSelector:selector];
    return nil;
}

} // namespace

void withdraw(Feature feature) {
    if (feature == Feature::thermalStateNotification) {
        NSProcessInfoThermalStateDidChangeNotification = nil;
        return;
    }
    for (const FeatureMethod &method : featureMethods) {
        if (method.feature == feature) {
            state().withdrawnSelectors.insert(method.selector);
            replaceMethod([NSProcessInfo class], method.selector, denyMethod, "v16@0:8");
        }
    }
}

void refuse(Argument argument) {
    switch (argument) {
    case Argument::noReason:
        state().refusesNoReason = true;
        break;
    case Argument::noActivity:
        state().refusesNoActivity = true;
        break;
    }
}

void setThermalState(long thermalState) {
    state().thermalState = thermalState;
}

std::vector<Activity> activities() {
    std::vector<Activity> result;
    for (const StandInActivity *const activity : state().activities) {
        const char *reason = [activity->reason UTF8String];
        result.push_back({.token = activity,
                          .options = activity->options,
                          .reason = reason == nullptr ? "" : reason});
    }
    return result;
}

long suddenTerminationDisableCount() {
    return state().suddenTerminationDisableCount;
}
long automaticTerminationDisableCount() {
    return state().automaticTerminationDisableCount;
}

} // namespace standin

@implementation StandInActivity

- (void)dealloc {
    std::erase(standin::state().activities, self);
    [reason release];
    [super dealloc];
}

@end

@interface StandInProcessInfo : NSObject
@end

@implementation StandInProcessInfo

+ (void)load {
    standin::installMethods([NSProcessInfo class]);
}

@end
