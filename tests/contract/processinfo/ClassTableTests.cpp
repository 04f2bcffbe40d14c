// The class records and their tables as they lie in memory after registration: every slot of every
// row, read at its offset and not through a declaration of the record.

#include "ImageUnderTest.h"
#include "tests/ExpectedClasses.h"

#include <gmock/gmock.h>

#include <array>
#include <cstdint>
#include <cstring>
#include <iterator>
#include <span>
#include <string>
#include <string_view>

namespace {

constexpr std::uint64_t hostAccess = 0xFFFFFFFFFFFFFFFF; // an accessor of all ones

constexpr std::size_t classSize = 232;
constexpr std::size_t propertySize = 96;
constexpr std::size_t methodSize = 48;
constexpr std::size_t constantSize = 40;

// A record in memory.
class Record {
public:
    explicit Record(const void *start) : start_(static_cast<const std::byte *>(start)) {}

    [[nodiscard]] std::uint64_t word(std::size_t offset) const {
        std::uint64_t value = 0;
        std::memcpy(&value, start_ + offset, sizeof value);
        return value;
    }
    [[nodiscard]] std::uint32_t halfWord(std::size_t offset) const {
        std::uint32_t value = 0;
        std::memcpy(&value, start_ + offset, sizeof value);
        return value;
    }
    [[nodiscard]] std::string text(std::size_t offset) const {
        const auto *characters = reinterpret_cast<const char *>(word(offset));
        return characters == nullptr ? "no text" : characters;
    }
    // A row of the table that the slot points to.
    [[nodiscard]] Record row(std::size_t offset, std::size_t index, std::size_t rowSize) const {
        return Record(reinterpret_cast<const std::byte *>(word(offset)) + index * rowSize);
    }
    [[nodiscard]] const std::byte *start() const { return start_; }

private:
    const std::byte *start_;
};

// Offsets in a class record.
enum : std::size_t {
    version = 0,
    padding = 4,
    name = 8,
    superclass = 16,
    dataSize = 24,
    dataOffset = 32,
    constructor = 40,
    destructor = 48,
    properties = 56,
    propertyCount = 64,
    methods = 72,
    methodCount = 80,
    constants = 144,
    constantCount = 152,
    flags = 160,
    sharedMethods = 184,
    sharedMethodCount = 192,
};

class ClassTables : public testing::Test {
protected:
    host::Host host_;
    host::Image &image_ = host_.loadPlugin(imageUnderTest());

    [[nodiscard]] Record processInfo() const { return record(0); }
    [[nodiscard]] Record activity() const { return record(1); }

    void expectUnused(const Record &row, std::size_t from, std::size_t end) const {
        for (std::size_t offset = from; offset < end; offset += 8)
            EXPECT_EQ(row.word(offset), 0u) << "at " << offset;
    }

    // The function's address as the slot holds it.
    std::uint64_t function(const char *functionName) {
        return functionName == nullptr ? 0
                                       : reinterpret_cast<std::uint64_t>(imageFunction(
                                             image_, "processinfo::" + std::string(functionName)));
    }

    void expectProperties(const Record &type, std::span<const ExpectedProperty> expected) {
        ASSERT_EQ(type.word(propertyCount), expected.size());
        for (std::size_t i = 0; i < expected.size(); ++i) {
            const ExpectedProperty &property = expected[i];
            const bool isField = property.field >= 0;
            SCOPED_TRACE(property.name);
            const Record row = type.row(properties, i, propertySize);
            EXPECT_EQ(row.word(0), 0u) << "group";
            EXPECT_EQ(row.text(8), property.name);
            EXPECT_EQ(row.text(16), property.type);
            EXPECT_EQ(row.word(24), 6u) << "flags";
            EXPECT_EQ(row.word(32), isField ? hostAccess : function(property.getter)) << "getter";
            EXPECT_EQ(row.word(40), isField ? hostAccess : function(property.setter)) << "setter";
            EXPECT_EQ(row.word(48), isField ? static_cast<std::uint64_t>(property.field) : 0)
                << "parameter";
            expectUnused(row, 56, propertySize);
        }
    }

    void expectMethods(const Record &type, std::size_t table, std::size_t count,
                       std::span<const ExpectedMethod> expected) {
        ASSERT_EQ(type.word(count), expected.size());
        for (std::size_t i = 0; i < expected.size(); ++i) {
            SCOPED_TRACE(expected[i].declaration);
            const Record row = type.row(table, i, methodSize);
            EXPECT_EQ(row.word(0), function(expected[i].function));
            EXPECT_EQ(row.word(8), 0u) << "second function";
            EXPECT_EQ(row.text(16), expected[i].declaration);
            EXPECT_EQ(row.word(24), static_cast<std::uint64_t>(expected[i].flags)) << "flags";
            expectUnused(row, 32, methodSize);
        }
    }

private:
    [[nodiscard]] Record record(std::size_t index) const {
        return Record(host_.registeredRecords().at(index));
    }
};

} // namespace

TEST_F(ClassTables, AreRegisteredForProcessInfoFirst) {
    ASSERT_EQ(host_.registeredRecords().size(), 2u);
    EXPECT_EQ(processInfo().text(name), "NSProcessInfoZKT");
    EXPECT_EQ(activity().text(name), "NSProcessInfoActivityZKT");
}

TEST_F(ClassTables, StampTheVersionInFourBytesAndLeaveTheNextFourZero) {
    for (const Record &type : {processInfo(), activity()}) {
        EXPECT_EQ(type.halfWord(version), 13u);
        EXPECT_EQ(type.halfWord(padding), 0u);
    }
}

TEST_F(ClassTables, RoundTheDataSizeUpToSixteens) {
    EXPECT_EQ(processInfo().word(dataSize), 16u);
    EXPECT_EQ(activity().word(dataSize), 32u);
}

TEST_F(ClassTables, HaveNoSuperclass) {
    EXPECT_EQ(processInfo().word(superclass), 0u);
    EXPECT_EQ(activity().word(superclass), 0u);
}

TEST_F(ClassTables, NameTheLifeCycleOfProcessInfo) {
    EXPECT_EQ(processInfo().word(constructor), function("NSProcessInfoConstructor"));
    EXPECT_EQ(processInfo().word(destructor), function("NSProcessInfoDestructor"));
}

TEST_F(ClassTables, NameNoLifeCycleOfActivities) {
    EXPECT_EQ(activity().word(constructor), 0u);
    EXPECT_EQ(activity().word(destructor), 0u);
}

TEST_F(ClassTables, CarryClassFlagsFour) {
    EXPECT_EQ(processInfo().word(flags), 4u);
    EXPECT_EQ(activity().word(flags), 4u);
}

TEST_F(ClassTables, LeaveUnusedSlotsZero) {
    for (const Record &type : {processInfo(), activity()}) {
        SCOPED_TRACE(type.text(name));
        expectUnused(type, methodCount + 8, constants); // events to bindings
        expectUnused(type, flags + 8, sharedMethods);   // shared properties
        expectUnused(type, sharedMethodCount + 8, classSize);
    }
}

TEST_F(ClassTables, ListThePropertiesOfProcessInfo) {
    expectProperties(processInfo(), expectedProperties);
}

TEST_F(ClassTables, ListTheMethodsOfProcessInfo) {
    expectMethods(processInfo(), methods, methodCount, expectedMethods);
}

TEST_F(ClassTables, ListTheSharedMethodsOfProcessInfo) {
    expectMethods(processInfo(), sharedMethods, sharedMethodCount, expectedSharedMethods);
}

TEST_F(ClassTables, ListTheConstantsOfProcessInfo) {
    constexpr std::size_t count = std::size(expectedConstants);
    ASSERT_EQ(processInfo().word(constantCount), count);
    for (std::size_t i = 0; i < count; ++i) {
        const Record row = processInfo().row(constants, i, constantSize);
        EXPECT_EQ(row.text(0), expectedConstants[i].declaration);
        expectUnused(row, 8, constantSize);
    }
}

TEST_F(ClassTables, ListThePropertiesOfActivities) {
    expectProperties(activity(), expectedActivityProperties);
}

TEST_F(ClassTables, ListTheMethodsOfActivities) {
    expectMethods(activity(), methods, methodCount, expectedActivityMethods);
}

TEST_F(ClassTables, GiveActivitiesNoConstantsAndNoSharedMethods) {
    expectUnused(activity(), constants, flags);
    expectUnused(activity(), sharedMethods, sharedMethodCount + 8);
}

TEST_F(ClassTables, LeaveTheDataOffsetToTheHost) {
    const host::ObjectRef info = host_.newInstance("NSProcessInfoZKT");
    const host::ObjectRef running = host_.newInstance("NSProcessInfoActivityZKT");
    const auto offsetIn = [this](const host::ObjectRef &object) {
        return static_cast<std::uint64_t>(static_cast<std::byte *>(host_.dataOf(object)) -
                                          reinterpret_cast<std::byte *>(object.handle()));
    };
    EXPECT_EQ(processInfo().word(dataOffset), offsetIn(info));
    EXPECT_EQ(activity().word(dataOffset), offsetIn(running));
    EXPECT_EQ(processInfo().word(dataOffset), 48u);
    EXPECT_NE(activity().word(dataOffset), 48u) << "the host has to make a difference";
}

// The host keeps pointers to all of it for as long as the library is loaded.
TEST_F(ClassTables, AreStaticDataOfTheImage) {
    for (const Record &type : {processInfo(), activity()}) {
        EXPECT_TRUE(image_.contains(type.start()));
        for (std::size_t offset : {name, properties, methods})
            EXPECT_TRUE(image_.contains(reinterpret_cast<void *>(type.word(offset)))) << offset;
        for (std::size_t i = 0; i < type.word(propertyCount); ++i)
            for (const std::size_t offset : {std::size_t{8}, std::size_t{16}})
                EXPECT_TRUE(image_.contains(
                    reinterpret_cast<void *>(type.row(properties, i, propertySize).word(offset))));
        for (std::size_t i = 0; i < type.word(methodCount); ++i)
            EXPECT_TRUE(image_.contains(
                reinterpret_cast<void *>(type.row(methods, i, methodSize).word(16))));
    }
}
