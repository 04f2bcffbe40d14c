// zkthost report: what a program sees of its own process, here of zkthost's.

#include "Json.h"
#include "Zkthost.h"

#include "host/processor/Processor.h"
#include "tests/ExpectedClasses.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <climits>
#include <cstdlib>
#include <unistd.h>

// Not every unistd.h declares it.
// NOLINTNEXTLINE(readability-redundant-declaration)
extern "C" char **environ;

using testing::HasSubstr;
using testing::MatchesRegex;

namespace {

class Report : public testing::TestWithParam<ImageFile> {
protected:
    Json reported(std::vector<std::string> options = {}) {
        options.insert(options.begin(), {"report", "--format", "json"});
        run = zkthost(options, GetParam().path);
        expectSuccess(run);
        return parsedJson(run.out);
    }
    Finished run = {};
};

INSTANTIATE_TEST_SUITE_P(, Report, testing::ValuesIn(images()),
                         [](const auto &parameter) { return parameter.param.name; });

/// A row of one of the report's tables.
const Json &row(const Json &report, const char *table, std::string_view name) {
    for (const Json &each : arrayMember(report, table))
        if (stringMember(each, "name") == name)
            return each;
    throw std::runtime_error("no row " + std::string(name));
}

const Json &property(const Json &report, std::string_view name) {
    return member(row(report, "properties", name), "value");
}

std::string hostName() {
    char name[_POSIX_HOST_NAME_MAX + 1] = {};
    gethostname(name, sizeof name);
    return name;
}

} // namespace

TEST_P(Report, ShowsEveryPropertyWithItsTypeInOrder) {
    const auto report = reported();
    const auto &rows = arrayMember(report, "properties");
    ASSERT_EQ(rows.size(), std::size(expectedProperties));
    for (std::size_t i = 0; i < rows.size(); ++i) {
        EXPECT_EQ(stringMember(rows[i], "name"), expectedProperties[i].name);
        EXPECT_EQ(stringMember(rows[i], "type"), expectedProperties[i].type);
        EXPECT_FALSE(rows[i].contains("exception"));
    }
}

TEST_P(Report, IsAboutTheProcessThatRan) {
    const auto report = reported();
    EXPECT_EQ(integerIn(property(report, "processIdentifier")), run.process);
    EXPECT_EQ(property(report, "processName"), "zkthost");
    EXPECT_EQ(integerIn(property(report, "argumentsCount")), 6)
        << "the program's name, report, --format, json, --image and the file";
}

TEST_P(Report, IsAboutThisMachine) {
    const auto report = reported();
    const auto memory = integerIn(property(report, "physicalMemory"));
    EXPECT_EQ(memory, sysconf(_SC_PHYS_PAGES) * sysconf(_SC_PAGESIZE));
    EXPECT_EQ(integerIn(property(report, "processorCount")), sysconf(_SC_NPROCESSORS_CONF));
    EXPECT_EQ(property(report, "hostName"), hostName());
    EXPECT_GT(property(report, "systemUptime"), 0.0);
    EXPECT_EQ(integerIn(property(report, "thermalState")), 0);
}

TEST_P(Report, ShowsTheArgumentsOfTheProcess) {
    const auto report = reported();
    const auto &rows = arrayMember(report, "arguments");
    ASSERT_EQ(rows.size(), 6u);
    EXPECT_EQ(stringMember(rows[1], "value"), "report");
    EXPECT_EQ(stringMember(rows[2], "value"), "--format");
    EXPECT_EQ(stringMember(rows[3], "value"), "json");
    EXPECT_EQ(stringMember(rows[4], "value"), "--image");
    EXPECT_EQ(stringMember(rows[5], "value"), GetParam().path);
}

TEST_P(Report, ShowsAnActivityThatWasBegunAndEnded) {
    const auto report = reported();
    const auto &rows = arrayMember(report, "activity");
    ASSERT_EQ(rows.size(), 6u);
    EXPECT_EQ(stringMember(rows[0], "type"), "NSProcessInfoActivityZKT");
    EXPECT_EQ(stringMember(rows[1], "name"), "Handle");
    EXPECT_NE(integerMember(rows[1], "value"), 0);
    EXPECT_EQ(stringMember(rows[2], "value"), "showing an activity");
    EXPECT_EQ(integerMember(rows[3], "value"), 255);
    EXPECT_EQ(stringMember(rows[4], "name"), "endActivity");
    EXPECT_EQ(stringMember(rows[5], "name"), "Handle after it");
    EXPECT_EQ(integerMember(rows[5], "value"), 0);
}

TEST_P(Report, ShowsTheNotificationsName) {
    constexpr const char *name = "NSProcessInfoThermalStateDidChangeNotification";
    const auto report = reported();
    ASSERT_EQ(arrayMember(report, "sharedMethods").size(), 1u);
    EXPECT_EQ(stringMember(row(report, "sharedMethods", name), "value"), name);
}

TEST_P(Report, ShowsEveryConstant) {
    const auto report = reported();
    const auto &rows = arrayMember(report, "constants");
    ASSERT_EQ(rows.size(), std::size(expectedConstants));
    for (std::size_t i = 0; i < rows.size(); ++i) {
        EXPECT_EQ(stringMember(rows[i], "name"), expectedConstants[i].name);
        EXPECT_EQ(integerMember(rows[i], "value"), expectedConstants[i].value);
    }
}

TEST_P(Report, SaysWhatItRanOn) {
    const auto report = reported();
    EXPECT_EQ(stringMember(report, "class"), "NSProcessInfoZKT");
    EXPECT_EQ(stringMember(report, "image"), GetParam().executable);
    EXPECT_EQ(stringMember(report, "imageFormat"), GetParam().format);
    EXPECT_EQ(stringMember(report, "processor"), processor::name);
    EXPECT_EQ(integerMember(report, "interfaceVersion"), 13);
    EXPECT_EQ(member(report, "hostVersion"), 2013.04);
}

TEST_P(Report, LeavesNothingBehind) {
    const auto report = reported();
    const auto &account = member(report, "account");
    EXPECT_GT(integerMember(account, "calls"), 0);
    for (const char *leftover : {"liveObjects", "liveStrings", "leaks", "violations"})
        EXPECT_EQ(integerMember(account, leftover), 0) << leftover;
}

TEST_P(Report, AsTextIsTheDefaultWithARowForEachThing) {
    const Finished text = zkthost({"report"}, GetParam().path);
    expectSuccess(text);
    for (const ExpectedProperty &expected : expectedProperties)
        EXPECT_THAT(text.out, testing::ContainsRegex(std::string("\n  ") + expected.name + " +" +
                                                     expected.type + " +[^ \n]"));
    for (const ExpectedConstant &expected : expectedConstants)
        EXPECT_THAT(text.out,
                    testing::ContainsRegex(std::string("\n  ") + expected.name + " +Integer +" +
                                           std::to_string(expected.value) + "\n"));
    EXPECT_THAT(text.out,
                HasSubstr(GetParam().executable.string() + " (" + GetParam().format + ", " +
                          std::string(processor::name) + "), interface version 13\n"));
}

TEST_P(Report, AsTextEndsWithTheAccount) {
    const auto lines = linesOf(zkthost({"report"}, GetParam().path).out);
    ASSERT_FALSE(lines.empty());
    EXPECT_THAT(lines.back(), MatchesRegex("[1-9][0-9]* calls, 0 objects and 0 strings live, "
                                           "no leaks, no violations"));
}

TEST_P(Report, HasNoColoursWhenItIsNotReadOnATerminal) {
    EXPECT_EQ(zkthost({"report"}, GetParam().path).out.find('\033'), std::string::npos);
}

TEST_P(Report, FollowsTheHostsVersion) {
    constexpr std::pair<const char *, int> rows[] = {
        {"2013.04", 13}, {"2013.035", 12}, {"2013.02", 11}, {"2012.5", 10}, {"2011.9", 9}, {"0", 9},
    };
    for (const auto &[version, interface] : rows)
        EXPECT_EQ(integerMember(reported({"--host-version", version}), "interfaceVersion"),
                  interface)
            << version;
}

TEST_P(Report, WorksWithEachSiblingAlone) {
    for (const char *sibling : {"exceptions", "registry", "none", "wrappers"}) {
        SCOPED_TRACE(sibling);
        const auto report = reported({"--sibling", sibling});
        EXPECT_EQ(arrayMember(report, "properties").size(), std::size(expectedProperties));
    }
}

TEST_P(Report, ShowsTheEnvironmentAsADictionary) {
    setenv("ZKTHOST_TEXT", "one \"two\" \xC3\xA9", 1);
    setenv("ZKTHOST_EMPTY", "", 1);
    const auto report = reported();
    const auto &environment = property(report, "environment");
    EXPECT_EQ(stringMember(environment, "ZKTHOST_TEXT"), "one \"two\" \xC3\xA9");
    EXPECT_EQ(stringMember(environment, "ZKTHOST_EMPTY"), "");
    std::size_t count = 0;
    while (environ[count] != nullptr)
        ++count;
    EXPECT_EQ(environment.size(), count);
}

TEST_P(Report, ListsTheEnvironmentSortedByName) {
    setenv("ZKTHOST_B", "line\nbreak", 1);
    setenv("ZKTHOST_A", "some text", 1);
    const Finished text = zkthost({"report"}, GetParam().path);
    expectSuccess(text);
    const auto lines = linesOf(text.out);
    const auto first = std::ranges::find(lines, "Environment");
    ASSERT_NE(first, lines.end());
    const auto last = std::find(first, lines.end(), "");
    EXPECT_TRUE(std::is_sorted(first + 1, last));
    const auto row = std::ranges::find_if(
        first, last, [](const std::string &line) { return line.starts_with("  ZKTHOST_A "); });
    ASSERT_NE(row, last);
    EXPECT_THAT(row[0], MatchesRegex("  ZKTHOST_A +String +some text"));
    EXPECT_THAT(row[1], MatchesRegex("  ZKTHOST_B +String +line break"));
    EXPECT_THAT(text.out, testing::ContainsRegex("\n  environment +Dictionary +" +
                                                 std::to_string(last - first - 1) + " entries\n"));
}

namespace {

/// Where the column begins that this text stands in, as a terminal counts; the row begins with
/// `name`.
std::ptrdiff_t columnOf(const std::string &report, const std::string &name,
                        const std::string &text) {
    for (const std::string &line : linesOf(report))
        if (line.starts_with("  " + name + ' ')) {
            // One column for each character of the names used here.
            const std::string before = line.substr(0, line.find(text));
            return std::ranges::count_if(before, [](char c) { return (c & 0xC0) != 0x80; });
        }
    return -1;
}

} // namespace

TEST_P(Report, ShowsVariablesWithNamesOfAnyLength) {
    const std::string name(300, 'N');
    setenv(name.c_str(), "its value", 1);
    const Finished text = zkthost({"report"}, GetParam().path);
    expectSuccess(text);
    EXPECT_THAT(text.out, HasSubstr("\n  " + name + "  String  its value\n"));
}

TEST_P(Report, HasTheWidthOfEachTableFromItsOwnRows) {
    const std::string longName(70, 'N');
    setenv(longName.c_str(), "its value", 1);
    const Finished text = zkthost({"report"}, GetParam().path);
    expectSuccess(text);
    std::size_t longest = 0;
    for (const ExpectedConstant &expected : expectedConstants)
        longest = std::max(longest, std::string_view(expected.name).size());
    EXPECT_EQ(columnOf(text.out, expectedConstants[0].name, "Integer"), 2 + longest + 2);
    EXPECT_EQ(columnOf(text.out, longName, "String"), 2 + 70 + 2);
}

TEST_P(Report, CountsColumnsAsATerminalDoes) {
    setenv("ZKTHOST_AOU", "plain letters", 1);
    setenv("ZKTHOST_\xC3\x84\xC3\x96\xC3\x9C", "letters of two bytes", 1);
    const Finished text = zkthost({"report"}, GetParam().path);
    expectSuccess(text);
    const auto plain = columnOf(text.out, "ZKTHOST_AOU", "String");
    EXPECT_GT(plain, 0);
    EXPECT_EQ(columnOf(text.out, "ZKTHOST_\xC3\x84\xC3\x96\xC3\x9C", "String"), plain);
}

TEST_P(Report, LetsNoControlCharacterThroughToATerminal) {
    // CSI as one character, DEL, a line separator; in a name too.
    setenv("ZKTHOST_C1",
           "a\xC2\x9B"
           "31m|\x7F|\xE2\x80\xA8.",
           1);
    setenv("ZKTHOST_\xC2\x9B", "named", 1);
    const Finished text = zkthost({"report"}, GetParam().path);
    expectSuccess(text);
    EXPECT_THAT(text.out, testing::ContainsRegex("\n  ZKTHOST_C1 +String +a 31m\\| \\| \\.\n"));
    EXPECT_THAT(text.out, testing::ContainsRegex("\n  ZKTHOST_  +String +named\n"));
}
