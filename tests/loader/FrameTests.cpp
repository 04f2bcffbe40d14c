#include "tests/loader/DamagedImages.h"
#include "tests/loader/Thrower.h"
#include "tests/loader/UnwindSections.h"

#include "macos/loader/DwarfCode.h"
#include "macos/loader/MachOFile.h"
#include "macos/loader/arm64/Registers.h"
#include "macos/loader/x86_64/Registers.h"

#include <algorithm>
#include <cstdint>
#include <functional>
#include <stdexcept>
#include <string>

namespace {

using Callback = void (*)();
using FrameFunction = int(Callback, int *);

const char *const frameFunctions[] = {
    "simple",     "withoutCleanUp",          "manyRegisters",   "manyVectorRegisters",
    "largeStack", "largeStackManyRegisters", "variableStack",   "alignedStack",
    "nested",     "pushesArguments",         "describedByDwarf"};

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
    // On arm64 there are vector registers to be given back, too.
    volatile double source = 0.5;
    const double u = source, v = source, w = source, x = source, y = source, z = source;
    Outcome outcome = Outcome::returned;
    try {
        function(throwOutOfRange, count);
    } catch (const std::out_of_range &) {
        outcome = Outcome::outOfRange;
    } catch (...) {
        outcome = Outcome::other;
    }
    asm volatile("" : "+r"(a), "+r"(b), "+r"(c), "+r"(d), "+r"(e), "+r"(f));
    *damage = (a - 11) | (b - 22) | (c - 33) | (d - 44) | (e - 55) | (f - 66) |
              static_cast<std::uint64_t>(u != 0.5 || v != 0.5 || w != 0.5 || x != 0.5 || y != 0.5 ||
                                         z != 0.5);
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

macho::MachOFile frameImage(const std::string &variant, const macho::Processor &processor) {
    return macho::MachOFile::open(imageFile(variant + "/Frames", processor), processor);
}

TEST(FrameKinds, withFramePointers) {
    const auto file = frameImage("classicOptimised", macho::Processor::x86_64);
    namespace x86_64 = macho::x86_64;
    EXPECT_EQ(recordOf(file.plan(), "withoutCleanUp").instructions,
              frame(x86_64::rbp, 16, {{x86_64::rbp, 2}, {x86_64::rbx, 3}}));
    EXPECT_EQ(recordOf(file.plan(), "withoutCleanUp").personalitySlot, 0U);
    const auto &many = recordOf(file.plan(), "manyRegisters");
    EXPECT_EQ(many.instructions, frame(x86_64::rbp, 16,
                                       {{x86_64::rbp, 2},
                                        {x86_64::rbx, 7},
                                        {x86_64::r12, 6},
                                        {x86_64::r13, 5},
                                        {x86_64::r14, 4},
                                        {x86_64::r15, 3}}));
    EXPECT_NE(many.personalitySlot, 0U);
    EXPECT_NE(many.languageData, 0U);
}

TEST(FrameKinds, withFramePointersOnArm64) {
    const auto file = frameImage("classicOptimised", macho::Processor::arm64);
    namespace arm64 = macho::arm64;
    using arm64::x19, arm64::d8;
    EXPECT_EQ(recordOf(file.plan(), "withoutCleanUp").instructions,
              frame(arm64::fp, 16, {{arm64::fp, 2}, {arm64::lr, 1}, {x19, 3}, {x19 + 1, 4}}));
    EXPECT_EQ(recordOf(file.plan(), "withoutCleanUp").personalitySlot, 0U);
    const auto &many = recordOf(file.plan(), "manyVectorRegisters");
    EXPECT_EQ(many.instructions, frame(arm64::fp, 16,
                                       {{arm64::fp, 2},
                                        {arm64::lr, 1},
                                        {x19, 3},
                                        {x19 + 1, 4},
                                        {d8, 5},
                                        {d8 + 1, 6},
                                        {d8 + 2, 7},
                                        {d8 + 3, 8},
                                        {d8 + 4, 9},
                                        {d8 + 5, 10},
                                        {d8 + 6, 11},
                                        {d8 + 7, 12}}));
    EXPECT_NE(many.personalitySlot, 0U);
    EXPECT_NE(many.languageData, 0U);
    EXPECT_EQ(recordOf(file.plan(), "leaf").instructions, frame(arm64::sp, 0, {}));
}

TEST(FrameKinds, withoutFramePointers) {
    const auto file = frameImage("chainedFrameless", macho::Processor::x86_64);
    namespace x86_64 = macho::x86_64;
    EXPECT_EQ(recordOf(file.plan(), "withoutCleanUp").instructions,
              frame(x86_64::rsp, 16, {{x86_64::rbx, 2}}));
    // Its size stands in the code: 5000 bytes, padding and what is pushed.
    const auto &large = recordOf(file.plan(), "largeStackManyRegisters").instructions;
    EXPECT_EQ(large.front(), macho::dwarf::defineFrame);
    EXPECT_EQ(large[1], x86_64::rsp);
    EXPECT_GE((large[2] & 0x7f) | large[3] << 7, 5000 + 7 * 8);
}

class FrameKindsIn
    : public testing::TestWithParam<std::tuple<const macho::Processor *, const char *>> {};
INSTANTIATE_TEST_SUITE_P(, FrameKindsIn,
                         testing::Combine(testing::ValuesIn(allProcessors),
                                          testing::ValuesIn(allVariants)),
                         [](const auto &info) {
                             return std::string(std::get<0>(info.param)->name) + "_" +
                                    std::get<1>(info.param);
                         });

TEST_P(FrameKindsIn, everyVariantCopiedFromDwarf) {
    const auto [processor, variant] = GetParam();
    const auto file = frameImage(variant, *processor);
    // The translator's own common entry is the last one; copied records have others.
    const auto translated = file.plan().unwind.commons.size() - 1;
    const auto &copied = recordOf(file.plan(), "describedByDwarf");
    EXPECT_NE(copied.common, translated);
    EXPECT_NE(copied.personalitySlot, 0U);
    EXPECT_NE(copied.languageData, 0U);
    const auto &simple = recordOf(file.plan(), "simple");
    // On arm64 a function without a frame pointer that calls others always keeps its DWARF record.
    EXPECT_EQ(simple.common == translated, processor == &macho::Processor::x86_64 ||
                                               !std::string(variant).ends_with("Frameless"));
    EXPECT_EQ(simple.personalitySlot, copied.personalitySlot);
}

} // namespace
