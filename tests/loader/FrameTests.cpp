#include "tests/loader/TestImages.h"
#include "tests/loader/Thrower.h"
#include "tests/loader/UnwindSections.h"

#include "macos/loader/DwarfCode.h"
#include "macos/loader/MachOFile.h"

#include <algorithm>
#include <cstdint>
#include <functional>
#include <stdexcept>
#include <string>

namespace {

using Callback = void (*)();
using FrameFunction = int(Callback, int *);

const char *const frameFunctions[] = {"simple",       "withoutCleanUp",          "manyRegisters",
                                      "largeStack",   "largeStackManyRegisters", "variableStack",
                                      "alignedStack", "pushesArguments",         "describedByDwarf",
                                      "nested"};

class Frames : public testing::TestWithParam<std::tuple<const char *, const char *>> {
protected:
    Frames() : image_(std::get<0>(GetParam()), "Frames") {}
    [[nodiscard]] FrameFunction *function() const {
        return image_.function<FrameFunction>(std::get<1>(GetParam()));
    }
    [[nodiscard]] int cleanUps() const {
        const std::string name = std::get<1>(GetParam());
        return name == "withoutCleanUp" ? 0 : name == "pushesArguments" || name == "nested" ? 2 : 1;
    }

    LoadedImage image_;
};
INSTANTIATE_TEST_SUITE_P(
    , Frames, testing::Combine(testing::ValuesIn(allVariants), testing::ValuesIn(frameFunctions)),
    [](const auto &info) {
        return std::string(std::get<0>(info.param)) + "_" + std::get<1>(info.param);
    });

/// Calls `function` with values in every register that it has to give back, and says what came out;
/// 0 in `damage` when all came back.
__attribute__((noinline)) Outcome callWithFullRegisters(FrameFunction *function, int *count,
                                                        std::uint64_t *damage) {
    std::uint64_t a = 11, b = 22, c = 33, d = 44, e = 55, f = 66;
    asm volatile("" : "+r"(a), "+r"(b), "+r"(c), "+r"(d), "+r"(e), "+r"(f));
    Outcome outcome = Outcome::returned;
    try {
        function(throwOutOfRange, count);
    } catch (const std::out_of_range &) {
        outcome = Outcome::outOfRange;
    } catch (...) {
        outcome = Outcome::other;
    }
    asm volatile("" : "+r"(a), "+r"(b), "+r"(c), "+r"(d), "+r"(e), "+r"(f));
    *damage = (a - 11) | (b - 22) | (c - 33) | (d - 44) | (e - 55) | (f - 66);
    return outcome;
}

TEST_P(Frames, letExceptionsPass) {
    int count = 0;
    std::uint64_t damage = 1;
    EXPECT_EQ(callWithFullRegisters(function(), &count, &damage), Outcome::outOfRange);
    EXPECT_EQ(count, cleanUps());
    EXPECT_EQ(damage, 0U);
}

TEST_P(Frames, letExceptionsPassAgainAndAgain) {
    int count = 0;
    std::uint64_t damage = 1;
    for (int i = 0; i < 1000; ++i) {
        count = 0;
        ASSERT_EQ(callWithFullRegisters(function(), &count, &damage), Outcome::outOfRange);
        ASSERT_EQ(count, cleanUps());
        ASSERT_EQ(damage, 0U);
    }
}

TEST_P(Frames, returnNormallyWhenNothingIsThrown) {
    int count = 0;
    function()([] {}, &count);
    EXPECT_GE(count, cleanUps());
}

class FrameImage : public testing::TestWithParam<const char *> {};
INSTANTIATE_TEST_SUITE_P(, FrameImage, testing::ValuesIn(allVariants), variantName);

TEST_P(FrameImage, handlersFindTheirRegisters) {
    const LoadedImage image(GetParam(), "Frames");
    int count = 0;
    EXPECT_EQ(image.function<FrameFunction>("catchesWithRegisters")(throwOutOfRange, &count),
              1 + 4 + 9 + 16 + 25 + 36);
    EXPECT_EQ(count, 11);
}

TEST_P(FrameImage, leafFunctionsRun) {
    const LoadedImage image(GetParam(), "Frames");
    EXPECT_EQ(image.function<int(int)>("leaf")(1), 2);
}

/// The unwind record of a function, as the loader translated it.
const macho::UnwindRecord &recordOf(const macho::ImagePlan &plan, const std::string &function) {
    const auto symbol = std::ranges::find(plan.exports, function, &macho::NamedOffset::name);
    if (symbol == plan.exports.end())
        throw std::runtime_error("no function " + function);
    const auto record =
        std::ranges::find(plan.unwind.records, symbol->offset, &macho::UnwindRecord::start);
    if (record == plan.unwind.records.end())
        throw std::runtime_error("no record of " + function);
    return *record;
}

// The images do have the frames that the tests above are about.

TEST(FrameKinds, withFramePointers) {
    const auto file = macho::MachOFile::open(imageFile("classicOptimised/Frames"));
    namespace dwarf = macho::dwarf;
    EXPECT_EQ(recordOf(file.plan(), "withoutCleanUp").instructions,
              frame(dwarf::rbp, 16, {{dwarf::rbp, 2}, {dwarf::rbx, 3}}));
    EXPECT_EQ(recordOf(file.plan(), "withoutCleanUp").personalitySlot, 0U);
    const auto &many = recordOf(file.plan(), "manyRegisters");
    EXPECT_EQ(many.instructions, frame(dwarf::rbp, 16,
                                       {{dwarf::rbp, 2},
                                        {dwarf::rbx, 7},
                                        {dwarf::r12, 6},
                                        {dwarf::r13, 5},
                                        {dwarf::r14, 4},
                                        {dwarf::r15, 3}}));
    EXPECT_NE(many.personalitySlot, 0U);
    EXPECT_NE(many.languageData, 0U);
}

TEST(FrameKinds, withoutFramePointers) {
    const auto file = macho::MachOFile::open(imageFile("chainedFrameless/Frames"));
    namespace dwarf = macho::dwarf;
    EXPECT_EQ(recordOf(file.plan(), "withoutCleanUp").instructions,
              frame(dwarf::rsp, 16, {{dwarf::rbx, 2}}));
    // Its size stands in the code: 5000 bytes, padding and what is pushed.
    const auto &large = recordOf(file.plan(), "largeStackManyRegisters").instructions;
    EXPECT_EQ(large.front(), macho::dwarf::defineFrame);
    EXPECT_EQ(large[1], dwarf::rsp);
    EXPECT_GE((large[2] & 0x7f) | large[3] << 7, 5000 + 7 * 8);
}

class FrameKindsIn : public testing::TestWithParam<const char *> {};
INSTANTIATE_TEST_SUITE_P(, FrameKindsIn, testing::ValuesIn(allVariants), variantName);

TEST_P(FrameKindsIn, everyVariantCopiedFromDwarf) {
    const auto file = macho::MachOFile::open(imageFile(std::string(GetParam()) + "/Frames"));
    // The translator's own common entry is the last one; copied records have others.
    const auto translated = file.plan().unwind.commons.size() - 1;
    const auto &copied = recordOf(file.plan(), "describedByDwarf");
    EXPECT_NE(copied.common, translated);
    EXPECT_NE(copied.personalitySlot, 0U);
    EXPECT_NE(copied.languageData, 0U);
    const auto &simple = recordOf(file.plan(), "simple");
    EXPECT_EQ(simple.common, translated);
    EXPECT_EQ(simple.personalitySlot, copied.personalitySlot);
}

} // namespace
