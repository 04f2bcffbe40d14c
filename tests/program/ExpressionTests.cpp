// Expressions and what Print shows of them.

#include "Ran.h"

#include <gtest/gtest.h>

#include <string>

namespace {

struct Row {
    const char *expression;
    const char *printed;
};

void expectEach(std::initializer_list<Row> rows) {
    // One program for all: a host for each would take longer than the expressions.
    std::string program;
    std::string printed;
    for (const auto &[expression, text] : rows) {
        program += std::string("Print ") + expression + '\n';
        printed += std::string(text) + '\n';
    }
    expectPrints(program, printed);
}

} // namespace

TEST(Expression, Literals) {
    expectEach({{"42", "42"},
                {"&hFF", "255"},
                {"&b101", "5"},
                {"&o17", "15"},
                {"&hFFFFFFFFFFFFFFFF", "-1"},
                {"18446744073709551615", "18446744073709551615"},
                {"-9223372036854775808", "-9223372036854775808"},
                {"1.5e3", "1500"},
                {"\"a \"\"quoted\"\" word\"", "a \"quoted\" word"},
                {"\"\"", ""},
                {"True, FALSE, nil", "True False Nil"}});
}

TEST(Expression, DoublesAreTheShortestTextThatReadsBack) {
    expectEach({{"3.0", "3"},
                {"0.1", "0.1"},
                {"1 / 3", "0.3333333333333333"},
                {"1e21", "1e+21"},
                {"1 / 0", "inf"},
                {"-1 / 0", "-inf"}});
}

TEST(Expression, PrecedenceFromWeakToStrong) {
    expectEach({{"1 + 2 * 3", "7"},
                {"(1 + 2) * 3", "9"},
                {"-2 ^ 2", "-4"},
                {"2 ^ -1", "0.5"},
                {"2 ^ 3 ^ 2", "64"},
                {"10 - 4 - 3", "3"},
                {"2 * 3 Mod 4", "2"},
                {"1 + 1 = 2", "True"},
                {"Not 1 = 2", "True"},
                {"Not False And False", "False"},
                {"True Or True And False", "True"},
                {"True Xor True Or True", "True"},
                {"False Or True Xor True", "False"},
                {"True Xor False And False", "True"},
                {"1 < 2 = True", "True"},
                {"+5 - +2", "3"}});
}

TEST(Expression, IntegersAndDoubles) {
    expectEach({{"7 / 2", "3.5"},
                {"7 \\ 2, -7 \\ 2", "3 -3"},
                {"7 Mod 3, -7 Mod 3, 7 Mod -3", "1 -1 1"},
                {"7.5 \\ 2, 7.5 Mod 2", "3 1"},
                {"5 \\ 0.5", "10"},
                {"1 + 0.5", "1.5"},
                {"2 ^ 10", "1024"},
                {"18446744073709551615 - 1", "18446744073709551614"},
                {"18446744073709551615 > -1", "True"},
                {"9007199254740993 = 9007199254740992.0", "False"}});
}

TEST(Expression, LogicWorksOnBitsAndOnBooleans) {
    expectEach({{"12 And 10, 12 Or 10, 12 Xor 10", "8 14 6"},
                {"Not 0, Not 5", "-1 -6"},
                {"True And False, True Or False, True Xor True", "False True False"},
                {"&hFF00000000 Or &hFF", "1095216660735"}});
}

TEST(Expression, TheRightSideOfAndAndOrIsEvaluatedOnlyIfItDecides) {
    expectPrints("Function Told(truth As Boolean) As Boolean\n"
                 "Print \"asked\"\n"
                 "Return truth\n"
                 "End Function\n"
                 "Print False And Told(True)\n"
                 "Print True Or Told(True)\n"
                 "Print True And Told(True)\n",
                 "False\nTrue\nasked\nTrue\n");
}

TEST(Expression, Strings) {
    expectEach(
        {{"\"a\" + \"b\"", "ab"},
         {"\"a\" = \"a\", \"a\" = \"A\", \"a\" < \"b\"", "True False True"},
         {"\"\" + \"\" = \"\"", "True"},
         {"Len(\"Grüße\")", "5"},
         {"Left(\"Grüße\", 3), Right(\"Grüße\", 2), Mid(\"Grüße\", 3, 2)", "Grü ße üß"},
         {"Mid(\"abc\", 2), Mid(\"abc\", 9) + \".\"", "bc ."},
         {"Left(\"abc\", -1) + Left(\"abc\", 99)", "abc"},
         {"InStr(\"banana\", \"an\"), InStr(3, \"banana\", \"an\"), InStr(\"ü!\", \"!\")", "2 4 2"},
         {"InStr(\"abc\", \"x\")", "0"},
         {"Uppercase(\"straße\"), Lowercase(\"ÀB\")", "STRASSE àb"},
         {"Trim(\"  a b \") + \".\"", "a b."},
         {"Str(1.50) + Str(True) + Str(\"x\")", "1.5Truex"},
         {"Val(\"12.5 apples\"), Val(\"none\"), Val(\" 7\")", "12.5 0 7"},
         {"Len(Chr(10)), Chr(228)", "1 ä"}});
}

TEST(Expression, Arrays) {
    expectEach({{"Ubound(Array(1, 2, 3))", "2"},
                {"Array(1, 2, 3)(1)", "2"},
                {"Array(\"a\", \"b\")(0)", "a"},
                {"Array(1, 2.5)(0)", "1"},
                {"Array(1, \"a\", True)(1)", "a"},
                {"Ubound(Array())", "-1"},
                {"Join(Split(\"a,b,,c\", \",\"), \"-\")", "a-b--c"},
                {"Ubound(Split(\"a,\", \",\")), Ubound(Split(\"\", \",\"))", "1 -1"},
                {"Join(Array(\"x\", \"y\"))", "x y"}});
}

TEST(Expression, ObjectsAreShownByClass) {
    expectEach({{"New Dictionary", "Dictionary"},
                {"New Date(2026, 2, 30).Month", "3"},
                {"(New Date(2026)).Year", "2026"},
                {"New Dictionary Is Nil, New Dictionary <> Nil", "False True"},
                {"New KeyNotFoundException IsA RuntimeException", "True"},
                {"New RuntimeException IsA KeyNotFoundException, Nil IsA Date", "False False"},
                {"Array(1)", "Array"}});
}

TEST(Expression, NamesInAnyCase) {
    expectPrints("dim Name as string = \"a\"\nPRINT nAME, UPPERCASE(name)\n", "a A\n");
}

TEST(Expression, VariantsUnboxByUse) {
    expectPrints("Dim v As Variant = 5\n"
                 "Dim n As Integer = v\n"
                 "Print v + 1, v = 5, v / 2, n, v = \"5\"\n"
                 "v = \"text\"\n"
                 "Dim s As String = v\n"
                 "Print v + \"!\", Len(v), s\n"
                 "v = \"\"\n"
                 "Print v Is Nil, v = \"\", v = Nil\n"
                 "v = Nil\n"
                 "Print v Is Nil, v = \"\", v\n"
                 "v = New Dictionary\n"
                 "Dim d As Dictionary = v\n"
                 "Print v IsA Dictionary, d Is v, v\n"
                 "v = 18446744073709551615 - 18446744073709551610\n"
                 "Print v\n",
                 "6 True 2.5 5 False\ntext! 4 text\nFalse True False\nTrue False Nil\n"
                 "True True Dictionary\n5\n");
}

TEST(Expression, MembersOfTheHostsOwnClasses) {
    expectPrints("Dim d As New Dictionary\n"
                 "d.Value(\"one\") = 1\n"
                 "d.Value(2) = \"two\"\n"
                 "d.Value(\"one\") = 1.5\n"
                 "Print d.Count, d.Value(\"one\"), d.Value(2), d.HasKey(2), d.HasKey(\"2\")\n"
                 "Print d.Lookup(\"x\", \"none\"), d.Lookup(2, \"none\"), d.Lookup(3, Nil) Is Nil\n"
                 "For Each k As Variant In d.Keys\nPrint k\nNext\n"
                 "Print Ubound(d.Values), d.Values(1), d.Key(0)\n"
                 "Dim m As New MemoryBlock(3)\n"
                 "m.Byte(1) = 257\n"
                 "Print m.Size, m.Byte(1)\n"
                 "Dim e As New OutOfBoundsException(\"text\", 7)\n"
                 "Print e.Message, e.ErrorNumber\n"
                 "e.Message = \"other\"\n"
                 "Print e.Message\n"
                 "Dim when As New Date(2026, 1, 31)\n"
                 "when.Month = 2\n"
                 "Print when.Day, when.Month\n",
                 "2 1.5 two True False\nnone two True\none\n2\n1 two one\n3 1\ntext 7\nother\n"
                 "3 3\n");
}
