// The two properties that programs write.

#import "TracedObject.h"

#include "LoadedPlugin.h"

#include <gmock/gmock.h>

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

namespace {

struct SetterScene : LoadedPlugin {
    Traced own{"own"};
    InstanceAround info{host, own};

    host::Outcome setProcessName(const host::Value &name) {
        return host.set(info, "processName", name);
    }
    host::Outcome setAutomaticTermination(const host::Value &enabled) {
        return host.set(info, "automaticTerminationSupportEnabled", enabled);
    }
};

} // namespace

TEST(SettingProcessName, SendsTheText) {
    SetterScene scene;
    scene
        .setProcessName("Gr\xC3\xBC\xC3\x9F"
                        "e")
        .result();
    EXPECT_THAT(scene.host.calls(), ElementsAre("REALGetStringEncoding(String#1) = 0x08000100",
                                                "REALGetStringCFString(String#1, 0) = pointer",
                                                "[own setProcessName:\"Gr\\xC3\\xBC\\xC3\\x9F"
                                                "e\"]"));
}

TEST(SettingProcessName, ToNothingSendsNil) {
    SetterScene scene;
    scene.setProcessName("").result();
    scene.setProcessName({}).result();
    EXPECT_THAT(scene.host.trace(),
                ElementsAre("[own setProcessName:nil]", "[own setProcessName:nil]"));
}

TEST(SettingProcessName, ToAStringObjectWithoutTextSendsThat) {
    SetterScene scene;
    scene.setProcessName(scene.host.makeString("")).result();
    EXPECT_THAT(scene.host.calls(), testing::Contains("[own setProcessName:\"\"]"));
}

TEST(SettingProcessName, BorrowsTheString) {
    SetterScene scene;
    const host::Value name = "a name";
    const auto before = scene.host.references(name.string().handle());
    scene.setProcessName(name).result();
    EXPECT_EQ(scene.host.references(name.string().handle()), before);
}

TEST(SettingProcessName, OfAnUnboundInstanceDoesNothing) {
    LoadedPlugin loaded;
    const auto info = loaded.host.newInstance(processInfoClass);
    loaded.host.set(info, "processName", "a name").result();
    EXPECT_THAT(loaded.host.calls(), ElementsAre("REALGetStringEncoding(String#1) = 0x08000100",
                                                 "REALGetStringCFString(String#1, 0) = pointer"));
}

TEST(SettingProcessName, IsNotProbedFor) {
    LoadedPlugin loaded;
    const OwnObject<NSObject> dumb;
    const InstanceAround info(loaded.host, dumb);
    const host::Outcome outcome = loaded.host.set(info, "processName", "a name");
    ASSERT_TRUE(outcome.raised());
    EXPECT_EQ(outcome.exception->cocoaName, "NSInvalidArgumentException");
    EXPECT_THAT(outcome.exception->cocoaReason, HasSubstr("setProcessName:"));
}

TEST(SettingProcessName, NamesTheProcess) {
    LoadedPlugin loaded;
    const auto info = loaded.host.newObject(processInfoClass).object();
    loaded.host.set(info, "processName", "Another N\xC3\xA4me").result();
    EXPECT_EQ(std::string([[[NSProcessInfo processInfo] processName] UTF8String]),
              "Another N\xC3\xA4me");
    EXPECT_EQ(loaded.host.get(info, "processName").text(), "Another N\xC3\xA4me");
}

TEST(SettingAutomaticTermination, SendsOneMessage) {
    SetterScene scene;
    scene.setAutomaticTermination(true).result();
    scene.setAutomaticTermination(false).result();
    EXPECT_THAT(scene.host.trace(), ElementsAre("[own setAutomaticTerminationSupportEnabled:1]",
                                                "[own setAutomaticTerminationSupportEnabled:0]"));
}

TEST(SettingAutomaticTermination, PassesEveryByteOnUnchanged) {
    SetterScene scene;
    const auto set = reinterpret_cast<void (*)(host::ObjectHandle, std::intptr_t, unsigned char)>(
        scene.host.setterOf(processInfoClass, "automaticTerminationSupportEnabled"));
    for (int byte = 0; byte < 256; ++byte) {
        scene.host.clearTrace();
        set(scene.info, 0, static_cast<unsigned char>(byte));
        EXPECT_THAT(scene.host.trace(), ElementsAre("[own setAutomaticTerminationSupportEnabled:" +
                                                    std::to_string(byte) + "]"));
    }
}

TEST(SettingAutomaticTermination, IgnoresTheParameterOfItsRow) {
    SetterScene scene;
    const auto set = reinterpret_cast<void (*)(host::ObjectHandle, std::intptr_t, unsigned char)>(
        scene.host.setterOf(processInfoClass, "automaticTerminationSupportEnabled"));
    set(scene.info, -1, 1);
    EXPECT_THAT(scene.host.trace(), ElementsAre("[own setAutomaticTerminationSupportEnabled:1]"));
}

TEST(SettingAutomaticTermination, KeepsNothing) {
    SetterScene scene;
    scene.own->automaticTerminationSupportEnabled = 0;
    scene.setAutomaticTermination(true).result();
    EXPECT_FALSE(scene.host.get(scene.info, "automaticTerminationSupportEnabled").boolean());
    scene.own->automaticTerminationSupportEnabled = 1;
    scene.setAutomaticTermination(false).result();
    EXPECT_TRUE(scene.host.get(scene.info, "automaticTerminationSupportEnabled").boolean());
}

TEST(SettingAutomaticTermination, OfAnUnboundInstanceDoesNothing) {
    LoadedPlugin loaded;
    const auto info = loaded.host.newInstance(processInfoClass);
    loaded.host.set(info, "automaticTerminationSupportEnabled", true).result();
    EXPECT_THAT(loaded.host.trace(), IsEmpty());
}

TEST(SettingAutomaticTermination, IsNotProbedFor) {
    LoadedPlugin loaded;
    const OwnObject<NSObject> dumb;
    const InstanceAround info(loaded.host, dumb);
    const host::Outcome outcome = loaded.host.set(info, "automaticTerminationSupportEnabled", true);
    ASSERT_TRUE(outcome.raised());
    EXPECT_EQ(outcome.exception->cocoaName, "NSInvalidArgumentException");
}

TEST(SettingAutomaticTermination, ReachesTheProcess) {
    LoadedPlugin loaded;
    const auto info = loaded.host.newObject(processInfoClass).object();
    for (const bool enabled : {true, false}) {
        loaded.host.set(info, "automaticTerminationSupportEnabled", enabled).result();
        EXPECT_EQ(loaded.host.get(info, "automaticTerminationSupportEnabled").boolean(), enabled);
    }
}
