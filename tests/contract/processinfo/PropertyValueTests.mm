// Answers of the wrapped object as the host gets them, extreme ones too.

#include "LoadedPlugin.h"
#import "OwnObject.h"
#import "ProcessInfoDouble.h"
#include "Properties.h"

#include <gmock/gmock.h>

#include <bit>
#include <cmath>
#include <limits>

namespace {

constexpr auto int32Min = std::numeric_limits<std::int32_t>::min();
constexpr auto int32Max = std::numeric_limits<std::int32_t>::max();
constexpr auto int64Min = std::numeric_limits<std::int64_t>::min();
constexpr auto int64Max = std::numeric_limits<std::int64_t>::max();
constexpr auto uint64Max = std::numeric_limits<std::uint64_t>::max();

// An instance around an object that answers as each test sets it.
class PropertyValue : public testing::Test {
protected:
    std::int64_t integer(const char *property) {
        return loaded.host.get(instance, property).integer();
    }
    // All bits of the register that the getter's result is in.
    template <class Result>
    Result raw(const char *property) {
        return readDirectly<Result>(loaded.host, instance, property);
    }

    LoadedPlugin loaded;
    OwnObject<ProcessInfoDouble> object;
    InstanceAround instance{loaded.host, object};
    ProcessInfoAnswers &answers = object->answers;
};

} // namespace

TEST_F(PropertyValue, ThermalStateIsTheAnswerUnchanged) {
    for (const std::int64_t answer : {std::int64_t{0}, std::int64_t{1}, std::int64_t{2},
                                      std::int64_t{3}, std::int64_t{-1}, int64Min, int64Max}) {
        answers.thermalState = answer;
        EXPECT_EQ(integer("thermalState"), answer);
    }
}

TEST_F(PropertyValue, ProcessIdentifierIsWidenedWithItsSign) {
    for (const std::int32_t answer : {0, 1, -1, 99999, int32Min, int32Max}) {
        answers.processIdentifier = answer;
        EXPECT_EQ(integer("processIdentifier"), std::int64_t{answer});
    }
}

TEST_F(PropertyValue, CountsAreTheAnswersWordUnchanged) {
    constexpr std::pair<const char *, std::uint64_t ProcessInfoAnswers::*> rows[] = {
        {"operatingSystem", &ProcessInfoAnswers::operatingSystem},
        {"activeProcessorCount", &ProcessInfoAnswers::activeProcessorCount},
        {"processorCount", &ProcessInfoAnswers::processorCount},
    };
    for (const auto &[property, field] : rows) {
        SCOPED_TRACE(property);
        for (const std::uint64_t answer :
             {std::uint64_t{0}, std::uint64_t{5}, std::uint64_t{0xFFFFFFFF}, std::uint64_t{1} << 63,
              uint64Max}) {
            answers.*field = answer;
            EXPECT_EQ(integer(property), static_cast<std::int64_t>(answer));
        }
        answers.*field = 0;
    }
}

TEST_F(PropertyValue, PhysicalMemoryIsUnsigned) {
    for (const std::uint64_t answer :
         {std::uint64_t{0}, std::uint64_t{1} << 35, std::uint64_t{1} << 63, uint64Max}) {
        answers.physicalMemory = answer;
        EXPECT_EQ(loaded.host.get(instance, "physicalMemory").unsignedInteger(), answer);
    }
}

TEST_F(PropertyValue, SystemUptimeIsTheAnswerBitForBit) {
    constexpr double infinity = std::numeric_limits<double>::infinity();
    for (const double answer :
         {0.0, -0.0, 0.1, 12345.678901234567, -1.0, infinity, -infinity,
          std::numeric_limits<double>::denorm_min(), std::numeric_limits<double>::max(),
          std::bit_cast<double>(0x7FF8'0000'DEAD'BEEF),
          std::bit_cast<double>(0xFFF8'0000'0000'0001)}) {
        answers.systemUptime = answer;
        EXPECT_EQ(std::bit_cast<std::uint64_t>(raw<double>("systemUptime")),
                  std::bit_cast<std::uint64_t>(answer));
    }
}

TEST_F(PropertyValue, SystemUptimeMayBeNoNumber) {
    answers.systemUptime = std::numeric_limits<double>::quiet_NaN();
    EXPECT_TRUE(std::isnan(loaded.host.get(instance, "systemUptime").number()));
}

TEST_F(PropertyValue, BooleansAreWidenedWithTheirSign) {
    constexpr std::pair<int, std::uint32_t> rows[] = {
        {0, 0x00000000},    {1, 0x00000001},    {0x7F, 0x0000007F},
        {0x80, 0xFFFFFF80}, {0xFE, 0xFFFFFFFE}, {0xFF, 0xFFFFFFFF},
    };
    for (const auto &[answer, widened] : rows) {
        answers.automaticTerminationSupportEnabled = static_cast<signed char>(answer);
        EXPECT_EQ(raw<std::uint32_t>("automaticTerminationSupportEnabled"), widened);
    }
}

TEST_F(PropertyValue, BooleansOtherThanZeroAreTrueForTheHost) {
    for (const int answer : {0, 1, 0x7F, 0x80, 0xFF}) {
        answers.automaticTerminationSupportEnabled = static_cast<signed char>(answer);
        EXPECT_EQ(loaded.host.get(instance, "automaticTerminationSupportEnabled").boolean(),
                  answer != 0);
    }
}

TEST_F(PropertyValue, FollowsTheObjectAndIsNotKept) {
    const auto readAll = [this] {
        std::vector<std::string> values;
        for (const PropertyRow &row : readProperties())
            values.push_back(describe(loaded.host.get(instance, row.name).result()));
        return values;
    };
    answers.thermalState = 1;
    answers.string = @"before";
    answers.processIdentifier = 10;
    answers.operatingSystem = 5;
    answers.activeProcessorCount = 2;
    answers.processorCount = 4;
    answers.arguments = [NSArray arrayWithObject:@"one"];
    answers.physicalMemory = 1024;
    answers.systemUptime = 0.5;
    answers.automaticTerminationSupportEnabled = 1;
    EXPECT_THAT(readAll(), testing::ElementsAre("1", R"("before")", R"("before")", R"("before")",
                                                R"("before")", R"("before")", "nil", "10", "5", "2",
                                                "4", "1", "1024", "0.5", "true"));
    answers.thermalState = 3;
    answers.string = @"after";
    answers.processIdentifier = 20;
    answers.operatingSystem = 6;
    answers.activeProcessorCount = 1;
    answers.processorCount = 8;
    answers.arguments = [NSArray arrayWithObjects:@"one", @"two", nil];
    answers.physicalMemory = 2048;
    answers.systemUptime = 1.5;
    answers.automaticTerminationSupportEnabled = 0;
    EXPECT_THAT(readAll(), testing::ElementsAre("3", R"("after")", R"("after")", R"("after")",
                                                R"("after")", R"("after")", "nil", "20", "6", "1",
                                                "8", "2", "2048", "1.5", "false"));
}

TEST_F(PropertyValue, BelongsToTheInstanceThatIsAsked) {
    const OwnObject<ProcessInfoDouble> otherObject;
    const InstanceAround other(loaded.host, otherObject);
    answers.processIdentifier = 1;
    otherObject->answers.processIdentifier = 2;
    EXPECT_EQ(integer("processIdentifier"), 1);
    EXPECT_EQ(loaded.host.get(other, "processIdentifier").integer(), 2);
    EXPECT_EQ(integer("processIdentifier"), 1);
}
