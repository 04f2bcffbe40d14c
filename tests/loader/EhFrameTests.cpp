#include "tests/loader/UnwindSections.h"

#include "macos/loader/DwarfCode.h"
#include "macos/loader/EhFrame.h"
#include "macos/loader/LoadError.h"

#include <string>

#include <gmock/gmock.h>

namespace {

using macho::DwarfCode;
using macho::DwarfFrames;
using macho::UnwindRecord;
using macho::UnwindTable;
using testing::HasSubstr;

/// An entry of an __eh_frame section with these contents.
void appendEntry(ByteString &section, const ByteString &contents) {
    append(section, static_cast<std::uint32_t>(contents.size()));
    section.insert(section.end(), contents.begin(), contents.end());
}

constexpr std::uint64_t sectionOffset = 0x7000, baseAddress = 0x100000;

/// One common entry and one record, as the linker writes them; the handler table may be absent.
ByteString frames(std::uint64_t function, std::uint64_t length, std::uint64_t handlers) {
    ByteString common;
    append<std::uint32_t>(common, 0);
    for (const int byte :
         std::initializer_list<int>{1, 'z', 'P', 'L', 'R', 0, 1, 0x78, 16, 7, 0x9b})
        append(common, static_cast<std::uint8_t>(byte));
    // The personality's pointer is at 0x9000.
    append(common, static_cast<std::uint32_t>(0x9000 - (sectionOffset + 4 + common.size())));
    for (const int byte : {0x10, 0x10, 0x0c, 7, 8, 0x90, 1})
        append(common, static_cast<std::uint8_t>(byte));
    ByteString section;
    appendEntry(section, common);
    const auto start = section.size();
    ByteString record;
    append(record, static_cast<std::uint32_t>(start + 4));
    append(record, function - (sectionOffset + start + 8));
    append(record, length);
    append<std::uint8_t>(record, 8);
    append(record, handlers == 0 ? 0 : handlers - (sectionOffset + start + 4 + record.size()));
    for (const int byte : {0x0e, 16})
        append(record, static_cast<std::uint8_t>(byte));
    appendEntry(section, record);
    append<std::uint32_t>(section, 0);
    return section;
}

DwarfFrames read(const ByteString &section) {
    return macho::readDwarfFrames(section, sectionOffset, baseAddress, imageSize,
                                  macho::Reporter("image"));
}

std::string readError(const ByteString &section) {
    try {
        read(section);
        return "read";
    } catch (const macho::LoadError &error) {
        return error.what();
    }
}

TEST(DwarfFrames, areRead) {
    const auto found = read(frames(0x1000, 0x40, 0x5000));
    const auto *record = found.find(0x1000);
    ASSERT_NE(record, nullptr);
    EXPECT_EQ(found.find(0x103f), record);
    EXPECT_EQ(found.find(0x1040), nullptr);
    EXPECT_EQ(found.find(0xfff), nullptr);
    EXPECT_EQ(record->start, 0x1000U);
    EXPECT_EQ(record->end, 0x1040U);
    EXPECT_EQ(record->personalitySlot, 0x9000U);
    EXPECT_EQ(record->languageData, 0x5000U);
    EXPECT_EQ(record->instructions, (std::vector<std::uint8_t>{0x0e, 16}));
    const auto &common = found.commons.at(record->common);
    EXPECT_EQ(common.codeAlignment, 1U);
    EXPECT_EQ(common.dataAlignment, -8);
    EXPECT_EQ(common.returnAddressRegister, 16U);
    EXPECT_EQ(common.instructions, (std::vector<std::uint8_t>{0x0c, 7, 8, 0x90, 1}));
    EXPECT_EQ(read(frames(0x1000, 0x40, 0)).find(0x1000)->languageData, 0U);
}

TEST(DwarfFrames, areCopiedForFunctionsThatCompactUnwindLeavesToThem) {
    const auto found = read(frames(0x1000, 0x40, 0x5000));
    const auto table =
        translate(Section().withRegularPage({{0x1000, 0x04000020}, {0x1040, 0x02010000}}), found);
    ASSERT_EQ(table.records.size(), 2U);
    EXPECT_EQ(table.records[0].instructions, found.find(0x1000)->instructions);
    EXPECT_EQ(table.records[0].personalitySlot, 0x9000U);
    EXPECT_EQ(table.commons.at(table.records[0].common), found.commons.at(0));
    EXPECT_NE(table.records[1].common, table.records[0].common);
}

TEST(DwarfFrames, thatLeadOutOfTheImageAreErrors) {
    EXPECT_THAT(readError(frames(imageSize - 0x20, 0x21, 0)),
                HasSubstr("its code lies outside the image"));
    EXPECT_THAT(readError(frames(0x1000, ~0ULL, 0)), HasSubstr("its code lies outside the image"));
    EXPECT_THAT(readError(frames(0x1000, 0x10, imageSize)),
                HasSubstr("its handler table lies outside the image"));
    EXPECT_EQ(readError(frames(imageSize - 0x20, 0x20, 0)), "read");
}

TEST(DwarfFrames, cutAnywhereAreErrorsOrAnEnd) {
    const auto whole = frames(0x1000, 0x40, 0x5000);
    const auto commonEnd = 4 + get<std::uint32_t>(whole, 0);
    const auto recordEnd = commonEnd + 4 + get<std::uint32_t>(whole, commonEnd);
    for (std::size_t end = 1; end < recordEnd; ++end) {
        if (end == commonEnd)
            continue; // a section with one whole entry
        EXPECT_THAT(readError(cut(whole, end)),
                    testing::StartsWith("image: section __TEXT,__eh_frame, record at "))
            << end;
    }
}

TEST(DwarfFrames, ofUnknownFormsAreErrors) {
    const auto whole = frames(0x1000, 0x40, 0x5000);
    const auto errorWith = [&](std::size_t at, int value) {
        auto damaged = whole;
        damaged[at] = static_cast<std::uint8_t>(value);
        return readError(damaged);
    };
    EXPECT_THAT(errorWith(8, 2), HasSubstr("version 2 is not supported"));
    EXPECT_THAT(errorWith(10, 'Q'), HasSubstr("augmentation 'Q' is not supported"));
    EXPECT_THAT(errorWith(18, 0x1b), HasSubstr("a personality that is not reached"));
    EXPECT_THAT(errorWith(18, 0xab), HasSubstr("pointer encoding 0x2b is not supported"));
    EXPECT_THAT(errorWith(24, 0x11), HasSubstr("pointer form 0x1 is not supported"));
    EXPECT_THAT(errorWith(0, 0xff), HasSubstr("it ends beyond the section"));
}

/// The numbers of an .eh_frame section, one after another.
struct SectionReader {
    const std::vector<std::uint8_t> &section;
    std::size_t at = 0;
    template <class Number>
    Number next() {
        const auto value = get<Number>(section, at);
        at += sizeof value;
        return value;
    }
};

TEST(EhFrame, hasAbsolutePointersAndEndsWithAZeroWord) {
    UnwindTable table;
    table.commons.emplace_back().instructions = {0x0c, 7, 8, 0x90, 1};
    table.commons.back().returnAddressRegister = 16;
    UnwindRecord record;
    record.start = 0x1000;
    record.end = 0x1040;
    record.personalitySlot = 0x9000;
    record.languageData = 0x5000;
    record.instructions = {0x0e, 16};
    table.records.push_back(record);
    const auto section = macho::writeEhFrame(table, 0x7f0000000000, [](std::uint64_t slot) {
        EXPECT_EQ(slot, 0x9000U);
        return std::uintptr_t{0x123456789abc};
    });
    SectionReader reader{section};
    const auto commonLength = reader.next<std::uint32_t>();
    EXPECT_EQ((commonLength + 4) % 8, 0U);
    EXPECT_EQ(reader.next<std::uint32_t>(), 0U);
    EXPECT_EQ(reader.next<std::uint8_t>(), 1U);
    for (const char letter : {'z', 'P', 'L', 'R', '\0'})
        EXPECT_EQ(reader.next<char>(), letter);
    for (const int byte : {1, 0x78, 16, 11, 0})
        EXPECT_EQ(reader.next<std::uint8_t>(), byte);
    EXPECT_EQ(reader.next<std::uint64_t>(), 0x123456789abcU);
    for (const int byte : {0, 0, 0x0c, 7, 8, 0x90, 1})
        EXPECT_EQ(reader.next<std::uint8_t>(), byte);
    reader.at = 4 + commonLength;
    const auto recordLength = reader.next<std::uint32_t>();
    EXPECT_EQ(reader.next<std::uint32_t>(), reader.at - 4);
    EXPECT_EQ(reader.next<std::uint64_t>(), 0x7f0000001000U);
    EXPECT_EQ(reader.next<std::uint64_t>(), 0x40U);
    EXPECT_EQ(reader.next<std::uint8_t>(), 8);
    EXPECT_EQ(reader.next<std::uint64_t>(), 0x7f0000005000U);
    EXPECT_EQ(reader.next<std::uint8_t>(), 0x0e);
    EXPECT_EQ(reader.next<std::uint8_t>(), 16);
    reader.at = 4 + commonLength + 4 + recordLength;
    EXPECT_EQ(reader.next<std::uint32_t>(), 0U);
    EXPECT_EQ(reader.at, section.size());
}

TEST(EhFrame, sharesCommonEntriesAndLeavesOutPersonalities) {
    UnwindTable table;
    table.commons.emplace_back();
    for (std::uint64_t start = 0x1000; start < 0x1040; start += 0x10) {
        UnwindRecord record;
        record.start = start;
        record.end = start + 0x10;
        record.personalitySlot = start % 0x20 == 0 ? 0x9000 : 0;
        table.records.push_back(record);
    }
    const auto section =
        macho::writeEhFrame(table, 0, [](std::uint64_t) { return std::uintptr_t{1}; });
    std::vector<bool> isCommon;
    for (std::size_t at = 0; get<std::uint32_t>(section, at) != 0;
         at += 4 + get<std::uint32_t>(section, at))
        isCommon.push_back(get<std::uint32_t>(section, at + 4) == 0);
    EXPECT_EQ(isCommon, (std::vector<bool>{true, false, true, false, false, false}));
}

TEST(EhFrame, ofNothingIsOnlyTheEnd) {
    const auto section =
        macho::writeEhFrame({}, 0, [](std::uint64_t) { return std::uintptr_t{1}; });
    EXPECT_EQ(section, ByteString(4));
    const macho::RegisteredFrames registered(section); // and can be registered
}

TEST(DwarfCode, savedRegistersHaveAShortFormWhileTheyFit) {
    DwarfCode code;
    code.saved(63, 2);
    code.saved(64, 3);
    code.saved(72, 200);
    EXPECT_EQ(code.bytes, (ByteString{0xbf, 2, 0x05, 64, 3, 0x05, 72, 0xc8, 0x01}));
}

TEST(DwarfCode, numbersAreAsShortAsTheyCanBe) {
    const auto unsignedBytes = [](std::uint64_t value) {
        DwarfCode code;
        code.unsignedNumber(value);
        return code.bytes;
    };
    const auto signedBytes = [](std::int64_t value) {
        DwarfCode code;
        code.signedNumber(value);
        return code.bytes;
    };
    EXPECT_EQ(unsignedBytes(0), (ByteString{0}));
    EXPECT_EQ(unsignedBytes(127), (ByteString{0x7f}));
    EXPECT_EQ(unsignedBytes(128), (ByteString{0x80, 1}));
    EXPECT_EQ(unsignedBytes(624485), (ByteString{0xe5, 0x8e, 0x26}));
    EXPECT_EQ(unsignedBytes(~0ULL).size(), 10U);
    EXPECT_EQ(signedBytes(-8), (ByteString{0x78}));
    EXPECT_EQ(signedBytes(-64), (ByteString{0x40}));
    EXPECT_EQ(signedBytes(-65), (ByteString{0xbf, 0x7f}));
    EXPECT_EQ(signedBytes(63), (ByteString{0x3f}));
    EXPECT_EQ(signedBytes(64), (ByteString{0xc0, 0}));
    EXPECT_EQ(signedBytes(-123456), (ByteString{0xc0, 0xbb, 0x78}));
}

} // namespace
