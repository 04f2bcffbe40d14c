// zkthost describe: the facts of the file and the classes as the plug-in registers them, in each
// format.

#include "Descriptions.h"
#include "Json.h"
#include "Slices.h"
#include "Zkthost.h"
#include "tests/ExpectedClasses.h"

#include <gmock/gmock.h>

#include <span>
#include <sstream>

using testing::ElementsAreArray;

namespace {

class Describe : public testing::TestWithParam<ImageFile> {
protected:
    std::string described(const char *format) {
        const Finished run = zkthost({"describe", "--format", format}, GetParam().path);
        expectSuccess(run);
        return run.out;
    }
    std::string classes(const char *format) { return classesOf(described(format)); }
    Json image() { return member(parsedJson(described("json")), "image"); }
};

INSTANTIATE_TEST_SUITE_P(, Describe, testing::ValuesIn(images()),
                         [](const auto &parameter) { return parameter.param.name; });

using Rows = std::vector<std::vector<std::string>>;

std::string access(const ExpectedProperty &property) {
    if (property.field >= 0)
        return "field at " + std::to_string(property.field);
    return property.writable() ? "read and write" : "read-only";
}

/// Everything that a person is shown of the two classes, row by row.
Rows expectedRows() {
    Rows rows;
    const auto properties = [&](std::span<const ExpectedProperty> expected) {
        for (const ExpectedProperty &property : expected)
            rows.push_back({property.name, property.type, access(property)});
    };
    const auto methods = [&](std::span<const ExpectedMethod> expected) {
        for (const ExpectedMethod &method : expected)
            rows.push_back({method.declaration, std::to_string(method.flags)});
    };
    properties(expectedProperties);
    methods(expectedMethods);
    methods(expectedSharedMethods);
    for (const ExpectedConstant &constant : expectedConstants)
        rows.push_back({constant.declaration, std::to_string(constant.value)});
    properties(expectedActivityProperties);
    methods(expectedActivityMethods);
    return rows;
}

/// The columns of lines like "    name      type    access".
Rows textRows(const std::string &text) {
    Rows rows;
    for (const std::string &line : linesOf(text)) {
        if (!line.starts_with("    "))
            continue;
        std::vector<std::string> columns;
        for (std::size_t at = 4; at < line.size();) {
            const std::size_t end = std::min(line.find("  ", at), line.size());
            columns.push_back(line.substr(at, end - at));
            at = std::min(line.find_first_not_of(' ', end), line.size());
        }
        rows.push_back(columns);
    }
    return rows;
}

/// The columns of lines like "| `name` | type | access |".
Rows markdownRows(const std::string &text) {
    Rows rows;
    for (const std::string &line : linesOf(text)) {
        if (!line.starts_with("| `"))
            continue;
        std::vector<std::string> columns;
        std::istringstream stream(line.substr(2));
        for (std::string column; std::getline(stream, column, '|');) {
            std::erase(column, '`');
            const std::size_t first = column.find_first_not_of(' ');
            const std::size_t last = column.find_last_not_of(' ');
            if (first != std::string::npos)
                columns.push_back(column.substr(first, last - first + 1));
        }
        rows.push_back(columns);
    }
    return rows;
}

void expectHeader(const Json &description, const char *name, int size, int offset,
                  bool hasConstructors) {
    EXPECT_EQ(stringMember(description, "name"), name);
    EXPECT_TRUE(member(description, "superclass").is_null());
    EXPECT_EQ(integerMember(description, "interfaceVersion"), 13);
    EXPECT_EQ(integerMember(description, "dataSize"), size);
    EXPECT_EQ(integerMember(description, "dataOffset"), offset);
    EXPECT_EQ(integerMember(description, "flags"), 4);
    EXPECT_EQ(member(description, "constructor"), hasConstructors);
    EXPECT_EQ(member(description, "destructor"), hasConstructors);
}

void expectProperties(const Json &description, std::span<const ExpectedProperty> expected) {
    const auto &rows = arrayMember(description, "properties");
    ASSERT_EQ(rows.size(), expected.size());
    for (std::size_t i = 0; i < rows.size(); ++i) {
        SCOPED_TRACE(expected[i].name);
        EXPECT_EQ(stringMember(rows[i], "name"), expected[i].name);
        EXPECT_EQ(stringMember(rows[i], "type"), expected[i].type);
        EXPECT_EQ(member(rows[i], "writable"), expected[i].writable());
        const Json &offset = member(rows[i], "fieldOffset");
        EXPECT_EQ(offset.is_null() ? -1 : integerIn(offset), expected[i].field);
        EXPECT_EQ(integerMember(rows[i], "flags"), 6);
    }
}

void expectMethods(const Json &description, const char *table,
                   std::span<const ExpectedMethod> expected) {
    const auto &rows = arrayMember(description, table);
    ASSERT_EQ(rows.size(), expected.size());
    for (std::size_t i = 0; i < rows.size(); ++i) {
        EXPECT_EQ(stringMember(rows[i], "declaration"), expected[i].declaration);
        EXPECT_EQ(integerMember(rows[i], "flags"), expected[i].flags);
    }
}

void expectFactsOfTheBundle(const Json &part) {
    SCOPED_TRACE(stringMember(part, "processor"));
    EXPECT_EQ(stringMember(part, "kind"), "bundle");
    EXPECT_THAT(stringMember(part, "identity"),
                testing::MatchesRegex("[0-9A-F]{8}(-[0-9A-F]{4}){3}-[0-9A-F]{12}"));
    const auto &signature = member(part, "signature");
    EXPECT_EQ(member(signature, "adHoc"), true);
    EXPECT_EQ(stringMember(signature, "identifier"), "zkt.NSProcessInfoZKT");
    const auto &foundation = libraryOf(part, "/Foundation");
    EXPECT_EQ(member(foundation, "weak"), false);
    EXPECT_EQ(weakness(foundation, "OBJC_CLASS_$_NSProcessInfo"), false);
    EXPECT_EQ(weakness(foundation, "NSProcessInfoThermalStateDidChangeNotification"), true);
    EXPECT_EQ(weakness(foundation, "CFRelease"), std::nullopt);
    EXPECT_EQ(weakness(libraryOf(part, "/CoreFoundation"), "CFRelease"), false);
}

} // namespace

TEST_P(Describe, AsTextShowsEveryRowInOrder) {
    EXPECT_THAT(textRows(classes("text")), ElementsAreArray(expectedRows()));
}

TEST_P(Describe, AsMarkdownShowsEveryRowInOrder) {
    EXPECT_THAT(markdownRows(classes("markdown")), ElementsAreArray(expectedRows()));
}

TEST_P(Describe, AsTextIsTheDefault) {
    const Finished run = zkthost({"describe"}, GetParam().path);
    expectSuccess(run);
    EXPECT_EQ(run.out, described("text"));
}

TEST_P(Describe, NamesBothClassesInOrderOfRegistration) {
    const std::string text = classes("text");
    EXPECT_TRUE(text.starts_with("NSProcessInfoZKT\n"));
    EXPECT_NE(text.find("\n\nNSProcessInfoActivityZKT\n"), std::string::npos);
    const std::string markdown = classes("markdown");
    EXPECT_TRUE(markdown.starts_with("# NSProcessInfoZKT\n"));
    EXPECT_NE(markdown.find("\n# NSProcessInfoActivityZKT\n"), std::string::npos);
}

TEST_P(Describe, AsJsonHasEveryRecord) {
    const auto json = parsedJson(described("json"));
    EXPECT_EQ(integerMember(json, "schema"), 1);
    const auto &classes = arrayMember(json, "classes");
    ASSERT_EQ(classes.size(), 2u);

    const Json &processInfo = classes.front();
    expectHeader(processInfo, "NSProcessInfoZKT", 16, 48, true);
    expectProperties(processInfo, expectedProperties);
    expectMethods(processInfo, "methods", expectedMethods);
    expectMethods(processInfo, "sharedMethods", expectedSharedMethods);
    const auto &constants = arrayMember(processInfo, "constants");
    ASSERT_EQ(constants.size(), std::size(expectedConstants));
    for (std::size_t i = 0; i < constants.size(); ++i) {
        EXPECT_EQ(stringMember(constants[i], "name"), expectedConstants[i].name);
        EXPECT_EQ(stringMember(constants[i], "declaration"), expectedConstants[i].declaration);
        EXPECT_EQ(integerMember(constants[i], "value"), expectedConstants[i].value);
    }

    const Json &activity = classes.back();
    expectHeader(activity, "NSProcessInfoActivityZKT", 32, 64, false);
    expectProperties(activity, expectedActivityProperties);
    expectMethods(activity, "methods", expectedActivityMethods);
    expectMethods(activity, "sharedMethods", {});
    EXPECT_TRUE(arrayMember(activity, "constants").empty());
}

TEST_P(Describe, TellsWhatTheFileIs) {
    const auto image = this->image();
    EXPECT_EQ(stringMember(image, "file"), GetParam().executable);
    EXPECT_EQ(stringMember(image, "format"), GetParam().format);
    EXPECT_EQ(stringMember(image, "loaded"), processor::name);
    std::vector<std::string> processors;
    for (const Json &part : arrayMember(image, "parts"))
        processors.push_back(stringMember(part, "processor"));
    const std::vector<std::string> both{"x86_64", "arm64"};
    const std::vector<std::string> own{std::string(processor::name)};
    EXPECT_EQ(processors, image.at("format") == "Mach-O" ? both : own);
}

TEST_P(Describe, TellsPeopleWhatWasLoaded) {
    const std::string name(processor::name);
    EXPECT_THAT(described("text"), testing::HasSubstr("\n  Loaded       " + name + "\n"));
    EXPECT_THAT(described("markdown"), testing::HasSubstr("\n| Loaded | " + name + " |\n"));
}

TEST(DescribeOfAThinFile, TellsWhatWasLoaded) {
    const Folder folder;
    const auto file = folder.write("thin", sliceOf(readFile(macosImage().executable)));
    const auto json = parsedJson(zkthost({"describe", "--format", "json"}, file).out);
    const auto &image = member(json, "image");
    EXPECT_EQ(stringMember(image, "loaded"), processor::name);
    EXPECT_EQ(arrayMember(image, "parts").size(), 1u);
}

TEST(DescribeOfTheBundle, TellsItsFacts) {
    const auto json = parsedJson(zkthost({"describe", "--format", "json"}, macosImage().path).out);
    const auto &image = member(json, "image");
    EXPECT_EQ(stringMember(image, "identifier"), "zkt.NSProcessInfoZKT");
    EXPECT_THAT(stringMember(image, "version"), testing::MatchesRegex("[0-9]+\\.[0-9]+\\.[0-9]+"));
    const auto &parts = arrayMember(image, "parts");
    EXPECT_EQ(stringMember(parts.front(), "leastMacOS"), "10.9");
    EXPECT_EQ(stringMember(parts.front(), "builtForMacOS"), "10.11");
    EXPECT_EQ(stringMember(parts.back(), "leastMacOS"), "11.0");
    for (const Json &part : parts)
        expectFactsOfTheBundle(part);
}

TEST(DescribeOfTheBundle, TellsItsFactsToPeople) {
    const std::string text = zkthost({"describe"}, macosImage().path).out;
    EXPECT_TRUE(text.starts_with(macosImage().executable.string() +
                                 "\n  Format       Mach-O\n"
                                 "  Identifier   zkt.NSProcessInfoZKT\n"))
        << text;
    for (const char *line :
         {"\n  Processor    x86_64\n", "\n  Kind         bundle\n", "\n  Least macOS  10.9\n",
          "\n  Built for    macOS 10.11\n", "\n  Signature    ad hoc, as zkt.NSProcessInfoZKT\n",
          "\nImports for x86_64\n",
          "\n    NSProcessInfoThermalStateDidChangeNotification (if it is there)\n"})
        EXPECT_THAT(text, testing::HasSubstr(line));
    const std::string markdown =
        zkthost({"describe", "--format", "markdown"}, macosImage().path).out;
    for (const char *line : {"\n| Least macOS | 10.9 |\n", "\n# Imports for x86_64\n",
                             "\n- `NSProcessInfoThermalStateDidChangeNotification` (if it is "
                             "there)\n"})
        EXPECT_THAT(markdown, testing::HasSubstr(line));
}

TEST(DescribeOfAnUnsignedFile, SaysSo) {
    if (images().size() == 1 && processor::name == "arm64")
        GTEST_SKIP() << "a Mac with Apple silicon loads none";
    const std::filesystem::path unsignedImage =
        std::filesystem::path(WRONG_PLUGINS) / "macos/plugin";
    setenv("WRONG_PLUGIN_FAULT", "none", 1);
    const auto json = parsedJson(zkthost({"describe", "--format", "json"}, unsignedImage).out);
    const auto &image = member(json, "image");
    EXPECT_TRUE(member(image, "identifier").is_null());
    EXPECT_TRUE(member(arrayMember(image, "parts").front(), "signature").is_null());
    EXPECT_THAT(zkthost({"describe"}, unsignedImage).out,
                testing::HasSubstr("\n  Signature    none\n"));
}
