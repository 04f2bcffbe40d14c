#include "Ran.h"

#include <gtest/gtest.h>

TEST(Statement, DimDeclaresSeveralVariablesWithTheirTypesFirstValues) {
    expectPrints("Dim a, b As Integer\nDim s As String, x As Double\nDim t As Boolean\n"
                 "Dim d As Date\nDim v As Variant\nPrint a, b, s + \".\", x, t, d, v\n",
                 "0 0 . 0 False Nil Nil\n");
    expectPrints("Dim a, b As Integer = 5\nDim c As New Date(2026), d As Date = c\n"
                 "Print a, b, d.Year\n",
                 "5 5 2026\n");
}

TEST(Statement, ArraysGrowAndShrink) {
    expectPrints("Dim a() As Integer\nDim b(2) As String\nPrint Ubound(a), a.Ubound, Ubound(b)\n"
                 "a.Append 5\na.Append(3)\na.Insert 0, 9\na(1) = a(1) * 2\n"
                 "Print a(0), a(1), a(2), a.IndexOf(3), a.IndexOf(4)\n"
                 "a.Sort\nPrint a(0), a(1), a(2)\na.Remove 1\nPrint Ubound(a), a(1)\n"
                 "ReDim a(3)\nPrint Ubound(a), a(3)\nReDim a(-1)\nPrint Ubound(a)\n"
                 "Dim c() As String = Array(\"b\", \"\", \"a\")\nc.Sort\nPrint Join(c, \"|\")\n",
                 "-1 -1 2\n9 10 3 2 -1\n3 9 10\n1 10\n3 0\n-1\n|a|b\n");
}

TEST(Statement, ArraysAreSharedNotCopied) {
    expectPrints("Sub Fill(values() As Integer)\nvalues.Append 1\nEnd Sub\n"
                 "Dim a() As Integer\nDim b() As Integer = a\nFill(a)\nPrint Ubound(b)\n",
                 "0\n");
}

TEST(Statement, IfTakesTheFirstTrueBranch) {
    expectPrints("Sub Tell(n As Integer)\nIf n < 0 Then\nPrint \"minus\"\nElseIf n = 0 Then\n"
                 "Print \"zero\"\nElse If n = 1 Then\nPrint \"one\"\nElse\nPrint \"many\"\nEnd If\n"
                 "End Sub\nTell -1\nTell 0\nTell 1\nTell 2\n",
                 "minus\nzero\none\nmany\n");
}

TEST(Statement, IfOnOneLine) {
    expectPrints("If 1 = 1 Then Print \"yes\"\nIf 1 = 2 Then Print \"yes\" Else Print \"no\"\n"
                 "If 1 = 2 Then Print 1 ElseIf True Then Print 2 Else Print 3\n"
                 "If True Then If False Then Print 4 Else Print 5\n",
                 "yes\nno\n2\n5\n");
}

TEST(Statement, ForCountsUpAndDown) {
    expectPrints("For i As Integer = 1 To 3\nPrint i\nNext\n"
                 "For i As Integer = 3 DownTo 1 Step 2\nPrint i\nNext i\n"
                 "For i As Integer = 2 To 1 Step -1\nPrint i\nNext\n"
                 "For x As Double = 0 To 1 Step 0.5\nPrint x\nNext\n"
                 "For i As Integer = 2 To 1\nPrint \"never\"\nNext\n"
                 "Dim n As Integer\nFor n = 1 To 2\nNext\nPrint n\n",
                 "1\n2\n3\n3\n1\n2\n1\n0\n0.5\n1\n2\n");
}

TEST(Statement, ForEndsAtTheLastNumberThereIs) {
    expectPrints("For i As Integer = 9223372036854775806 To 9223372036854775807\nPrint i\nNext\n",
                 "9223372036854775806\n9223372036854775807\n");
}

TEST(Statement, ForEachGoesThroughAnArray) {
    expectPrints("For Each s As String In Array(\"a\", \"b\")\nPrint s\nNext\n"
                 "Dim a() As Integer = Array(1, 2)\nFor Each n As Integer In a\n"
                 "If n < 3 Then a.Append n + 2\nPrint n\nNext\n",
                 "a\nb\n1\n2\n3\n4\n");
}

TEST(Statement, WhileRunsAsLongAsItsConditionHolds) {
    expectPrints("Dim n As Integer = 3\nWhile n > 0\nPrint n\nn = n - 1\nWend\n", "3\n2\n1\n");
}

TEST(Statement, ExitLeavesTheInnermostOfItsKind) {
    expectPrints("For i As Integer = 1 To 9\nWhile True\nIf i = 2 Then Exit For\nExit While\nWend\n"
                 "Print i\nNext\n"
                 "Sub Leave\nFor Each x As Integer In Array(1, 2)\nIf x = 1 Then Exit Sub\nNext\n"
                 "Print \"never\"\nEnd Sub\nLeave\n"
                 "Function Two As Integer\nExit Function\nEnd Function\nPrint Two\n",
                 "1\n0\n");
}

TEST(Statement, ProceduresAreCalledWithAndWithoutBrackets) {
    expectPrints("Print Twice(4), Nothing\nTell \"a\", 1\nTell(\"b\", 2)\nTell \"c\"\nSay\nSay()\n"
                 "Sub Tell(what As String, times As Integer = 3)\nPrint what, times\nEnd Sub\n"
                 "Sub Say\nPrint \"said\"\nEnd Sub\n"
                 "Function Twice(n As Integer) As Integer\nReturn 2 * n\nEnd Function\n"
                 "Function Nothing() As Date\nEnd Function\n",
                 "8 Nil\na 1\nb 2\nc 3\nsaid\nsaid\n");
}

TEST(Statement, ProceduresCallThemselves) {
    expectPrints("Function Fib(n As Integer) As Integer\nIf n < 2 Then Return n\n"
                 "Return Fib(n - 1) + Fib(n - 2)\nEnd Function\nPrint Fib(15)\n",
                 "610\n");
}

TEST(Statement, ProceduresSeeTheOutermostVariablesAndConstants) {
    expectPrints("Dim count As Integer = 1\nRaiseCount\nPrint count\nConst limit = 10 * 2\n"
                 "Sub RaiseCount\ncount = count + limit\nEnd Sub\n",
                 "21\n");
    expectPrints("Show\nDim later As Integer = 5\nSub Show\nPrint later\nEnd Sub\n", "0\n");
}

TEST(Statement, AVariableLivesAsLongAsItsBlock) {
    expectPrints("Dim n As Integer = 1\nIf True Then\nDim n As Integer = 2\nPrint n\nEnd If\n"
                 "Print n\nFor i As Integer = 1 To 2\nDim fresh As Integer\nfresh = fresh + i\n"
                 "Print fresh\nNext\n",
                 "2\n1\n1\n2\n");
}

TEST(Statement, NumbersOfOtherWidthsAreConverted) {
    expectPrints(
        "Dim i As Int32 = 5\nDim u As UInt32 = i\nDim w As UInt64 = u\nDim d As Double = w\n"
        "Dim s As Single = 0.1\nDim n As Integer = 2.9\nDim m As Integer = -2.9\n"
        "Print i + u, w, d / 2, s = 0.1, n, m\n",
        "10 5 2.5 False 2 -2\n");
}

TEST(Statement, CommentsAndLongLines) {
    expectPrints("' one\nPrint 1 _ ' goes on\n  + 2 // three\nRem that is all\n", "3\n");
}

TEST(Statement, AssertPassesWhatHolds) {
    expectPrints("Assert 1 = 1\nAssert True, \"never\"\nPrint \"fine\"\n", "fine\n");
}

TEST(Statement, PrintJoinsValuesByABlank) {
    expectPrints("Print\nPrint 1, \"a\", 2.5, True, Nil, New Date\n", "\n1 a 2.5 True Nil Date\n");
}

TEST(Statement, ReturnEndsTheProgramToo) {
    expectPrints("Print 1\nReturn\nPrint 2\n", "1\n");
}

TEST(Statement, AVariableMayBearTheNameOfAClass) {
    expectPrints("Dim date As New Date(2026)\nPrint date.Year\n", "2026\n");
}
