// The properties of this very process: what Foundation says, through the plug-in.

#include "LoadedPlugin.h"

#include "standin/StandIn.h"

#include <gmock/gmock.h>

#import <Foundation/Foundation.h>

#include <objc/runtime.h>

#include <unistd.h>

// As macOS declares it; GNUstep does not.
@interface NSProcessInfo (AutomaticTermination)
- (void)setAutomaticTerminationSupportEnabled:(signed char)enabled;
@end

namespace {

class ThisProcess : public testing::Test {
protected:
    host::Outcome read(const char *property) { return loaded.host.get(instance, property); }

    LoadedPlugin loaded;
    host::ObjectRef instance = loaded.host.callShared(processInfoClass, "processInfo").object();
    NSProcessInfo *foundation = [NSProcessInfo processInfo];
};

// By way of the one type that the compiler lets stand for every function's.
template <class To, class From>
To functionAs(From *function) {
    return reinterpret_cast<To>(reinterpret_cast<void (*)()>(function));
}

// Foundation's answer in macOS's type, whatever type the header declares.
template <class Result>
Result answer(id object, const char *selector) {
    SEL message = sel_registerName(selector);
    IMP method = class_getMethodImplementation(object_getClass(object), message);
    return functionAs<Result (*)(id, SEL)>(method)(object, message);
}

IMP foundationsUniqueString = nullptr;
std::string lastUniqueString;

NSString *noteUniqueString(id self, SEL selector) {
    NSString *string = functionAs<NSString *(*)(id, SEL)>(foundationsUniqueString)(self, selector);
    lastUniqueString = [string UTF8String];
    return string;
}

} // namespace

TEST_F(ThisProcess, HasFoundationsStrings) {
    EXPECT_EQ(read("hostName").text(), [[foundation hostName] UTF8String]);
    EXPECT_EQ(read("processName").text(), [[foundation processName] UTF8String]);
    EXPECT_EQ(read("operatingSystemName").text(), [[foundation operatingSystemName] UTF8String]);
    EXPECT_EQ(read("operatingSystemVersionString").text(),
              [[foundation operatingSystemVersionString] UTF8String]);
}

TEST_F(ThisProcess, RunsOnMach) {
    EXPECT_EQ(read("operatingSystem").integer(), 5);
    EXPECT_EQ(read("operatingSystemName").text(), "NSMACHOperatingSystem");
}

TEST_F(ThisProcess, IsNamedAsItsProgram) {
    EXPECT_EQ(read("processName").text(), "contract_tests");
}

TEST_F(ThisProcess, HasTheUniqueStringThatFoundationMakesForEachReading) {
    Method method = class_getInstanceMethod([NSProcessInfo class], @selector(globallyUniqueString));
    foundationsUniqueString = method_setImplementation(method, functionAs<IMP>(&noteUniqueString));
    const std::string first = read("globallyUniqueString").text();
    EXPECT_EQ(first, lastUniqueString);
    EXPECT_NE(first, "");
    EXPECT_NE(read("globallyUniqueString").text(), first);
    method_setImplementation(method, foundationsUniqueString);
}

TEST_F(ThisProcess, HasItsIdentifier) {
    EXPECT_EQ(read("processIdentifier").integer(), getpid());
}

TEST_F(ThisProcess, HasFoundationsNumbers) {
    EXPECT_EQ(read("operatingSystem").integer(),
              static_cast<std::int64_t>(answer<NSUInteger>(foundation, "operatingSystem")));
    EXPECT_EQ(read("activeProcessorCount").integer(),
              static_cast<std::int64_t>([foundation activeProcessorCount]));
    EXPECT_EQ(read("processorCount").integer(),
              static_cast<std::int64_t>([foundation processorCount]));
    EXPECT_EQ(read("physicalMemory").unsignedInteger(), [foundation physicalMemory]);
}

TEST_F(ThisProcess, HasTheProcessorsOfTheMachine) {
    EXPECT_EQ(read("processorCount").integer(), sysconf(_SC_NPROCESSORS_CONF));
}

TEST_F(ThisProcess, HasTheArgumentsOfItsCommandLine) {
    EXPECT_EQ(read("argumentsCount").integer(),
              static_cast<std::int64_t>([[foundation arguments] count]));
    EXPECT_GE(read("argumentsCount").integer(), 2) << "the program and its image";
}

TEST_F(ThisProcess, HasAnUptimeThatGrowsWithTheClock) {
    const auto before = answer<double>(foundation, "systemUptime");
    const double uptime = read("systemUptime").number();
    const auto after = answer<double>(foundation, "systemUptime");
    EXPECT_GT(before, 0.0);
    EXPECT_LE(before, uptime);
    EXPECT_LE(uptime, after);
}

TEST_F(ThisProcess, HasTheThermalStateOfTheMachine) {
    for (const long state : {0, 1, 2, 3}) {
        standin::setThermalState(state);
        EXPECT_EQ(read("thermalState").integer(), state);
    }
}

TEST_F(ThisProcess, HasNoThermalStateOnASystemThatReportsNone) {
    standin::setThermalState(2);
    standin::withdraw(standin::Feature::thermalState);
    const auto outcome = read("thermalState");
    EXPECT_FALSE(outcome.raised());
    EXPECT_EQ(outcome.integer(), -1);
}

TEST_F(ThisProcess, HasFoundationsAutomaticTermination) {
    for (const bool enabled : {true, false}) {
        [foundation setAutomaticTerminationSupportEnabled:enabled ? YES : NO];
        EXPECT_EQ(read("automaticTerminationSupportEnabled").boolean(), enabled);
    }
}

TEST_F(ThisProcess, RaisesForAutomaticTerminationOnASystemWithoutIt) {
    standin::withdraw(standin::Feature::automaticTermination);
    const auto outcome = read("automaticTerminationSupportEnabled");
    ASSERT_TRUE(outcome.raised());
    EXPECT_EQ(outcome.exception->cocoaName, "NSInvalidArgumentException");
    EXPECT_FALSE(outcome.value.boolean());
}
