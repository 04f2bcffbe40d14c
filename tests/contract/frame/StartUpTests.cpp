// What the plug-in does when its entry point is called.

#include "AllocationSpy.h"
#include "ImageUnderTest.h"

#include <gmock/gmock.h>

#include <cmath>
#include <cstdint>
#include <cstring>
#include <limits>
#include <optional>
#include <ostream>
#include <string>
#include <vector>

using testing::ElementsAre;
using testing::IsEmpty;

namespace {

struct VersionCase {
    std::string name;
    std::optional<double> host; // nothing: the host does not tell its version
    std::int32_t interface;
};

void PrintTo(const VersionCase &version, std::ostream *out) {
    *out << version.name;
}

const VersionCase versionCases[] = {
    {"AtTheNewestThreshold", 2013.04, 13},
    {"BelowTheNewestThreshold", std::nextafter(2013.04, 0.0), 12},
    {"BetweenTheNewestThresholds", 2013.035, 12},
    {"AtTheThresholdOfTwelve", 2013.03, 12},
    {"BelowTheThresholdOfTwelve", std::nextafter(2013.03, 0.0), 11},
    {"BetweenElevenAndTwelve", 2013.02, 11},
    {"AtTheThresholdOfEleven", 2013.0, 11},
    {"BelowTheThresholdOfEleven", std::nextafter(2013.0, 0.0), 10},
    {"BetweenTenAndEleven", 2012.5, 10},
    {"AtTheThresholdOfTen", 2012.0, 10},
    {"BelowTheThresholdOfTen", std::nextafter(2012.0, 0.0), 9},
    {"Old", 2011.9, 9},
    {"Zero", 0.0, 9},
    {"Negative", -2013.04, 9},
    {"NotANumber", std::nan(""), 9},
    {"Infinite", std::numeric_limits<double>::infinity(), 13},
    {"FarFuture", 2099.1, 13},
    {"Untold", std::nullopt, 9},
};

class StartUpWithVersion : public testing::TestWithParam<VersionCase> {
protected:
    host::Host host_{{.version = GetParam().host}};
};

// A host of three services, for what the reference host would not allow or does not show.
struct SmallHost {
    static inline std::vector<std::string> events;
    static inline bool tellsVersion, registersClasses;
    static inline std::vector<host::PluginClassRecord> records; // as they were when registered

    static double version() {
        events.emplace_back("tell the version");
        return 2012.5;
    }
    static void interfaceVersion(std::int32_t spoken) {
        events.push_back("speak " + std::to_string(spoken));
    }
    static void registerClass(host::PluginClassRecord *record) {
        events.push_back(std::string("register ") + record->name);
        records.push_back(*record);
    }
    static void *resolve(const char *name) {
        events.push_back(std::string("find ") + name);
        if (std::strcmp(name, "REALGetRBVersion") == 0 && tellsVersion)
            return reinterpret_cast<void *>(version);
        if (std::strcmp(name, "RegisterPluginVersion") == 0)
            return reinterpret_cast<void *>(interfaceVersion);
        if (std::strcmp(name, "PluginRegisterClass") == 0 && registersClasses)
            return reinterpret_cast<void *>(registerClass);
        return nullptr;
    }
};

class StartUp : public testing::Test {
protected:
    void SetUp() override {
        SmallHost::events.clear();
        SmallHost::records.clear();
        SmallHost::tellsVersion = SmallHost::registersClasses = true;
    }
    void enter() { image_->entryPoint()(SmallHost::resolve); }

    std::unique_ptr<host::Image> image_ = host::openImage(imageUnderTest());
};

} // namespace

TEST_P(StartUpWithVersion, TellsTheInterfaceVersion) {
    host_.loadPlugin(imageUnderTest());
    EXPECT_THAT(host_.calls(), testing::Contains("RegisterPluginVersion(" +
                                                 std::to_string(GetParam().interface) + ")")
                                   .Times(1));
}

TEST_P(StartUpWithVersion, StampsTheVersionThatItTells) {
    host_.loadPlugin(imageUnderTest());
    const auto records = host_.registeredRecords();
    ASSERT_EQ(records.size(), 2u);
    EXPECT_EQ(records[0]->version, GetParam().interface);
    EXPECT_EQ(records[1]->version, GetParam().interface);
}

INSTANTIATE_TEST_SUITE_P(Host, StartUpWithVersion, testing::ValuesIn(versionCases),
                         [](const auto &tested) { return tested.param.name; });

TEST(StartUpWithTheHost, AsksTellsAndRegistersInOrder) {
    host::Host host{{.version = 2013.04}};
    host.loadPlugin(imageUnderTest());
    EXPECT_THAT(host.trace(),
                ElementsAre("find REALGetRBVersion", "REALGetRBVersion() = 2013.04",
                            "find RegisterPluginVersion", "RegisterPluginVersion(13)",
                            "find PluginRegisterClass", "PluginRegisterClass(\"NSProcessInfoZKT\")",
                            "PluginRegisterClass(\"NSProcessInfoActivityZKT\")"));
}

TEST(StartUpWithTheHost, RegistersBothClassesWithAHostThatDoesNotTellItsVersion) {
    host::Host host{{.version = std::nullopt}};
    host.loadPlugin(imageUnderTest());
    EXPECT_THAT(host.trace(), ElementsAre("miss REALGetRBVersion", "find RegisterPluginVersion",
                                          "RegisterPluginVersion(9)", "find PluginRegisterClass",
                                          "PluginRegisterClass(\"NSProcessInfoZKT\")",
                                          "PluginRegisterClass(\"NSProcessInfoActivityZKT\")"));
}

TEST(StartUpWithTheHost, LeavesBothClassesUnregisteredWhenTheHostRegistersNone) {
    host::Host host;
    host.services().hide("PluginRegisterClass");
    host.loadPlugin(imageUnderTest());
    EXPECT_THAT(host.trace(), ElementsAre("find REALGetRBVersion", "REALGetRBVersion() = 2013.04",
                                          "find RegisterPluginVersion", "RegisterPluginVersion(13)",
                                          "miss PluginRegisterClass", "miss PluginRegisterClass"));
    EXPECT_THAT(host.registeredRecords(), IsEmpty());
}

TEST(StartUpWithTheHost, WritesNothing) {
    host::Host host;
    host.services().hide("PluginRegisterClass");
    testing::internal::CaptureStdout();
    testing::internal::CaptureStderr();
    host.loadPlugin(imageUnderTest());
    EXPECT_EQ(testing::internal::GetCapturedStdout(), "");
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "");
}

TEST_F(StartUp, RunsItsStepsInOrder) {
    enter();
    EXPECT_THAT(SmallHost::events,
                ElementsAre("find REALGetRBVersion", "tell the version",
                            "find RegisterPluginVersion", "speak 10", "find PluginRegisterClass",
                            "register NSProcessInfoZKT", "register NSProcessInfoActivityZKT"));
}

TEST_F(StartUp, LooksTheRegistrationUpForEachClassWhileItIsMissing) {
    SmallHost::tellsVersion = SmallHost::registersClasses = false;
    enter();
    EXPECT_THAT(SmallHost::events,
                ElementsAre("find REALGetRBVersion", "find RegisterPluginVersion", "speak 9",
                            "find PluginRegisterClass", "find PluginRegisterClass"));
}

TEST_F(StartUp, HandsOverRecordsThatAreRoundedAndStamped) {
    enter();
    ASSERT_EQ(SmallHost::records.size(), 2u);
    EXPECT_EQ(SmallHost::records[0].dataSize, 16u);
    EXPECT_EQ(SmallHost::records[1].dataSize, 32u);
    for (const host::PluginClassRecord &record : SmallHost::records) {
        EXPECT_EQ(record.version, 10);
        EXPECT_EQ(record.padding, 0u);
        EXPECT_EQ(record.dataOffset, 0u) << "the host's slot";
    }
}

// The two services of the start alone are looked up anew each time: they have no slot.
TEST_F(StartUp, KeepsOnlyTheRegistrationBound) {
    enter();
    SmallHost::events.clear();
    enter();
    EXPECT_THAT(SmallHost::events,
                ElementsAre("find REALGetRBVersion", "tell the version",
                            "find RegisterPluginVersion", "speak 10", "register NSProcessInfoZKT",
                            "register NSProcessInfoActivityZKT"));
}

// The version is kept, not reset, when a host does not tell it.
TEST_F(StartUp, LeavesTheVersionAsItIsWhenTheHostDoesNotTellIt) {
    enter();
    SmallHost::tellsVersion = false;
    SmallHost::events.clear();
    enter();
    EXPECT_THAT(SmallHost::events, testing::Contains("speak 10"));
}

TEST_F(StartUp, AllocatesNothing) {
    const AllocationSpy spy(*image_);
    enter();
    EXPECT_THAT(spy.sizes(), IsEmpty());
}
