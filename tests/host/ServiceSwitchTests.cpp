#include "tests/host/FakePlugin.h"

#include <new>
#include <set>

namespace {

using namespace host;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::ThrowsMessage;

TEST(Services, TableIsComplete) {
    EXPECT_THAT(Services::names(),
                testing::UnorderedElementsAre(
                    "PluginRegisterClass", "PluginNewInstance", "REALLockObject",
                    "REALUnlockObject", "REALLockString", "REALUnlockString",
                    "RuntimeRaiseException", "StringToVariant", "IntegerToVariant",
                    "DoubleToVariant", "BooleanToVariant", "UInt32ToVariant", "SingleToVariant",
                    "REALSetPropValueInteger", "REALSetPropValueString", "REALGetPropValueInteger",
                    "RuntimeArrayCreateSingleDimBoundedArray", "PluginStringArrayInsertProc",
                    "PluginObjectArrayInsertProc", "REALLoadObjectMethod", "REALLoadGlobalMethod",
                    "REALBuildString", "REALBuildStringWithEncoding", "REALConvertString",
                    "REALSetStringEncoding", "REALGetStringEncoding", "StringGetCString",
                    "PluginDisposeStringData", "REALGetStringCFString",
                    "REALFolderItemFromParentFSRef", "newMemoryBlock", "memoryBlockGetPtr",
                    "memoryBlockGetSize", "PluginCallFunctionWithExceptionHandler",
                    "REALGetRBVersion", "RegisterPluginVersion"));
}

TEST(Services, EachHasAnEntryPointOfItsOwnAndCanBeHidden) {
    Host host;
    std::set<void *> entries;
    for (const std::string_view name : Services::names()) {
        void *const entry = Host::resolver()(std::string(name).c_str());
        EXPECT_NE(entry, nullptr) << name;
        EXPECT_TRUE(entries.insert(entry).second) << name;
        host.services().hide(name);
        EXPECT_EQ(Host::resolver()(std::string(name).c_str()), nullptr) << name;
        host.services().restore(name);
        EXPECT_EQ(Host::resolver()(std::string(name).c_str()), entry) << name;
        EXPECT_EQ(host.services().lookups(name), 3U) << name;
    }
}

TEST(Services, HidingDoesNotTakeBackWhatWasGivenOut) {
    Host host;
    auto *build = reinterpret_cast<StringHandle (*)(const char *, std::int32_t)>(
        Host::resolver()("REALBuildString"));
    host.services().hide("REALBuildString");
    const StringHandle string = build("a", 1);
    EXPECT_NE(string, nullptr);
    unlockString(string);
}

/// As a function on arm64 Linux may: what lies above the Boolean in its register is anything.
std::uint64_t carelessFalse() {
    return 0xFFFFFFFF'FFFFFF00;
}

TEST(Services, SmallResultsAreWidenedForThePlugin) {
    Host host;
    constexpr const char *name = "REALSetPropValueInteger";
    auto *const set = reinterpret_cast<std::uint32_t (*)(ObjectHandle, const char *, std::int64_t)>(
        Host::resolver()(name));
    const ObjectRef date = host.newInstance("Date");
    EXPECT_EQ(set(date.handle(), "Year", 2001), 1U);
    EXPECT_EQ(set(date.handle(), "NoSuchProperty", 2001), 0U);
    host.services().replaceWith(name, reinterpret_cast<void *>(carelessFalse));
    EXPECT_EQ(set(date.handle(), "Year", 2001), 0U);
}

TEST(Services, NullAnswersDoNothing) {
    Host host;
    const StringHandle string = buildString("a");
    for (const char *name : {"REALBuildString", "REALLockString", "REALGetStringEncoding",
                             "PluginNewInstance", "REALGetRBVersion"})
        host.services().answerNull(name);
    EXPECT_EQ(buildString("b"), nullptr);
    lockString(string);
    EXPECT_EQ(host.references(string), 1);
    EXPECT_EQ(service<std::uint32_t(StringHandle)>("REALGetStringEncoding")(string), 0U);
    EXPECT_EQ(pluginNewInstance("Date"), nullptr);
    EXPECT_EQ(service<double()>("REALGetRBVersion")(), 0.0);
    unlockString(string);
}

TEST(Services, FailingOnesThrowAndWorkAgainWhenTheThrowerReturns) {
    Host host;
    int calls = 0;
    host.services().fail("REALBuildString", [&] {
        if (++calls == 2)
            throw std::bad_alloc{};
    });
    unlockString(buildString("a"));
    EXPECT_THROW(buildString("b"), std::bad_alloc);
    unlockString(buildString("c"));
    host.services().restore("REALBuildString");
    unlockString(buildString("d"));
    EXPECT_EQ(calls, 3);
}

TEST(Services, ThrowersMayChangeTheirOwnService) {
    Host host;
    host.services().fail("REALBuildString", [&] {
        host.services().restore("REALBuildString");
        throw 7;
    });
    EXPECT_THROW(buildString("a"), int);
    unlockString(buildString("b"));
}

std::int32_t lengthSeen = 0;
StringHandle replacement(const unsigned char *, std::int32_t length) {
    lengthSeen = length;
    return nullptr;
}

TEST(Services, ReplacedOnesGetTheArgumentsUnread) {
    Host host;
    host.services().replace("REALBuildString", replacement);
    auto *unreadable = reinterpret_cast<const char *>(std::intptr_t{16});
    EXPECT_EQ((service<StringHandle(const char *, std::int32_t)>("REALBuildString")(unreadable,
                                                                                    INT32_MAX)),
              nullptr);
    EXPECT_EQ(lengthSeen, INT32_MAX);
    EXPECT_THAT(host.calls(), ElementsAre("REALBuildString(pointer, 2147483647) = nil"));
}

TEST(Services, CallsAreCounted) {
    Host host;
    unlockString(buildString("a"));
    host.services().answerNull("REALBuildString");
    buildString("b");
    EXPECT_EQ(host.services().calls("REALBuildString"), 2U);
    EXPECT_EQ(host.services().calls("REALUnlockString"), 1U);
    EXPECT_EQ(host.account().calls, 3U);
}

TEST(Services, UnknownNamesAreRefusedWithTheNearestOne) {
    Host host;
    EXPECT_THAT(
        [&] { host.services().hide("REALlockObjekt"); },
        ThrowsMessage<UsageError>("there is no host service \"REALlockObjekt\"; the nearest is "
                                  "\"REALLockObject\""));
    EXPECT_EQ(Services::nearest("newmemoryblok"), "newMemoryBlock");
    EXPECT_FALSE(Services::has("reallockobject")) << "names of services are exact";
}

TEST(Services, NamelessRequestIsAViolation) {
    Host host;
    EXPECT_EQ(Host::resolver()(nullptr), nullptr);
    EXPECT_THAT(host.violations(), ElementsAre(HasSubstr("a service without a name")));
}

TEST(HostVersion, IsWhatWasAskedFor) {
    Host host{{.version = 2012.5}};
    EXPECT_EQ(service<double()>("REALGetRBVersion")(), 2012.5);
    host.setVersion(2011.9);
    EXPECT_EQ(service<double()>("REALGetRBVersion")(), 2011.9);
    host.setVersion(std::nullopt);
    EXPECT_EQ(Host::resolver()("REALGetRBVersion"), nullptr);
    host.setVersion(2013.0);
    EXPECT_NE(Host::resolver()("REALGetRBVersion"), nullptr);
}

TEST(HostVersion, HostsWithoutOneLackTheService) {
    Host host{{.version = std::nullopt}};
    EXPECT_EQ(Host::resolver()("REALGetRBVersion"), nullptr);
    EXPECT_THAT(host.lookups(), ElementsAre("miss REALGetRBVersion"));
}

TEST(HostVersion, InterfaceVersionsOutOfRangeAreViolations) {
    Host host;
    const auto tell = service<void(std::int32_t)>("RegisterPluginVersion");
    for (std::int32_t version = 9; version <= 13; ++version) {
        tell(version);
        EXPECT_EQ(host.interfaceVersion(), version);
    }
    EXPECT_THAT(host.violations(), IsEmpty());
    tell(8);
    tell(14);
    EXPECT_THAT(host.violations(),
                ElementsAre("RegisterPluginVersion: interface version 8 is none of 9 to 13",
                            "RegisterPluginVersion: interface version 14 is none of 9 to 13"));
}

TEST(HiddenClasses, AreUnknownUntilShown) {
    Host host;
    host.hideClass("DATE");
    EXPECT_EQ(pluginNewInstance("Date"), nullptr);
    EXPECT_THROW(host.newObject("Date"), UsageError);
    host.showClass("date");
    const ObjectHandle date = pluginNewInstance("Date");
    EXPECT_NE(date, nullptr);
    unlockObject(date);
}

TEST(HiddenClasses, InternalOnesCannotBeMade) {
    Host host;
    EXPECT_EQ(pluginNewInstance("Variant"), nullptr);
    EXPECT_EQ(pluginNewInstance("Array"), nullptr);
    EXPECT_EQ(pluginNewInstance(nullptr), nullptr);
    EXPECT_THAT(host.violations(), ElementsAre("PluginNewInstance: got no class name"));
}

} // namespace
