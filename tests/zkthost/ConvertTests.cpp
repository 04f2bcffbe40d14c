// zkthost convert: what the plug-in makes of a Cocoa object of the user's choice.

#include "Json.h"
#include "Zkthost.h"

#include <gmock/gmock.h>

#include <string>

using testing::MatchesRegex;
using testing::StartsWith;

namespace {

constexpr const char *accountLine =
    "[1-9][0-9]* calls, 0 objects and 0 strings live, no leaks, no violations";

class Convert : public testing::TestWithParam<ImageFile> {
protected:
    Finished convert(std::vector<std::string> arguments) {
        arguments.insert(arguments.begin(), "convert");
        return zkthost(std::move(arguments), GetParam().path);
    }
    /// The lines of the tree; the account behind them is in order.
    std::vector<std::string> tree(std::vector<std::string> arguments) {
        const Finished run = convert(std::move(arguments));
        expectSuccess(run);
        auto lines = linesOf(run.out);
        if (lines.size() < 3) {
            ADD_FAILURE() << run.out;
            return lines;
        }
        EXPECT_THAT(lines.back(), MatchesRegex(accountLine));
        EXPECT_EQ(lines[lines.size() - 2], "");
        lines.resize(lines.size() - 2);
        return lines;
    }
    std::vector<std::string> treeOf(std::string_view list) {
        return tree({"--plist", folder.write("a list.plist", list)});
    }
    Json jsonOf(std::string_view list) {
        const Finished run =
            convert({"--format", "json", "--plist", folder.write("list.plist", list)});
        expectSuccess(run);
        auto json = parsedJson(run.out);
        for (const char *leftover : {"liveObjects", "liveStrings", "leaks", "violations"})
            EXPECT_EQ(integerMember(member(json, "account"), leftover), 0) << leftover;
        return member(json, "value");
    }

    Folder folder;
};

INSTANTIATE_TEST_SUITE_P(, Convert, testing::ValuesIn(images()),
                         [](const auto &parameter) { return parameter.param.name; });

std::string xml(std::string_view body) {
    return "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<plist version=\"1.0\">" +
           std::string(body) + "</plist>\n";
}

} // namespace

TEST_P(Convert, ShowsAnExampleWithAValueOfEveryKind) {
    const auto lines = tree({});
    const std::vector<std::string> expected{"Dictionary, 13 entries",
                                            "  \"array\": Array, 3 elements",
                                            "    0: \"first\"",
                                            "    1: Array, 0 elements",
                                            "    2: Integer 3",
                                            "  \"boolean\": Boolean true",
                                            "  \"data\": MemoryBlock, 5 bytes: 68 65 6C 6C 6F",
                                            "  \"date\": Date 2001-01-0",
                                            "  \"decimal\": Double 0.25",
                                            "  \"dictionary\": Dictionary, 1 entry",
                                            "    \"inner\": \"Gr\u00FC\u00DFe\"",
                                            "  \"file\": FolderItem \"/usr\"",
                                            "  \"integer\": Integer 42",
                                            "  \"null\": nil",
                                            "  \"real\": Double 1.5",
                                            "  \"set\": Array, 1 element",
                                            "    0: \"element\"",
                                            R"(  "string": "text")",
                                            R"(  "url": "https://example.org/")"};
    ASSERT_EQ(lines.size(), expected.size());
    for (std::size_t i = 0; i < expected.size(); ++i)
        EXPECT_THAT(lines[i], StartsWith(expected[i]));
    // The day and hour are those of the process's time zone.
    EXPECT_THAT(lines[7], MatchesRegex("  \"date\": Date 2001-01-0[123] [0-9:]+:05"));
}

TEST_P(Convert, ReadsAPropertyListFile) {
    EXPECT_THAT(treeOf(xml("<array><string>a</string><integer>-7</integer></array>")),
                testing::ElementsAre("Array, 2 elements", "  0: \"a\"", "  1: Integer -7"));
    EXPECT_THAT(treeOf("{ key = (a, \"b c\"); }"),
                testing::ElementsAre("Dictionary, 1 entry", "  \"key\": Array, 2 elements",
                                     "    0: \"a\"", "    1: \"b c\""));
}

TEST_P(Convert, ReadsAListOfOneValue) {
    EXPECT_THAT(treeOf(xml("<string>one</string>")), testing::ElementsAre("\"one\""));
    EXPECT_THAT(treeOf(xml("<false/>")), testing::ElementsAre("Boolean false"));
    EXPECT_THAT(treeOf(xml("<dict/>")), testing::ElementsAre("Dictionary, 0 entries"));
}

TEST_P(Convert, SortsDictionariesByKey) {
    EXPECT_THAT(treeOf("{ b = 1; c = 2; a = 3; }"),
                testing::ElementsAre("Dictionary, 3 entries", "  \"a\": \"3\"", "  \"b\": \"1\"",
                                     "  \"c\": \"2\""));
}

TEST_P(Convert, ShowsTheFirstBytesOfALongBlock) {
    EXPECT_THAT(treeOf("<000102030405060708090a0b0c0d0e0f>"),
                testing::ElementsAre("MemoryBlock, 16 bytes: 00 01 02 03 04 05 06 07 08 09 0A 0B "
                                     "0C 0D 0E 0F"));
    EXPECT_THAT(treeOf("<000102030405060708090a0b0c0d0e0f1011>"),
                testing::ElementsAre("MemoryBlock, 18 bytes: 00 01 02 03 04 05 06 07 08 09 0A 0B "
                                     "0C 0D 0E 0F ..."));
    EXPECT_THAT(treeOf("<ff>"), testing::ElementsAre("MemoryBlock, 1 byte: FF"));
}

TEST_P(Convert, KeepsTextOnItsLine) {
    EXPECT_THAT(treeOf(xml("<string>a\nb\t\"c\" \\ \u2192</string>")),
                testing::ElementsAre("\"a\\nb\\t\\\"c\\\" \\\\ \u2192\""));
}

TEST_P(Convert, FollowsListsInLists) {
    constexpr std::size_t depth = 100;
    std::string list;
    for (std::size_t i = 0; i < depth; ++i)
        list += "<array>";
    for (std::size_t i = 0; i < depth; ++i)
        list += "</array>";
    const auto lines = treeOf(xml(list));
    ASSERT_EQ(lines.size(), depth);
    EXPECT_EQ(lines.front(), "Array, 1 element");
    EXPECT_EQ(lines.back(), std::string(2 * (depth - 1), ' ') + "0: Array, 0 elements");
}

TEST_P(Convert, WritesJson) {
    const auto value = jsonOf(xml("<dict><key>b</key><array><real>0.5</real></array>"
                                  "<key>a</key><data>aGVsbG8=</data></dict>"));
    EXPECT_EQ(stringMember(value, "type"), "Dictionary");
    const auto &entries = arrayMember(value, "entries");
    ASSERT_EQ(entries.size(), 2u);
    EXPECT_EQ(stringMember(member(entries[0], "key"), "value"), "a");
    const auto &block = member(entries[0], "value");
    EXPECT_EQ(stringMember(block, "type"), "MemoryBlock");
    EXPECT_EQ(integerMember(block, "size"), 5);
    EXPECT_EQ(stringMember(block, "bytes"), "68656C6C6F");
    const auto &list = member(entries[1], "value");
    EXPECT_EQ(stringMember(list, "type"), "Array");
    const auto &number = arrayMember(list, "elements").front();
    EXPECT_EQ(stringMember(number, "type"), "Double");
    EXPECT_EQ(member(number, "value"), 0.5);
}

TEST_P(Convert, WritesEveryByteOfABlockToJson) {
    std::string bytes;
    for (int i = 0; i < 40; ++i)
        bytes += "a5";
    const auto block = jsonOf('<' + bytes + '>');
    EXPECT_EQ(integerMember(block, "size"), 40);
    EXPECT_EQ(stringMember(block, "bytes").size(), 80u);
}

TEST_P(Convert, RefusesListsThatAreNestedTooDeeply) {
    const auto nested = [&](const std::string &begin, const std::string &end, int depth) {
        std::string text;
        for (int i = 0; i < depth; ++i)
            text += begin;
        for (int i = 0; i < depth; ++i)
            text += end;
        return text;
    };
    const std::string refusal = "is nested too deeply, 1000 levels are the most";
    const std::string file = folder.path() / "deep.plist";
    for (const int depth : {1001, 20'000}) {
        SCOPED_TRACE(depth);
        folder.write("deep.plist", xml(nested("<array>", "</array>", depth)));
        expectBadInput(convert({"--plist", file}), file + ": " + refusal);
        folder.write("deep.plist", nested("(", ")", depth));
        expectBadInput(convert({"--plist", file}), file + ": " + refusal);
    }
    EXPECT_EQ(treeOf(xml(nested("<array>", "</array>", 1000))).size(), 1000u);
    EXPECT_THAT(treeOf("( \"" + nested("(", "", 2000) + "\\\"\" )").size(), 2u)
        << "brackets in a text";
}

TEST_P(Convert, ReadsAFileWithANameThatIsNoUtf8) {
    if (isEmulated())
        GTEST_SKIP() << "an emulator shows GNUstep its own copy of the command line, as it was";
    EXPECT_THAT(tree({"--plist", folder.write("l\xFCst", "(a)")}),
                testing::ElementsAre("Array, 1 element", "  0: \"a\""));
}

TEST_P(Convert, MakesAnInstanceOfAClass) {
    EXPECT_THAT(tree({"--class", "NSMutableArray"}), testing::ElementsAre("Array, 0 elements"));
    EXPECT_THAT(tree({"--class", "NSMutableString"}), testing::ElementsAre("\"\""));
    EXPECT_THAT(tree({"--class", "NSDate"}).front(), StartsWith("Date 2"));
}

TEST_P(Convert, SaysHowTheHostGetsWrapperClasses) {
    EXPECT_THAT(tree({"--class", "NSFileManager"}),
                testing::ElementsAre("nil (the host has no class for it; --sibling wrappers adds "
                                     "the family's)"));
    EXPECT_THAT(tree({"--class", "NSFileManager", "--sibling", "wrappers"}),
                testing::ElementsAre("NSFileManagerZKT"));
    EXPECT_THAT(tree({"--class", "NSMutableAttributedString", "--sibling", "wrappers"}),
                testing::ElementsAre("NSAttributedStringZKT"));
    EXPECT_THAT(tree({"--class", "NSNull", "--sibling", "wrappers"}), testing::ElementsAre("nil"));
}

// On macOS they are Core Foundation's, as every object is.
TEST_P(Convert, TakesObjectsOfOtherClassesForCoreFoundations) {
    for (const char *type : {"NSObject", "NSLock", "NSProcessInfo"}) {
        SCOPED_TRACE(type);
        EXPECT_THAT(tree({"--class", type, "--sibling", "wrappers"}),
                    testing::ElementsAre("CFObjectZKT"));
        EXPECT_THAT(tree({"--class", type}),
                    testing::ElementsAre("nil (the host has no class for it; --sibling wrappers "
                                         "adds the family's)"));
    }
}

TEST_P(Convert, WritesAWrapperAndNothingAsJson) {
    const Finished wrapper =
        convert({"--class", "NSFileManager", "--sibling", "wrappers", "--format", "json"});
    expectSuccess(wrapper);
    EXPECT_EQ(stringMember(member(parsedJson(wrapper.out), "value"), "type"), "NSFileManagerZKT");
    const Finished nothing = convert({"--class", "NSNull", "--format", "json"});
    expectSuccess(nothing);
    EXPECT_TRUE(member(parsedJson(nothing.out), "value").is_null());
}

TEST_P(Convert, RefusesAClassThatMakesNoObject) {
    expectBadInput(convert({"--class", "NSNoSuchClass"}),
                   "--class NSNoSuchClass: this process has no such class");
    expectBadInput(convert({"--class", ""}), "--class");
    expectBadInput(convert({"--class", "NSProxy"}), "--class NSProxy: is no subclass of NSObject");
    expectBadInput(convert({"--class", "NSTimer"}), "--class NSTimer: alloc and init gave nil");
    expectBadInput(convert({"--class", "GSUTextString"}),
                   "--class GSUTextString: Foundation crashed");
    expectBadInput(convert({"--class", "NSAutoreleasePool"}),
                   "--class NSAutoreleasePool: alloc and init raised NSGenericException: ");
}

TEST_P(Convert, RefusesAFileThatItCannotRead) {
    const std::string missing = folder.path() / "missing.plist";
    expectBadInput(convert({"--plist", missing}),
                   "--plist " + missing + ": No such file or directory");
    expectBadInput(convert({"--plist", folder.path()}), folder.path().string() + ": is a folder");
}

TEST_P(Convert, RefusesAFileThatIsNoPropertyList) {
    const auto refuse = [&](std::string_view bytes, const std::string &mentioned) {
        SCOPED_TRACE(bytes);
        const std::string file = folder.write("no list", bytes);
        expectBadInput(convert({"--plist", file}), "--plist " + file + ": " + mentioned);
    };
    refuse("", "is empty");
    refuse("hello world", "is no property list");
    refuse("{ a = ", "is no property list");
    refuse(R"(<?xml version="1.0"?><plist version="1.0"><array></plist>)", "is no property list");
    refuse("bplist00", "is no property list");
    refuse(std::string("\0\1\2\3", 4), "is no property list");
}

TEST_P(Convert, RefusesTwoSources) {
    expectBadInput(convert({"--plist", folder.write("a", "a"), "--class", "NSObject"}), "--plist");
}

TEST_P(Convert, IsLostWithoutTheServicesItNeeds) {
    EXPECT_THAT(tree({"--without", "PluginObjectArrayInsertProc", "--class", "NSMutableArray"}),
                testing::ElementsAre("Array, 0 elements"));
    EXPECT_THAT(tree({"--without", "REALLoadObjectMethod"}),
                testing::ElementsAre("nil (the Dictionary was left empty)"));
    expectBadInput(convert({"--without", "PluginRegisterClass"}), "NSProcessInfoZKT");
}
