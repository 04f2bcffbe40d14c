#include "host/language/Declaration.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace {

using namespace host;
using testing::HasSubstr;
using testing::SizeIs;
using testing::ThrowsMessage;

TEST(Declaration, MethodWithParametersAndResult) {
    const MethodDeclaration method = parseMethod("argument(index as integer) as string");
    EXPECT_EQ(method.name, "argument");
    ASSERT_THAT(method.parameters, SizeIs(1));
    EXPECT_EQ(method.parameters[0].name, "index");
    EXPECT_EQ(method.parameters[0].type.kind, TypeKind::integer);
    ASSERT_TRUE(method.result);
    EXPECT_EQ(method.result->kind, TypeKind::string);
}

TEST(Declaration, MethodWithoutParenthesesHasNoParameters) {
    const MethodDeclaration method = parseMethod("processInfo as NSProcessInfoZKT");
    EXPECT_EQ(method.name, "processInfo");
    EXPECT_THAT(method.parameters, SizeIs(0));
    ASSERT_TRUE(method.result);
    EXPECT_EQ(method.result->kind, TypeKind::object);
    EXPECT_EQ(method.result->className, "NSProcessInfoZKT");
}

TEST(Declaration, BareNameIsAProcedure) {
    const MethodDeclaration method = parseMethod("disableSuddenTermination");
    EXPECT_EQ(method.name, "disableSuddenTermination");
    EXPECT_FALSE(method.result);
}

TEST(Declaration, ArrayResult) {
    const MethodDeclaration method = parseMethod("arguments as string()");
    ASSERT_TRUE(method.result);
    EXPECT_TRUE(method.result->isArray);
    EXPECT_EQ(method.result->kind, TypeKind::string);
}

TEST(Declaration, ArrayBracketsMayStandBehindTheParameter) {
    EXPECT_TRUE(parseMethod("join(parts() as String)").parameters[0].type.isArray);
    EXPECT_TRUE(parseMethod("join(parts as String())").parameters[0].type.isArray);
}

TEST(Declaration, AssignsMarksTheLastParameter) {
    const MethodDeclaration method =
        parseMethod("Value(key As Variant, Assigns _value As Variant)");
    ASSERT_THAT(method.parameters, SizeIs(2));
    EXPECT_FALSE(method.parameters[0].assigns);
    EXPECT_TRUE(method.parameters[1].assigns);
    EXPECT_EQ(method.parameters[1].name, "_value");
}

TEST(Declaration, ParameterListWithoutAName) {
    const MethodDeclaration method = parseMethod(
        "Year as Integer, Month as Integer = 1, Day as Integer = 1, hour as Integer = 0");
    EXPECT_EQ(method.name, "");
    ASSERT_THAT(method.parameters, SizeIs(4));
    EXPECT_FALSE(method.parameters[0].defaultValue);
    EXPECT_EQ(method.parameters[1].defaultValue, "1");
    EXPECT_EQ(method.parameters[3].defaultValue, "0");
    EXPECT_FALSE(method.result);
}

TEST(Declaration, EveryTypeName) {
    const std::pair<const char *, TypeKind> rows[] = {
        {"Boolean", TypeKind::boolean}, {"Integer", TypeKind::integer},
        {"Int64", TypeKind::integer},   {"Int32", TypeKind::int32},
        {"UInt32", TypeKind::uint32},   {"UInt64", TypeKind::uint64},
        {"Double", TypeKind::real},     {"Single", TypeKind::single},
        {"String", TypeKind::string},   {"Ptr", TypeKind::pointer},
        {"Variant", TypeKind::variant}, {"Date", TypeKind::object}};
    for (const auto &[name, kind] : rows)
        EXPECT_EQ(parseType(name).kind, kind) << name;
}

TEST(Declaration, WidthsOfFields) {
    const std::pair<const char *, std::size_t> rows[] = {
        {"Boolean", 1}, {"Int32", 4},   {"UInt32", 4}, {"Single", 4},
        {"Integer", 8}, {"UInt64", 8},  {"Double", 8}, {"String", 8},
        {"Ptr", 8},     {"Variant", 8}, {"Date", 8},   {"Int32()", 8}};
    for (const auto &[name, width] : rows)
        EXPECT_EQ(widthOf(parseType(name)), width) << name;
}

TEST(Declaration, CaseAndBlanksDoNotMatter) {
    const MethodDeclaration spacious = parseMethod("  LENB  (  S   AS   STRING  )   AS\tINTEGER  ");
    const MethodDeclaration dense = parseMethod("lenb(s as string)as integer");
    EXPECT_TRUE(sameSignature(spacious, dense));
}

TEST(Declaration, ParameterNamesAndDefaultsAreNoPartOfTheSignature) {
    EXPECT_TRUE(sameSignature(parseMethod("f(a as Integer = 1)"), parseMethod("F(b as integer)")));
}

TEST(Declaration, SignaturesDiffer) {
    const MethodDeclaration base = parseMethod("f(a as Integer) as String");
    for (const char *other :
         {"g(a as Integer) as String", "f(a as Int32) as String", "f(a as Integer)",
          "f(a as Integer) as Variant", "f as String", "f(a as Integer, b as Integer) as String",
          "f(Assigns a as Integer) as String", "f(a as Integer()) as String"})
        EXPECT_FALSE(sameSignature(base, parseMethod(other))) << other;
}

TEST(Declaration, ClassNamesCompareWithoutCase) {
    EXPECT_EQ(parseType("nsprocessinfozkt"), parseType("NSProcessInfoZKT"));
    EXPECT_NE(parseType("Date"), parseType("Dictionary"));
}

TEST(Declaration, DescribesAsAProgramWouldWriteIt) {
    EXPECT_EQ(describe(parseMethod("value( key as variant , assigns v as variant )")),
              "value(key As Variant, Assigns v As Variant)");
    EXPECT_EQ(describe(parseMethod("arguments as string()")), "arguments As String()");
    EXPECT_EQ(describe(parseMethod("a as integer, b as integer=2")),
              "a As Integer, b As Integer = 2");
}

TEST(Declaration, BadMethodsNameTheColumn) {
    const std::pair<const char *, const char *> rows[] = {
        {"", "column 1: expected a name"},
        {"1st", "column 1: expected a name"},
        {"f(", "column 3: expected a parameter"},
        {"f(a", "column 4: expected \"as\""},
        {"f(a integer)", "column 5: expected \"as\""},
        {"f(a as )", "column 8: expected a type"},
        {"f(a as integer", "column 15: expected \")\""},
        {"f(a as integer) string", "column 17: expected the end"},
        {"f() as", "column 7: expected a type"},
        {"f(a as integer,)", "column 16: expected a parameter"},
        {"f(a as string(1))", "column 15: expected \")\""},
        {"f(Assigns a as integer, b as integer)", "column 25: expected nothing behind"},
        {"f(a() as string())", "expected one pair of brackets"},
        {"f(a as string = \"x)", "expected a closing quote"},
        {"as as integer", "column 1: expected a name"},
    };
    for (const auto &[text, message] : rows)
        EXPECT_THAT([text = text] { parseMethod(text); },
                    ThrowsMessage<DeclarationError>(HasSubstr(message)))
            << text;
}

TEST(Declaration, Constants) {
    const std::tuple<const char *, const char *, std::int64_t> rows[] = {
        {"NSWindowsNTOperatingSystem=1", "NSWindowsNTOperatingSystem", 1},
        {"NSActivityBackground = &h000000FF", "NSActivityBackground", 0xFF},
        {"NSActivityLatencyCritical = &hFF00000000", "NSActivityLatencyCritical", 0xFF00000000},
        {"a=-5 ", "a", -5},
        {"b =&HffffFFFFffffFFFF", "b", -1},
        {"c=&b101", "c", 5},
        {"d=&o17", "d", 15},
        {"e=9223372036854775807", "e", INT64_MAX},
        {"f=-9223372036854775808", "f", INT64_MIN},
    };
    for (const auto &[text, name, value] : rows) {
        const ConstantDeclaration constant = parseConstant(text);
        EXPECT_EQ(constant.name, name);
        EXPECT_EQ(constant.value, value) << text;
    }
}

TEST(Declaration, BadConstants) {
    const std::pair<const char *, const char *> rows[] = {
        {"NSThing", "column 8: expected \"=\""},
        {"= 1", "column 1: expected a name"},
        {"a =", "column 4: expected an integer"},
        {"a = 1 2", "column 5: expected an integer"},
        {"a = &hXY", "expected an integer"},
        {"a = &q1", "expected an integer"},
        {"a = 9223372036854775808", "expected an integer"},
        {"a = -9223372036854775809", "expected an integer"},
        {"a = &h10000000000000000", "expected an integer"},
        {"a = \"text\"", "expected an integer"},
    };
    for (const auto &[text, message] : rows)
        EXPECT_THAT([text = text] { parseConstant(text); },
                    ThrowsMessage<DeclarationError>(HasSubstr(message)))
            << text;
}

} // namespace
