// What is told before a program runs.

#include "Ran.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

TEST(Error, UnknownNamesWithTheNearest) {
    expectErrors("Dim count As Integer\nPrint cuont\n",
                 {"2:7: nothing is called cuont; the nearest is count"});
    expectErrors(
        "Print Uppercas(\"a\"), x\n",
        {"1:7: nothing is called Uppercas; the nearest is Uppercase", "1:22: nothing is called x"});
    expectErrors("Dim d As Dictonary\n",
                 {"1:10: there is no type Dictonary; the nearest is Dictionary"});
    expectErrors("Dim d As New Dictonary\n",
                 {"1:14: there is no class Dictonary; the nearest is Dictionary"});
    expectErrors("Dim d As Date\nPrint d.Yaer\nd.Moonth = 1\n",
                 {"2:9: Date has no member Yaer; the nearest is Year",
                  "3:3: Date has no member Moonth; the nearest is Month"});
    expectErrors("Dim a() As Integer\na.Apend 1\n",
                 {"2:3: an array has no member Apend; the nearest is Append"});
}

TEST(Error, NumbersOfArguments) {
    expectErrors(
        "Print Len(), Left(\"a\")\nDim d As New Date(1, 2, 3, 4, 5, 6, 7)\n",
        {"1:7: no arguments for Len(text As String) As Integer",
         "1:14: 1 argument for Left(text As String, count As Integer) As String",
         "2:14: 7 arguments for New Date(Year As Integer, Month As Integer = 1, Day As "
         "Integer = 1, Hour As Integer = 0, Minute As Integer = 0, Second As Integer = 0)"});
    expectErrors("Sub f(a As Integer)\nEnd Sub\nf\nf 1, 2\n",
                 {"3:1: no arguments for f(a As Integer)", "4:1: 2 arguments for f(a As Integer)"});
    expectErrors("Dim d As New Dictionary\nPrint d.HasKey, d.Count(1)\n",
                 {"2:9: no arguments for Dictionary.HasKey(key As Variant) As Boolean",
                  "2:19: Dictionary.Count is a property and takes no arguments"});
}

TEST(Error, TypesOfArguments) {
    expectErrors("Print Len(5)\n",
                 {"1:11: text of Len(text As String) As Integer is String, not Integer; Str makes "
                  "one of a number"});
    expectErrors("Dim m As New MemoryBlock(\"a\")\n",
                 {"1:26: bytes of New MemoryBlock(bytes As Integer) is Integer, not String; Val "
                  "makes a number of one"});
    expectErrors("Print Ubound(5)\n",
                 {"1:14: values of Ubound(values As Variant()) As Integer is an array, not "
                  "Integer"});
}

TEST(Error, TypesOfAssignments) {
    expectErrors("Dim n As Integer = \"a\"\nDim s As String\ns = 5\ns = Nil\n",
                 {"1:20: n is Integer, not String; Val makes a number of one",
                  "3:5: s is String, not Integer; Str makes one of a number",
                  "4:5: s is String, not Nil"});
    expectErrors("Dim d As Date = New Dictionary\nDim e As RuntimeException\n"
                 "Dim n As NilObjectException = e\n",
                 {"1:17: d is Date, not Dictionary",
                  "3:31: n is NilObjectException, not RuntimeException; NilObjectException(...) "
                  "says that it is one"});
    expectErrors("Dim a() As Integer = Array(\"a\")\nDim b() As String\nb(0) = 1\n",
                 {"1:22: a is Integer(), not String()",
                  "3:8: the element is String, not Integer; Str makes one of a number"});
    expectErrors("Const c = 1\nc = 2\n", {"2:1: c is a constant"});
    expectErrors("Dim d As New Dictionary\nd.Count = 1\nd.HasKey = 1\n1 + 1 = 2\n",
                 {"2:3: Dictionary.Count is read-only",
                  "3:3: no arguments for Dictionary.HasKey(key As Variant) As Boolean",
                  "4:1: a statement was expected instead of \"1\""});
}

TEST(Error, TypesOfOperands) {
    expectErrors("Print 1 + \"a\", \"a\" - \"b\", Not \"a\", -True, 1 And True, 1 = \"a\"\n",
                 {"1:9: + does not take Integer and String; Str makes a String of a number",
                  "1:20: - does not take String and String", "1:27: Not does not take String",
                  "1:36: - does not take Boolean", "1:45: And does not take Integer and Boolean",
                  "1:57: = does not take Integer and String"});
    expectErrors(
        "If 1 Then Print 1\nWhile \"a\"\nWend\n",
        {"1:4: a condition is Boolean, not Integer", "2:7: a condition is Boolean, not String"});
}

TEST(Error, BlocksThatDoNotClose) {
    expectErrors("If True Then\nPrint 1\n", {"1:1: If is not closed with End If"});
    expectErrors("While True\nFor i As Integer = 1 To 2\nWend\n",
                 {"2:1: For is not closed with Next"});
    expectErrors("Try\nPrint 1\nSub f\nEnd Sub\n",
                 {"1:1: Try has no Catch and no Finally", "1:1: Try is not closed with End Try"});
    expectErrors("Function f As Integer\nReturn 1\n",
                 {"1:10: Function is not closed with End Function"});
    expectErrors("Print 1\nNext\nEnd If\nElse\nPrint x\n",
                 {"2:1: Next closes nothing here", "3:1: End If closes nothing here",
                  "4:1: Else closes nothing here", "5:7: nothing is called x"});
    expectErrors("For i As Integer = 1 To 2\nNext j\n", {"2:6: Next j closes the loop of i"});
}

TEST(Error, TextThatIsNoStatement) {
    expectErrors("Dim\nDim x\nDim y As\nPrint 1 +\nPrint (1\nPrint \"a\nIf True\nEnd If\n",
                 {"1:4: a variable's name was expected", "2:6: As was expected",
                  "3:9: a type was expected", "4:10: a value was expected", "5:9: ) was expected",
                  "6:7: a closing quote was expected instead of \"\"a\"",
                  "7:8: Then was expected"});
    expectErrors("Print 1 2\nx y z\nPrint 12ab\n?\n",
                 {"1:9: the end of the statement was expected instead of \"2\"",
                  "2:5: the end of the statement was expected instead of \"z\"",
                  "3:7: a number was expected instead of \"12ab\"",
                  "4:1: a name, a value or an operator was expected instead of \"?\""});
}

TEST(Error, StatementsOfOtherLanguagesNameWhatServes) {
    expectErrors("Select Case 1\nMsgBox \"a\"\n",
                 {"1:1: Select is no statement of this language; If ... ElseIf ... End If serves",
                  "2:1: MsgBox is no statement of this language; Print serves"});
}

TEST(Error, StatementsInTheWrongPlace) {
    expectErrors("Exit For\nExit While\nExit Sub\nReturn 5\n"
                 "Sub f\nReturn 1\nExit Function\nEnd Sub\nFunction g As Integer\nReturn\n"
                 "End Function\n",
                 {"1:1: Exit For stands in no For", "2:1: Exit While stands in no While",
                  "3:1: Exit Sub stands in no Sub", "4:8: a program returns no value",
                  "6:8: a Sub returns no value", "7:1: Exit Function stands in no Function",
                  "10:1: a Function returns a value"});
    expectErrors("1 + 1\nDim x As Integer\nx\nx + 1\n",
                 {"1:1: a statement was expected instead of \"1\"",
                  "3:1: nothing is done with this value", "4:1: nothing is done with this value"});
}

TEST(Error, DeclaredTwice) {
    expectErrors("Dim a As Integer\nDim A As String\nSub f(x As Integer, x As Integer)\nEnd Sub\n"
                 "Sub F\nEnd Sub\n",
                 {"2:5: A is declared already, in line 1", "3:21: x is declared already, in line 3",
                  "5:5: F is declared already, in line 3"});
}

TEST(Error, ClassesAndVariantsInTheWrongPlace) {
    expectErrors("Print Date\nPrint Date.Year\nDim v As Variant\nPrint v.Count, v(0)\n",
                 {"1:7: Date is a class; New Date makes an instance",
                  "2:12: Year belongs to instances: (New Date).Year",
                  "4:9: a Variant has no members; assign it to a variable of its class first",
                  "4:16: a Variant has no elements; assign it to an array first"});
    expectErrors("Dim n As Integer\nPrint n.Foo, n(1)\n",
                 {"2:9: Integer has no members", "2:14: Integer has no elements"});
}

TEST(Error, LoopsOverTheWrongThings) {
    expectErrors("For Each x As Integer In 5\nNext\nFor Each s As String In Array(1)\nNext\n"
                 "For i = 1 To 2\nNext\nFor b As String = 1 To 2\nNext\n"
                 "For i As Integer = 1 To 2 Step 0.5\nNext\n",
                 {"1:26: For Each goes through an array, not Integer",
                  "3:10: s is String, but the elements are Integer",
                  "5:5: i is no variable; i As ... declares one",
                  "7:5: a loop counts in numbers, not in String",
                  "9:32: a loop that counts in Integers has no step of Double"});
}

TEST(Error, WhatIsRaisedAndCaughtIsAnException) {
    expectErrors("Try\nRaise New Date\nCatch e As Date\nEnd Try\n",
                 {"2:7: what is raised is RuntimeException, not Date",
                  "3:12: Date is no class of exceptions"});
}

TEST(Error, ConstantsAreMadeOfConstants) {
    expectErrors(
        "Dim x As Integer\nConst a = 1\nConst b = a + x\nConst c = f\n"
        "Function f As Integer\nEnd Function\n",
        {"3:15: x varies; a constant's value does not", "4:11: a constant's value calls nothing"});
}

TEST(Error, MoreLevelsThanTheParserGoesDown) {
    for (const char *repeated : {"(", "Not ", "-", "1 + ", "a(", "If True Then\n", "1 ^ "}) {
        std::string text = "Print ";
        for (int i = 0; i < 5000; ++i)
            text += repeated;
        const Ran ran = runProgram(text + "1");
        ASSERT_FALSE(ran.errors.empty()) << repeated;
    }
    EXPECT_THAT(runProgram("Print " + std::string(300, '(') + "1" + std::string(300, ')')).errors,
                testing::ElementsAre("1:207: more than 200 levels inside each other"));
}
