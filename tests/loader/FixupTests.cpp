#include "tests/loader/DamagedImages.h"

#include "macos/loader/ExportTrie.h"
#include "macos/loader/FixupOpcodes.h"

#include <functional>

#include <gmock/gmock.h>

namespace {

using macho::ImagePlan;
using macho::Missing;
using macho::Scope;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::StartsWith;

constexpr std::uint64_t baseAddress = 0x100000;

/// Code at 0 and data at 0x1000 of an image; every pointer of the data leads to 0x20 of the image.
class Fixups : public testing::Test {
protected:
    Fixups() : text_(0x1000), data_(0x80) {
        for (std::size_t at = 0; at < data_.size(); at += 8)
            set<std::uint64_t>(data_, at, baseAddress + 0x20);
        commands_.baseAddress = baseAddress;
        commands_.imageSize = 0x2000;
        auto &text = commands_.segments.emplace_back();
        text.name = "__TEXT";
        text.size = 0x1000;
        text.content = text_;
        auto &data = commands_.segments.emplace_back();
        data.name = "__DATA";
        data.offset = 0x1000;
        data.size = 0x1000;
        data.content = data_;
        data.takesFixups = true;
        commands_.libraries = {{"/first", false}, {"/second", true}};
    }

    [[nodiscard]] ImagePlan rebases(const ByteString &opcodes) const {
        return plan([&](macho::Fixups &fixups) { macho::readRebaseOpcodes(opcodes, fixups); });
    }
    [[nodiscard]] ImagePlan binds(const ByteString &opcodes,
                                  macho::BindTable kind = macho::BindTable::regular) const {
        return plan([&](macho::Fixups &fixups) { macho::readBindOpcodes(opcodes, kind, fixups); });
    }
    [[nodiscard]] std::string rebaseError(const ByteString &opcodes) const {
        return error([&] { static_cast<void>(rebases(opcodes)); });
    }
    [[nodiscard]] std::string bindError(const ByteString &opcodes,
                                        macho::BindTable kind = macho::BindTable::regular) const {
        return error([&] { static_cast<void>(binds(opcodes, kind)); });
    }

    static std::string error(const std::function<void()> &body) {
        try {
            body();
            return "read";
        } catch (const macho::LoadError &error) {
            return error.what();
        }
    }

    static std::vector<std::uint64_t> slots(const ImagePlan &plan) {
        std::vector<std::uint64_t> result;
        for (const auto &rebase : plan.rebases)
            result.push_back(rebase.slot);
        for (const auto &bind : plan.binds)
            result.push_back(bind.slot);
        return result;
    }

private:
    ImagePlan plan(const std::function<void(macho::Fixups &)> &read) const {
        const macho::Reporter reporter("image");
        ImagePlan plan;
        plan.size = commands_.imageSize;
        macho::Fixups fixups(commands_, reporter, plan);
        read(fixups);
        return plan;
    }

    ByteString text_;
    ByteString data_;
    macho::LoadCommands commands_;
};

/// "_name" as the opcode that names a symbol has it.
ByteString symbol(std::initializer_list<int> before, std::string_view name,
                  std::initializer_list<int> after, int flags = 0) {
    ByteString opcodes(before.begin(), before.end());
    opcodes.push_back(static_cast<std::uint8_t>(0x40 | flags));
    opcodes.insert(opcodes.end(), name.begin(), name.end());
    opcodes.push_back(0);
    opcodes.insert(opcodes.end(), after.begin(), after.end());
    return opcodes;
}

TEST_F(Fixups, rebaseInEveryWay) {
    EXPECT_THAT(slots(rebases({0x11, 0x21, 8, 0x52, 0})), ElementsAre(0x1008, 0x1010));
    EXPECT_THAT(slots(rebases({0x11, 0x21, 0, 0x60, 3})), ElementsAre(0x1000, 0x1008, 0x1010));
    EXPECT_THAT(slots(rebases({0x11, 0x21, 0, 0x70, 8, 0x51})), ElementsAre(0x1000, 0x1010));
    EXPECT_THAT(slots(rebases({0x11, 0x21, 0, 0x80, 3, 8})), ElementsAre(0x1000, 0x1010, 0x1020));
    EXPECT_THAT(slots(rebases({0x11, 0x21, 0, 0x30, 16, 0x51})), ElementsAre(0x1010));
    EXPECT_THAT(slots(rebases({0x11, 0x21, 0, 0x43, 0x51})), ElementsAre(0x1018));
    EXPECT_EQ(rebases({0x11, 0x21, 0, 0x51}).rebases.at(0).target, 0x20U);
    EXPECT_THAT(slots(rebases({0x11, 0x21, 0, 0x00, 0x51})),
                ElementsAre()); // nothing after the end
}

TEST_F(Fixups, rebaseOnlyWhereAPointerMayBePatched) {
    EXPECT_EQ(rebaseError({0x11, 0x21, 0x78, 0x51}), "read");
    EXPECT_THAT(rebaseError({0x11, 0x21, 0x79, 0x51}),
                StartsWith("image: rebase table: a pointer at 0x79 of segment __DATA"));
    EXPECT_THAT(rebaseError({0x11, 0x20, 0, 0x51}), HasSubstr("__TEXT, which is not writable"));
    EXPECT_THAT(rebaseError({0x11, 0x22, 0, 0x51}), HasSubstr("there is no segment 2"));
    EXPECT_THAT(rebaseError({0x11, 0x51}), HasSubstr("there is no segment"));
    EXPECT_THAT(rebaseError({0x12, 0x21, 0, 0x51}), HasSubstr("rebases of kind 2"));
    EXPECT_THAT(rebaseError({0x90}), HasSubstr("opcode at 0x0: opcode 0x90 is not supported"));
    EXPECT_THAT(rebaseError({0x11, 0x21}), HasSubstr("opcode at 0x1: "));
    EXPECT_THAT(rebaseError({0x11, 0x21, 0x80}), HasSubstr("opcode at 0x1: "));
}

TEST_F(Fixups, rebaseNoMoreThanThereIsRoomFor) {
    EXPECT_THAT(slots(rebases({0x11, 0x21, 0, 0x60, 16})), testing::SizeIs(16));
    // One place sixteen times, and once more.
    const ByteString back = {0x30, 0xf8, 0xff, 0xff, 0xff, 0xff, 0xff, 0xff, 0xff, 0xff, 1};
    ByteString opcodes = {0x11, 0x21, 0};
    for (int i = 0; i < 17; ++i) {
        opcodes.push_back(0x51);
        opcodes.insert(opcodes.end(), back.begin(), back.end());
    }
    EXPECT_THAT(rebaseError(opcodes), HasSubstr("more entries than the image has room for"));
}

TEST_F(Fixups, bindInEveryWay) {
    EXPECT_THAT(slots(binds(symbol({0x11}, "_a", {0x51, 0x71, 8, 0x90, 0x90}))),
                ElementsAre(0x1008, 0x1010));
    EXPECT_THAT(slots(binds(symbol({0x11}, "_a", {0x51, 0x71, 0, 0xa0, 8, 0x90}))),
                ElementsAre(0x1000, 0x1010));
    EXPECT_THAT(slots(binds(symbol({0x11}, "_a", {0x51, 0x71, 0, 0xb2, 0x90}))),
                ElementsAre(0x1000, 0x1018));
    EXPECT_THAT(slots(binds(symbol({0x11}, "_a", {0x51, 0x71, 0, 0xc0, 3, 8}))),
                ElementsAre(0x1000, 0x1010, 0x1020));
    EXPECT_THAT(slots(binds(symbol({0x11}, "_a", {0x51, 0x71, 0, 0x80, 16, 0x90}))),
                ElementsAre(0x1010));
}

TEST_F(Fixups, bindKnowsWhatItImports) {
    const auto plan = binds(symbol({0x11}, "_a", {0x60, 0x78, 0x51, 0x71, 0, 0x90, 0x90}));
    ASSERT_EQ(plan.imports.size(), 1U);
    EXPECT_EQ(plan.imports[0].name, "a");
    EXPECT_EQ(plan.imports[0].library, "/first");
    EXPECT_EQ(plan.imports[0].missing, Missing::isError);
    EXPECT_EQ(plan.imports[0].scope, Scope::library);
    ASSERT_EQ(plan.binds.size(), 2U);
    EXPECT_EQ(plan.binds[0].addend, -8);
    EXPECT_EQ(plan.binds[1].import, 0U);
    const auto missing = [](const ImagePlan &each) { return each.imports.at(0).missing; };
    EXPECT_EQ(missing(binds(symbol({0x11}, "_a", {0x71, 0, 0x90}, 1))), Missing::isNull);
    EXPECT_EQ(missing(binds(symbol({0x20, 2}, "_a", {0x71, 0, 0x90}))), Missing::isNull);
    EXPECT_EQ(missing(binds(symbol({}, "_a", {0x71, 0, 0x90}), macho::BindTable::weak)),
              Missing::isIgnored);
}

TEST_F(Fixups, bindToSpecialLibraries) {
    const auto import = [&](int opcode) {
        return binds(symbol({opcode}, "_a", {0x71, 0, 0x90})).imports.at(0);
    };
    EXPECT_EQ(import(0x10).scope, Scope::ownImage);
    EXPECT_EQ(import(0x30).scope, Scope::ownImage);
    EXPECT_EQ(import(0x3f).scope, Scope::library);
    EXPECT_EQ(import(0x3f).library, "the program");
    EXPECT_EQ(import(0x3e).library, "any library");
    EXPECT_EQ(import(0x3d).scope, Scope::coalesced);
    EXPECT_THAT(bindError(symbol({0x3c}, "_a", {0x71, 0, 0x90})),
                HasSubstr("a comes from library -4, but only 2 are named"));
    EXPECT_THAT(bindError(symbol({0x13}, "_a", {0x71, 0, 0x90})),
                HasSubstr("a comes from library 3, but only 2 are named"));
}

TEST_F(Fixups, lazyBindsGoOnAfterTheEndOfAnEntry) {
    auto opcodes = symbol({0x71, 0, 0x11}, "_a", {0x90, 0x00});
    const auto second = symbol({0x71, 8, 0x11}, "_b", {0x90, 0x00, 0x00});
    opcodes.insert(opcodes.end(), second.begin(), second.end());
    EXPECT_THAT(slots(binds(opcodes, macho::BindTable::lazy)), ElementsAre(0x1000, 0x1008));
    EXPECT_THAT(slots(binds(opcodes)), ElementsAre(0x1000));
}

TEST_F(Fixups, bindOnlyWhatMakesSense) {
    EXPECT_THAT(bindError({0x11, 0x71, 0, 0x90}), HasSubstr("a bind before a symbol is named"));
    EXPECT_THAT(bindError(symbol({0x11}, "_a", {0x90})), HasSubstr("there is no segment"));
    EXPECT_THAT(bindError(symbol({0x11}, "_a", {0x53})), HasSubstr("binds of kind 3"));
    EXPECT_THAT(bindError({0xd0}), HasSubstr("opcode 0xd0 is not supported"));
    EXPECT_THAT(bindError({0x40, '_', 'a'}), StartsWith("image: bind table: opcode at 0x0: "));
    EXPECT_THAT(bindError({0x11}, macho::BindTable::weak), StartsWith("image: weak bind table: "));
    EXPECT_THAT(bindError({0xe0}, macho::BindTable::lazy), StartsWith("image: lazy bind table: "));
    EXPECT_THAT(bindError(symbol({0x11}, "_a", {0x71, 0, 0xc0, 0xff, 0xff, 0x7f, 0})),
                HasSubstr("a pointer at 0x80 of segment __DATA"));
}

/// The exports of a table made by hand.
std::string exportsOf(const ByteString &table) {
    try {
        std::string text;
        for (const auto &[name, offset] :
             macho::readExportTrie(table, 0x1000, macho::Reporter("image")))
            text += name + "=" + hexOf(offset) + " ";
        return text;
    } catch (const macho::LoadError &error) {
        return error.what();
    }
}

// "_a" at 0x10, "_ab" at 0x20.
const ByteString smallTrie = {0, 1, '_', 'a', 0, 6, 2, 0, 0x10, 1, 'b', 0, 13, 2, 0, 0x20, 0};

std::string exportsWith(std::size_t at, int value) {
    auto table = smallTrie;
    table.at(at) = static_cast<std::uint8_t>(value);
    return exportsOf(table);
}

TEST(ExportTrie, namesAreSpeltByTheWayToThem) {
    EXPECT_EQ(exportsOf(smallTrie), "a=0x10 ab=0x20 ");
}

TEST(ExportTrie, nodesAreInTheTableAndReachedOnce) {
    EXPECT_EQ(exportsWith(5, 17), "image: export table: a node at 0x11, beyond the table");
    EXPECT_EQ(exportsWith(12, 0), "image: export table: the node at 0x0 is reached twice");
    EXPECT_EQ(exportsWith(12, 6), "image: export table: the node at 0x6 is reached twice");
    EXPECT_EQ(exportsWith(6, 0x7f), "image: export table: the node at 0x6 ends beyond the table");
}

TEST(ExportTrie, exportsArePlacesInTheImage) {
    EXPECT_THAT(exportsWith(7, 0x08), HasSubstr("a: only exports that are a place in the image"));
    EXPECT_THAT(exportsWith(7, 0x10), HasSubstr("a: only exports that are a place in the image"));
    EXPECT_THAT(exportsWith(7, 0x01), HasSubstr("a: only exports that are a place in the image"));
    EXPECT_EQ(exportsOf({3, 0, 0xff, 0x1f, 0}), "=0xfff ");
    EXPECT_EQ(exportsOf({3, 0, 0x80, 0x20, 0}),
              "image: export table:  is at 0x1000, outside the image");
}

TEST(ExportTrie, cutAnywhereIsAnError) {
    for (std::size_t end = 1; end < smallTrie.size(); ++end)
        EXPECT_THAT(exportsOf(cut(smallTrie, end)), StartsWith("image: export table: ")) << end;
}

/// A table of 255 names that begin with the same so many letters.
ByteString manyNames(std::size_t letters) {
    ByteString table = {0, 1};
    table.insert(table.end(), letters, 'x');
    table.push_back(0);
    const auto number = [&](std::size_t value) { // three bytes long
        for (const auto part : {value % 128 + 128, value / 128 % 128 + 128, value / 128 / 128})
            table.push_back(static_cast<std::uint8_t>(part));
    };
    number(table.size() + 3);
    const auto leaves = table.size() + 2 + std::size_t{255} * 5;
    table.insert(table.end(), {0, 255});
    for (std::size_t i = 0; i < 255; ++i) {
        table.insert(table.end(), {static_cast<std::uint8_t>(i + 1), 0});
        number(leaves + 4 * i);
    }
    for (int i = 0; i < 255; ++i)
        table.insert(table.end(), {2, 0, 0, 0});
    return table;
}

TEST(ExportTrie, spellsNoMoreThanItIsWorth) {
    EXPECT_THAT(exportsOf(manyNames(1000)), StartsWith(std::string(1000, 'x') + "\x01=0x0 "));
    EXPECT_EQ(exportsOf(manyNames(50000)),
              "image: export table: more letters than it has room for");
}

TEST(ExportTrie, mayBeAbsent) {
    EXPECT_EQ(exportsOf({}), "");
    EXPECT_EQ(exportsOf({0, 0}), "");
}

class ChainedFixups : public OnEveryProcessor {};
INSTANTIATE_TEST_SUITE_P(, ChainedFixups, testing::ValuesIn(allProcessors), processorName);

TEST_P(ChainedFixups, ofAnUnknownFormAreAnError) {
    const auto whole = read("chainedOptimised/Plain");
    const auto command = findCommand(whole, chainedFixupsCommand);
    const auto table = get<std::uint32_t>(whole, command + 8);
    for (std::size_t field = 0; field < 28; field += 4) {
        auto damaged = whole;
        set<std::uint32_t>(damaged, table + field, 0x7fffffff);
        EXPECT_THAT(parseError(damaged), StartsWith("the file: chained fixups: ")) << field;
    }
    EXPECT_EQ(parseError(whole), "parsed");
}

TEST_P(ChainedFixups, ofPointersOfAnotherFormAreAnError) {
    const auto whole = read("chainedOptimised/Plain");
    const auto table = get<std::uint32_t>(whole, findCommand(whole, chainedFixupsCommand) + 8);
    const auto starts = table + get<std::uint32_t>(whole, table + 4);
    const auto constants = starts + get<std::uint32_t>(whole, starts + 4 + 4); // the second segment
    const auto form = constants + 6;
    EXPECT_THAT(get<std::uint16_t>(whole, form), testing::AnyOf(2, 6));
    for (const int other : {1, 3, 7, 9, 12}) {
        auto damaged = whole;
        set(damaged, form, static_cast<std::uint16_t>(other));
        EXPECT_EQ(parseError(damaged), "the file: chained fixups: pointers of form " +
                                           std::to_string(other) +
                                           " are not supported; those of arm64e are signed");
    }
}

TEST_P(ChainedFixups, withEveryByteWrongInTurn) {
    const auto whole = read("chainedOptimised/Plain");
    const auto command = findCommand(whole, chainedFixupsCommand);
    const auto table = get<std::uint32_t>(whole, command + 8);
    const auto size = get<std::uint32_t>(whole, command + 12);
    for (std::size_t at = table; at < table + size; ++at)
        for (const int flip : {0x01, 0x80, 0xff}) {
            auto damaged = whole;
            damaged[at] ^= static_cast<std::uint8_t>(flip);
            EXPECT_NE(parseError(damaged), "");
        }
}

} // namespace
