// The reference: what the command prints of the shipped bundle and of the words beside it, and that
// both agree with what is registered.

#include "Zkthost.h"
#include "tests/ExpectedClasses.h"

#include <gmock/gmock.h>

#include <regex>
#include <string_view>

using testing::ElementsAreArray;
using testing::HasSubstr;
using testing::Not;

namespace {

const std::filesystem::path documents = std::filesystem::path(SOURCE_FOLDER) / "docs";

Finished reference(const char *format, const std::filesystem::path &words,
                   const ImageFile &image = macosImage()) {
    return zkthost({"describe", "--format", format, "--words", words.string()}, image.path);
}

std::string printed(const char *format, const std::filesystem::path &words,
                    const ImageFile &image = macosImage()) {
    const Finished run = reference(format, words, image);
    expectSuccess(run);
    return run.out;
}

/// The words of the repository, to be changed.
class Reference : public testing::Test {
protected:
    Reference() { std::filesystem::copy(documents / "words", words.path()); }

    void replace(const char *name, std::string_view what, std::string_view by) const {
        std::string text = readFile(words.path() / name);
        const std::size_t place = text.find(what);
        ASSERT_NE(place, std::string::npos) << what;
        words.write(name, text.replace(place, what.size(), by));
    }

    Folder words;
};

/// What the first group of the expression finds, everywhere.
std::vector<std::string> allOf(const std::string &text, const char *expression) {
    const std::regex pattern(expression);
    std::vector<std::string> found;
    for (std::sregex_iterator match(text.begin(), text.end(), pattern), end; match != end; ++match)
        found.push_back((*match)[1]);
    return found;
}

std::string source(const char *file) {
    return readFile(std::filesystem::path(SOURCE_FOLDER) / file);
}

/// The part of a text between two others, which it has.
std::string between(const std::string &text, std::string_view begin, std::string_view end) {
    const std::size_t first = text.find(begin);
    const std::size_t last = text.find(end, first);
    if (last == std::string::npos)
        throw std::runtime_error(std::string(begin) + " and " + std::string(end) + " are missing");
    return text.substr(first, last - first);
}

} // namespace

// Whoever changes a row or its words makes both files anew: zkthost describe --words docs/words
// with --format markdown > docs/reference.md and --format html > docs/reference.html.
TEST(ReferenceFiles, AreWhatTheCommandPrintsOfEachImage) {
    const std::filesystem::path words = documents / "words";
    for (const ImageFile &image : images()) {
        EXPECT_TRUE(printed("markdown", words, image) == readFile(documents / "reference.md"))
            << image.name;
        EXPECT_TRUE(printed("html", words, image) == readFile(documents / "reference.html"))
            << image.name;
    }
}

TEST(ReferenceFiles, HaveEveryRowInOrder) {
    std::vector<std::string> declarations;
    std::vector<std::string> rows;
    const auto properties = [&](const auto &expected) {
        for (const ExpectedProperty &property : expected)
            declarations.push_back(std::string(property.name) + " As " + property.type);
    };
    const auto methods = [&](const auto &expected) {
        for (const ExpectedMethod &method : expected)
            declarations.emplace_back(method.declaration);
    };
    properties(expectedProperties);
    methods(expectedMethods);
    methods(expectedSharedMethods);
    properties(expectedActivityProperties);
    methods(expectedActivityMethods);
    for (const ExpectedConstant &constant : expectedConstants)
        rows.push_back('`' + std::string(constant.declaration) + "` | " +
                       std::to_string(constant.value) + " |");
    const std::string text = readFile(documents / "reference.md");
    EXPECT_THAT(allOf(text, "```vb\n([^\n]*)\n```\n"), ElementsAreArray(declarations));
    EXPECT_THAT(allOf(text, "\n\\| (`NS[^`|]*=[^|]*\\|[^|]*\\|)"), ElementsAreArray(rows));
}

TEST(ReferenceFiles, SayOfEachMemberWhatItRaisesAndSinceWhen) {
    const std::string text = readFile(documents / "reference.md");
    const std::string members = text.substr(0, text.find("\n## Conversion\n"));
    for (std::size_t at = members.find("\n#### "); at != std::string::npos;) {
        const std::size_t next = members.find("\n#### ", at + 1);
        const std::string member = members.substr(at, next - at);
        EXPECT_THAT(member, HasSubstr("\n- Raises: "));
        EXPECT_THAT(member, HasSubstr("\n- Since: "));
        // What gives something says what that is when there is nothing to give.
        if (std::regex_search(member, std::regex("```vb\n[^\n]* [Aa]s [^\n)]*(\\(\\))?\n```")))
            EXPECT_THAT(member, HasSubstr("\n- Without an answer: "));
        at = next;
    }
}

TEST(ReferenceFiles, HaveTheConversionsTables) {
    const std::string text = readFile(documents / "reference.md");
    const std::string table = source("convert/ConversionTable.h");
    std::vector<std::string> classes =
        allOf(table, R"re(\{"(\w+)", how::(?:registered|nearest|view)\})re");
    for (const std::string &late :
         allOf(source("convert/TableSearch.mm"), R"re(LateClass \w+\{"(\w+)"\})re"))
        classes.push_back(late);
    ASSERT_EQ(classes.size(), 109u);
    EXPECT_THAT(allOf(between(text, "\n#### Wrapper classes\n", "\n#### Core"), R"(\n\| `(\w+)`)"),
                ElementsAreArray(classes));

    const std::string types = source("convert/CoreFoundationWrapper.mm");
    const std::string section = text.substr(text.find("\n#### Core Foundation types\n"));
    EXPECT_THAT(allOf(section, R"(\n\| `(\w+)`)"),
                ElementsAreArray(allOf(types, R"(\{(\w+)GetTypeID, )")));
    std::vector<std::string> wrappers = allOf(types, R"re(GetTypeID, "(\w+)"\})re");
    ASSERT_EQ(wrappers.size(), 26u);
    wrappers.emplace_back("CFObjectZKT");
    EXPECT_THAT(allOf(section, R"(\| `(\w+)` \|\n)"), ElementsAreArray(wrappers));
}

TEST(ReferenceFiles, AreOnePageThatNeedsNothingElse) {
    const std::string page = readFile(documents / "reference.html");
    EXPECT_THAT(page, Not(HasSubstr("://")));
    EXPECT_THAT(page, Not(HasSubstr("src=")));
    EXPECT_THAT(page, HasSubstr("prefers-color-scheme: dark"));
    EXPECT_THAT(page, HasSubstr(R"(id="NSProcessInfoZKT.hostName")"));
}

TEST_F(Reference, NeedsWordsForEveryMemberAndConstant) {
    replace("NSProcessInfoZKT.md", "## hostName", "and");
    expectBadInput(reference("markdown", words.path()),
                   "NSProcessInfoZKT.md: has no words for hostName");
}

TEST_F(Reference, NeedsMoreThanTheName) {
    const std::string text = readFile(words.path() / "NSProcessInfoActivityZKT.md");
    words.write("NSProcessInfoActivityZKT.md", text.substr(0, text.find("What the host calls")));
    expectBadInput(reference("html", words.path()), "has no words for Destructor");
}

TEST_F(Reference, RefusesWordsThatDescribeNothing) {
    replace("NSProcessInfoZKT.md", "## hostName", "## hostname\nWhat?\n\n## hostName");
    expectBadInput(reference("markdown", words.path()),
                   "has words for hostname, which is not registered");
}

TEST_F(Reference, RefusesTwoWordsForOne) {
    replace("NSProcessInfoZKT.md", "## hostName", "## Handle\nWhat?\n\n## hostName");
    expectBadInput(reference("markdown", words.path()), "has words for Handle twice");
}

TEST_F(Reference, RefusesAFileForNoClass) {
    words.write("NSTaskZKT.md", "What?\n");
    expectBadInput(reference("markdown", words.path()),
                   "NSTaskZKT.md: describes no registered class");
}

TEST_F(Reference, NeedsAFileForEachClass) {
    std::filesystem::remove(words.path() / "NSProcessInfoActivityZKT.md");
    expectBadInput(reference("markdown", words.path()), "has no file NSProcessInfoActivityZKT.md");
}

TEST_F(Reference, NeedsToSayWhatAClassIsFor) {
    const std::string text = readFile(words.path() / "NSProcessInfoActivityZKT.md");
    words.write("NSProcessInfoActivityZKT.md", text.substr(text.find("## Handle")));
    expectBadInput(reference("markdown", words.path()),
                   "does not begin with what the class is for");
}

TEST_F(Reference, NamesAFolderThatIsNotThere) {
    expectBadInput(reference("html", words.path() / "none"), "none: No such file or directory");
}

TEST_F(Reference, ShowsWhatIsHtmlInWordsAsText) {
    replace("NSProcessInfoZKT.md", "## hostName\n", "## hostName\nA <b>&amp; `<i>&`\n\n");
    EXPECT_THAT(printed("html", words.path()),
                HasSubstr("<p>A &lt;b&gt;&amp; <code>&lt;i&gt;&amp;</code></p>"));
}

TEST_F(Reference, KeepsBarsOfWordsInTheirCell) {
    replace("NSProcessInfoZKT.md", "Windows NT; never", "one|two\nthree; never");
    EXPECT_THAT(
        printed("markdown", words.path()),
        HasSubstr("| `NSWindowsNTOperatingSystem=1` | 1 | `operatingSystem`: one\\|two three; "
                  "never on macOS. |\n"));
}
