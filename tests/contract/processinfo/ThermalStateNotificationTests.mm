// The shared method that gives the name of the thermal-state notification, a constant that not
// every macOS has.

#include "ActingScene.h"
#include "Caught.h"
#include "CoreFoundationSpy.h"
#include "LoadedPlugin.h"

#include "host/family/Siblings.h"
#include "standin/StandIn.h"

#include <gmock/gmock.h>

#import <Foundation/Foundation.h>

using testing::ElementsAre;
using testing::IsEmpty;

extern "C" NSString *NSProcessInfoThermalStateDidChangeNotification;

static host::Outcome notificationName(host::Host &host) {
    return host.callShared(processInfoClass, "NSProcessInfoThermalStateDidChangeNotification");
}

TEST(ThermalStateNotification, IsFoundationsConstant) {
    LoadedPlugin loaded;
    EXPECT_EQ(notificationName(loaded.host).text(),
              "NSProcessInfoThermalStateDidChangeNotification");
}

TEST(ThermalStateNotification, IsReadAnewEachTime) {
    LoadedPlugin loaded;
    notificationName(loaded.host);
    NSProcessInfoThermalStateDidChangeNotification = @"renamed";
    EXPECT_EQ(notificationName(loaded.host).text(), "renamed");
}

TEST(ThermalStateNotification, IsAUTF8StringThatTheCallerOwns) {
    LoadedPlugin loaded;
    const auto name = notificationName(loaded.host).string();
    EXPECT_EQ(loaded.host.encodingOf(name), host::encoding::utf8);
    EXPECT_EQ(loaded.host.references(name), 1);
}

TEST(ThermalStateNotification, IsBuiltByTheseHostCallsAlone) {
    LoadedPlugin loaded;
    notificationName(loaded.host);
    EXPECT_THAT(
        loaded.host.calls(),
        ElementsAre(
            R"(REALBuildString("NSProcessInfoThermalStateDidChangeNotification", 46) = String#1)",
            "REALSetStringEncoding(String#1, 0x08000100)"));
}

TEST(ThermalStateNotification, IsNilWhereTheSystemLacksTheSymbol) {
    LoadedPlugin loaded({},
                        {.withheldImports = {"NSProcessInfoThermalStateDidChangeNotification"}});
    EXPECT_TRUE(notificationName(loaded.host).isNil());
    EXPECT_THAT(loaded.host.trace(), IsEmpty());
}

TEST(ThermalStateNotification, IsNilWhereTheConstantIsNil) {
    LoadedPlugin loaded;
    standin::withdraw(standin::Feature::thermalStateNotification);
    EXPECT_TRUE(notificationName(loaded.host).isNil());
    EXPECT_THAT(loaded.host.trace(), IsEmpty());
}

TEST(ThermalStateNotification, IsNilWhereTheConstantIsEmpty) {
    LoadedPlugin loaded;
    NSProcessInfoThermalStateDidChangeNotification = @"";
    EXPECT_TRUE(notificationName(loaded.host).isNil());
    EXPECT_THAT(loaded.host.trace(), IsEmpty());
}

TEST(ThermalStateNotification, IsReadOutsideTheCocoaTrap) {
    LoadedPlugin loaded;
    CoreFoundationSpy spy(loaded.image);
    spy.before("CFStringGetLength", [] { raiseNSException("Text", "unreadable"); });
    EXPECT_EQ(cocoaExceptionFrom([&] { notificationName(loaded.host); }), "Text: unreadable");
    EXPECT_EQ(host::siblings::makeCount(), 0u);
    EXPECT_THAT(loaded.host.trace(), IsEmpty());
}
