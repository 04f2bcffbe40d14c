// zkthost describe: the classes as the plug-in registers them, in each format.

#include "ExpectedClasses.h"
#include "Json.h"
#include "Zkthost.h"

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
};

INSTANTIATE_TEST_SUITE_P(, Describe, testing::Values(macosImage(), linuxImage()),
                         [](const auto &parameter) { return parameter.param.name; });

using Rows = std::vector<std::vector<std::string>>;

std::string access(const ExpectedProperty &property) {
    if (property.field >= 0)
        return "field at " + std::to_string(property.field);
    return property.writable ? "read and write" : "read-only";
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

void expectHeader(const llvm::json::Value &description, const char *name, int size, int offset,
                  bool hasConstructors) {
    EXPECT_EQ(stringMember(description, "name"), name);
    EXPECT_TRUE(member(description, "superclass").getAsNull());
    EXPECT_EQ(integerMember(description, "interfaceVersion"), 13);
    EXPECT_EQ(integerMember(description, "dataSize"), size);
    EXPECT_EQ(integerMember(description, "dataOffset"), offset);
    EXPECT_EQ(integerMember(description, "flags"), 4);
    EXPECT_EQ(member(description, "constructor").getAsBoolean(), hasConstructors);
    EXPECT_EQ(member(description, "destructor").getAsBoolean(), hasConstructors);
}

void expectProperties(const llvm::json::Value &description,
                      std::span<const ExpectedProperty> expected) {
    const auto &rows = arrayMember(description, "properties");
    ASSERT_EQ(rows.size(), expected.size());
    for (std::size_t i = 0; i < rows.size(); ++i) {
        SCOPED_TRACE(expected[i].name);
        EXPECT_EQ(stringMember(rows[i], "name"), expected[i].name);
        EXPECT_EQ(stringMember(rows[i], "type"), expected[i].type);
        EXPECT_EQ(member(rows[i], "writable").getAsBoolean(), expected[i].writable);
        EXPECT_EQ(member(rows[i], "fieldOffset").getAsInteger().value_or(-1), expected[i].field);
        EXPECT_EQ(integerMember(rows[i], "flags"), 6);
    }
}

void expectMethods(const llvm::json::Value &description, const char *table,
                   std::span<const ExpectedMethod> expected) {
    const auto &rows = arrayMember(description, table);
    ASSERT_EQ(rows.size(), expected.size());
    for (std::size_t i = 0; i < rows.size(); ++i) {
        EXPECT_EQ(stringMember(rows[i], "declaration"), expected[i].declaration);
        EXPECT_EQ(integerMember(rows[i], "flags"), expected[i].flags);
    }
}

} // namespace

TEST_P(Describe, AsTextShowsEveryRowInOrder) {
    EXPECT_THAT(textRows(described("text")), ElementsAreArray(expectedRows()));
}

TEST_P(Describe, AsMarkdownShowsEveryRowInOrder) {
    EXPECT_THAT(markdownRows(described("markdown")), ElementsAreArray(expectedRows()));
}

TEST_P(Describe, AsTextIsTheDefault) {
    const Finished run = zkthost({"describe"}, GetParam().path);
    expectSuccess(run);
    EXPECT_EQ(run.out, described("text"));
}

TEST_P(Describe, NamesBothClassesInOrderOfRegistration) {
    const std::string text = described("text");
    EXPECT_TRUE(text.starts_with("NSProcessInfoZKT\n"));
    EXPECT_NE(text.find("\n\nNSProcessInfoActivityZKT\n"), std::string::npos);
    const std::string markdown = described("markdown");
    EXPECT_TRUE(markdown.starts_with("# NSProcessInfoZKT\n"));
    EXPECT_NE(markdown.find("\n# NSProcessInfoActivityZKT\n"), std::string::npos);
}

TEST_P(Describe, AsJsonHasEveryRecord) {
    const auto json = parsedJson(described("json"));
    const auto *classes = json.getAsArray();
    ASSERT_NE(classes, nullptr);
    ASSERT_EQ(classes->size(), 2u);

    const llvm::json::Value &processInfo = classes->front();
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

    const llvm::json::Value &activity = classes->back();
    expectHeader(activity, "NSProcessInfoActivityZKT", 32, 64, false);
    expectProperties(activity, expectedActivityProperties);
    expectMethods(activity, "methods", expectedActivityMethods);
    expectMethods(activity, "sharedMethods", {});
    EXPECT_TRUE(arrayMember(activity, "constants").empty());
}

TEST(DescribeOfBothImages, IsTheSame) {
    for (const char *format : {"text", "json", "markdown"}) {
        SCOPED_TRACE(format);
        EXPECT_EQ(zkthost({"describe", "--format", format}, macosImage().path).out,
                  zkthost({"describe", "--format", format}, linuxImage().path).out);
    }
}
