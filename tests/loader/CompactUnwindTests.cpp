#include "tests/loader/UnwindSections.h"

#include "macos/loader/LoadError.h"
#include "macos/loader/arm64/Registers.h"
#include "macos/loader/x86_64/Registers.h"

#include <string>

#include <gmock/gmock.h>

namespace {

using testing::EndsWith;
using testing::HasSubstr;
namespace arm64 = macho::arm64;
namespace x86_64 = macho::x86_64;

std::string translationError(const ByteString &section,
                             const macho::Processor &processor = macho::Processor::x86_64) {
    try {
        translate(section, {}, ByteString(textSize), processor);
        return "translated";
    } catch (const macho::LoadError &error) {
        return error.what();
    }
}

/// The instructions that an encoding of a function at 0x1000 is translated to.
std::vector<std::uint8_t> instructionsOf(std::uint32_t encoding,
                                         const ByteString &text = ByteString(textSize)) {
    const auto table = translate(Section().withRegularPage({{0x1000, encoding}}), {}, text);
    return table.records.at(0).instructions;
}

std::string encodingError(std::uint32_t encoding) {
    return translationError(Section().withRegularPage({{0x1000, encoding}}));
}

TEST(CompactUnwind, functionsEndWhereTheNextOneStarts) {
    const auto table = translate(Section().withRegularPage(
        {{0x1000, 0x02010000}, {0x1010, 0}, {0x1020, 0x02020000}, {0x1100, 0x02030000}}));
    ASSERT_EQ(table.records.size(), 3U); // the second one needs no record
    EXPECT_EQ(table.records[0].start, 0x1000U);
    EXPECT_EQ(table.records[0].end, 0x1010U);
    EXPECT_EQ(table.records[1].start, 0x1020U);
    EXPECT_EQ(table.records[1].end, 0x1100U);
    EXPECT_EQ(table.records[2].end, 0x2000U); // the end of all
    EXPECT_EQ(table.records[2].instructions, frame(x86_64::rsp, 24, {}));
}

TEST(CompactUnwind, compressedPagesTakeEncodingsFromTheSectionOrThePage) {
    Section section;
    section.commonEncodings = {0x02010000, 0x02020000};
    const auto table = translate(section.withCompressedPage(
        {{0, 1}, {0x10, 0}, {0x20, 2}, {0x30, 3}}, {0x02030000, 0x02040000}));
    ASSERT_EQ(table.records.size(), 4U);
    EXPECT_EQ(table.records[0].instructions, frame(x86_64::rsp, 16, {}));
    EXPECT_EQ(table.records[1].instructions, frame(x86_64::rsp, 8, {}));
    EXPECT_EQ(table.records[2].instructions, frame(x86_64::rsp, 24, {}));
    EXPECT_EQ(table.records[3].instructions, frame(x86_64::rsp, 32, {}));
    EXPECT_EQ(table.records[3].start, 0x1030U);
    EXPECT_THAT(translationError(section.withCompressedPage({{0, 2}}, {})),
                HasSubstr("has no encoding 2"));
}

TEST(CompactUnwind, framesWithAPointer) {
    EXPECT_EQ(instructionsOf(0x01000000), frame(x86_64::rbp, 16, {{x86_64::rbp, 2}}));
    // rbx, r12, r13, r14, r15 from the lowest address on, five words below rbp.
    EXPECT_EQ(instructionsOf(0x01050000 | 1 | 2 << 3 | 3 << 6 | 4 << 9 | 5 << 12),
              frame(x86_64::rbp, 16,
                    {{x86_64::rbp, 2},
                     {x86_64::rbx, 7},
                     {x86_64::r12, 6},
                     {x86_64::r13, 5},
                     {x86_64::r14, 4},
                     {x86_64::r15, 3}}));
    // Empty slots take their place.
    EXPECT_EQ(instructionsOf(0x01040000 | 0 | 4 << 3 | 0 << 6 | 1 << 9),
              frame(x86_64::rbp, 16, {{x86_64::rbp, 2}, {x86_64::r14, 5}, {x86_64::rbx, 3}}));
    EXPECT_EQ(instructionsOf(0x01ff0000 | 1),
              frame(x86_64::rbp, 16, {{x86_64::rbp, 2}, {x86_64::rbx, 257}}));
}

TEST(CompactUnwind, framesWithoutAPointer) {
    EXPECT_EQ(instructionsOf(0x02010000), frame(x86_64::rsp, 8, {}));
    EXPECT_EQ(instructionsOf(0x02ff0000), frame(x86_64::rsp, 2040, {}));
    // One register: its number less one.
    const std::uint8_t registers[] = {x86_64::rbx, x86_64::r12, x86_64::r13,
                                      x86_64::r14, x86_64::r15, x86_64::rbp};
    for (std::uint32_t i = 0; i < 6; ++i)
        EXPECT_EQ(instructionsOf(0x02020400 | i), frame(x86_64::rsp, 16, {{registers[i], 2}}));
    // Six: the first permutation is in the order of the numbers, the last one in reverse.
    EXPECT_EQ(instructionsOf(0x02081800), frame(x86_64::rsp, 64,
                                                {{x86_64::rbx, 7},
                                                 {x86_64::r12, 6},
                                                 {x86_64::r13, 5},
                                                 {x86_64::r14, 4},
                                                 {x86_64::r15, 3},
                                                 {x86_64::rbp, 2}}));
    EXPECT_EQ(instructionsOf(0x02081800 | 719), frame(x86_64::rsp, 64,
                                                      {{x86_64::rbp, 7},
                                                       {x86_64::r15, 6},
                                                       {x86_64::r14, 5},
                                                       {x86_64::r13, 4},
                                                       {x86_64::r12, 3},
                                                       {x86_64::rbx, 2}}));
    // r15, rbx, r14: fifth of six, first of what is left, third of what is left then.
    EXPECT_EQ(instructionsOf(0x02050c00 | (4 * 20 + 0 * 4 + 2)),
              frame(x86_64::rsp, 40, {{x86_64::r15, 4}, {x86_64::rbx, 3}, {x86_64::r14, 2}}));
}

TEST(CompactUnwind, stackSizesInTheCode) {
    // "sub rsp, 0x12345" with its operand seven bytes into the function; two words are pushed.
    ByteString text(textSize);
    set<std::uint32_t>(text, 0x1007, 0x12345 * 8);
    EXPECT_EQ(instructionsOf(0x03000000 | 7 << 16 | 2 << 13 | 1 << 10, text),
              frame(x86_64::rsp, 0x12345 * 8 + 16, {{x86_64::rbx, 2}}));
}

std::vector<std::uint8_t> arm64InstructionsOf(std::uint32_t encoding) {
    const auto table = translate(Section().withRegularPage({{0x1000, encoding}}), {},
                                 ByteString(textSize), macho::Processor::arm64);
    return table.records.at(0).instructions;
}

std::string arm64EncodingError(std::uint32_t encoding) {
    return translationError(Section().withRegularPage({{0x1000, encoding}}),
                            macho::Processor::arm64);
}

TEST(CompactUnwindOfArm64, beginsWithNothingOnTheStack) {
    const auto table = translate(Section().withRegularPage({{0x1000, 0x02000000}}), {},
                                 ByteString(textSize), macho::Processor::arm64);
    const auto &common = table.commons.at(table.records.at(0).common);
    EXPECT_EQ(common.instructions, frame(arm64::sp, 0, {}));
    EXPECT_EQ(common.returnAddressRegister, arm64::lr);
    EXPECT_EQ(common.dataAlignment, -8);
}

TEST(CompactUnwindOfArm64, framesWithAPointer) {
    EXPECT_EQ(arm64InstructionsOf(0x04000000),
              frame(arm64::fp, 16, {{arm64::fp, 2}, {arm64::lr, 1}}));
    // One pair after another below the two, each with its lower number on top.
    const std::uint8_t firstOfPair[] = {19, 21, 23, 25, 27, 0, 0, 0, 72, 74, 76, 78};
    for (const int bit : {0, 1, 2, 3, 4, 8, 9, 10, 11}) {
        const std::uint8_t reg = firstOfPair[bit], next = reg + 1;
        EXPECT_EQ(arm64InstructionsOf(0x04000000 | 1U << bit),
                  frame(arm64::fp, 16, {{arm64::fp, 2}, {arm64::lr, 1}, {reg, 3}, {next, 4}}));
    }
    EXPECT_EQ(arm64InstructionsOf(0x04000f1f),
              frame(arm64::fp, 16, {{arm64::fp, 2}, {arm64::lr, 1}, {19, 3},  {20, 4},  {21, 5},
                                    {22, 6},        {23, 7},        {24, 8},  {25, 9},  {26, 10},
                                    {27, 11},       {28, 12},       {72, 13}, {73, 14}, {74, 15},
                                    {75, 16},       {76, 17},       {77, 18}, {78, 19}, {79, 20}}));
}

TEST(CompactUnwindOfArm64, framesWithoutAPointer) {
    EXPECT_EQ(arm64InstructionsOf(0x02000000), frame(arm64::sp, 0, {}));
    EXPECT_EQ(arm64InstructionsOf(0x02fff000), frame(arm64::sp, 65520, {}));
    // "stp d9, d8, [sp, #-32]!; stp x20, x19, [sp, #16]"
    EXPECT_EQ(arm64InstructionsOf(0x02002101),
              frame(arm64::sp, 32, {{19, 1}, {20, 2}, {72, 3}, {73, 4}}));
}

TEST(CompactUnwindOfArm64, whatMakesNoSenseIsAnError) {
    for (const std::uint32_t bit : {5U, 6U, 7U, 12U, 16U, 23U})
        EXPECT_THAT(arm64EncodingError(0x04000000 | 1U << bit),
                    HasSubstr("does not describe a frame"));
    for (const std::uint32_t bit : {5U, 6U, 7U})
        EXPECT_THAT(arm64EncodingError(0x02010000 | 1U << bit),
                    HasSubstr("does not describe a stack"));
    EXPECT_THAT(arm64EncodingError(0x02001101), HasSubstr("does not describe a stack"));
    for (const std::uint32_t mode : {1U, 5U, 15U})
        EXPECT_THAT(arm64EncodingError(mode << 24), HasSubstr("is of no known mode"));
    EXPECT_THAT(arm64EncodingError(0x03000010), HasSubstr("has no record in __TEXT,__eh_frame"));
    EXPECT_THAT(arm64EncodingError(0x14000000), HasSubstr("names personality 1"));
}

TEST(CompactUnwind, functionsKnowTheirPersonalityAndHandlerTable) {
    Section section;
    section.personalities = {0x9000, 0x9008};
    section.handlerTables = {{0x1000, 0x5000}, {0x1020, 0x5010}};
    const auto table = translate(section.withRegularPage(
        {{0x1000, 0x51000000}, {0x1010, 0x01000000}, {0x1020, 0x61000000}}));
    ASSERT_EQ(table.records.size(), 3U);
    EXPECT_EQ(table.records[0].personalitySlot, 0x9000U);
    EXPECT_EQ(table.records[0].languageData, 0x5000U);
    EXPECT_EQ(table.records[1].personalitySlot, 0U);
    EXPECT_EQ(table.records[1].languageData, 0U);
    EXPECT_EQ(table.records[2].personalitySlot, 0x9008U);
    EXPECT_EQ(table.records[2].languageData, 0x5010U);
}

TEST(CompactUnwind, whatMakesNoSenseIsAnError) {
    EXPECT_THAT(encodingError(0x01010000 | 6), HasSubstr("does not describe a frame"));
    EXPECT_THAT(encodingError(0x01010000 | 1 << 3), HasSubstr("does not describe a frame"));
    EXPECT_THAT(encodingError(0x02020400 | 6), HasSubstr("does not describe saved registers"));
    EXPECT_THAT(encodingError(0x02ff1c00), HasSubstr("does not describe a stack"));
    EXPECT_THAT(encodingError(0x02010400), HasSubstr("does not describe a stack"));
    EXPECT_THAT(encodingError(0x02000000), HasSubstr("does not describe a stack"));
    EXPECT_THAT(encodingError(0x05000000), HasSubstr("is of no known mode"));
    EXPECT_THAT(encodingError(0x11000000), HasSubstr("names personality 1"));
    EXPECT_THAT(encodingError(0x41000000), HasSubstr("has no handler table"));
    EXPECT_THAT(encodingError(0x04000010), HasSubstr("has no record in __TEXT,__eh_frame"));
}

TEST(CompactUnwind, nothingOfNoLengthIsPassedOver) {
    const auto table =
        translate(Section().withRegularPage({{0x1000, 0}, {0x1000, 0x02010000}, {0x1100, 0}}));
    ASSERT_EQ(table.records.size(), 1U);
    EXPECT_EQ(table.records[0].start, 0x1000U);
    EXPECT_EQ(table.records[0].end, 0x1100U);
}

TEST(CompactUnwind, whatLiesOutsideIsAnError) {
    Section section;
    section.personalities = {imageSize - 4};
    EXPECT_THAT(translationError(section.withRegularPage({{0x1000, 0x11000000}})),
                HasSubstr("lies outside the image"));
    section.personalities = {0x9000};
    section.handlerTables = {{0x1000, imageSize}};
    EXPECT_THAT(translationError(section.withRegularPage({{0x1000, 0x51000000}})),
                HasSubstr("lies outside the image"));
    section.handlerTables.clear();
    section.end = textSize + 1;
    EXPECT_THAT(translationError(section.withRegularPage({{0x1000, 0x01000000}})),
                HasSubstr("lies outside the code"));
    section.end = 0x1000;
    EXPECT_THAT(translationError(section.withRegularPage({{0x1000, 0x01000000}})),
                HasSubstr("stands behind"));
    section.end = 0x2000;
    EXPECT_THAT(
        translationError(section.withRegularPage({{0x1000, 0x01000000}, {0x0fff, 0x01000000}})),
        HasSubstr("stands behind"));
    section.end = textSize;
    EXPECT_THAT(translationError(section.withRegularPage({{textSize - 1, 0x03ff0000}})),
                HasSubstr("outside the code"));
}

TEST(CompactUnwind, cutAnywhereIsAnErrorOrAnEnd) {
    Section section;
    section.commonEncodings = {0x51000000};
    section.personalities = {0x9000};
    section.handlerTables = {{0x1000, 0x5000}};
    const auto whole = section.withCompressedPage({{0, 0}, {0x10, 1}}, {0x02010000});
    EXPECT_EQ(translationError(whole), "translated");
    for (std::size_t end = 0; end < whole.size(); ++end)
        EXPECT_THAT(translationError(cut(whole, end)), EndsWith("lies outside the section")) << end;
}

} // namespace
