#include "Ran.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

using testing::ElementsAre;

namespace {

std::vector<std::string> linesOf(const Ran &ran) {
    std::vector<std::string> result;
    for (const auto &[line, procedure] : ran.uncaught->lines)
        result.push_back(std::to_string(line) + ' ' + procedure);
    return result;
}

} // namespace

TEST(Exception, IsCaughtByItsClassAndItsSuperclasses) {
    expectPrints("Sub Fail(e As RuntimeException)\nTry\nRaise e\n"
                 "Catch k As KeyNotFoundException\nPrint \"key\", k.Message\n"
                 "Catch o As OutOfBoundsException\nPrint \"bounds\"\n"
                 "Catch other As RuntimeException\nPrint other\nEnd Try\nEnd Sub\n"
                 "Fail New KeyNotFoundException(\"k\")\nFail New OutOfBoundsException\n"
                 "Fail New NilObjectException\n"
                 "Try\nRaise New RuntimeException\nCatch\nPrint \"any\"\nEnd Try\n"
                 "Try\nRaise New RuntimeException(\"m\")\nCatch e\nPrint e.Message\nEnd Try\n",
                 "key k\nbounds\nNilObjectException\nany\nm\n");
}

TEST(Exception, PassesClausesOfOtherClasses) {
    expectUncaught("Try\nRaise New NilObjectException(\"m\")\nCatch e As KeyNotFoundException\n"
                   "End Try\n",
                   "NilObjectException: m");
}

TEST(Exception, FinallyRunsOnEveryWayOut) {
    expectPrints(
        "Function Way(n As Integer) As Integer\nTry\nIf n = 1 Then Return 10\n"
        "If n = 2 Then Raise New RuntimeException\nPrint \"through\"\n"
        "Catch e As RuntimeException\nReturn 20\nFinally\nPrint \"finally\", n\nEnd Try\n"
        "Return 30\nEnd Function\nPrint Way(1)\nPrint Way(2)\nPrint Way(3)\n"
        "For i As Integer = 1 To 3\nTry\nExit For\nFinally\nPrint \"left\"\nEnd Try\nNext\n",
        "finally 1\n10\nfinally 2\n20\nthrough\nfinally 3\n30\nleft\n");
    expectPrints(
        "Try\nTry\nRaise New RuntimeException(\"inner\")\nFinally\nPrint \"first\"\nEnd Try\n"
        "Catch e As RuntimeException\nPrint e.Message\nEnd Try\n",
        "first\ninner\n");
}

TEST(Exception, OneRaisedInACatchReplacesTheOther) {
    expectUncaught("Try\nRaise New RuntimeException(\"one\")\nCatch e\n"
                   "Raise New RuntimeException(\"two\")\nEnd Try\n",
                   "RuntimeException: two");
}

TEST(Exception, ArithmeticWithoutAnAnswer) {
    expectUncaught("Dim n As Integer\nPrint 7 \\ n",
                   "UnsupportedOperationException: 7 \\ 0 divides by zero");
    expectUncaught("Print 7 Mod 0", "UnsupportedOperationException: 7 Mod 0 divides by zero");
    expectUncaught("Print 7.5 Mod 0", "UnsupportedOperationException: 7.5 Mod 0 divides by zero");
    expectUncaught("Print 9223372036854775807 + 1",
                   "UnsupportedOperationException: 9223372036854775807 + 1 does not fit into "
                   "Integer");
    expectUncaught("Print -9223372036854775808 \\ -1",
                   "UnsupportedOperationException: -9223372036854775808 \\ -1 does not fit into "
                   "Integer");
    expectUncaught("Print 18446744073709551615 * 18446744073709551615",
                   "UnsupportedOperationException: 18446744073709551615 * 18446744073709551615 "
                   "does not fit into UInt64");
    expectUncaught("Dim i As Int32 = 2147483648",
                   "UnsupportedOperationException: 2147483648 does not fit into Int32");
    expectUncaught("Dim i As Integer = 1e30",
                   "UnsupportedOperationException: 1e+30 does not fit into Integer");
    expectUncaught("Dim u As UInt64 = -1",
                   "UnsupportedOperationException: -1 does not fit into UInt64");
    expectUncaught("For i As Integer = 1 To 2 Step 0\nNext",
                   "UnsupportedOperationException: a step of 0 gets nowhere");
}

TEST(Exception, IndicesOutOfBounds) {
    expectUncaught("Dim a(1) As Integer\nPrint a(2)",
                   "OutOfBoundsException: index 2 of an array of 2 elements");
    expectUncaught("Dim a() As Integer\na(-1) = 1",
                   "OutOfBoundsException: index -1 of an array of 0 elements");
    expectUncaught("Dim a(0) As Integer\na.Remove 1",
                   "OutOfBoundsException: index 1 of an array of 1 element");
    expectUncaught("Dim a(-3) As Integer", "OutOfBoundsException: an upper bound of -3");
    expectUncaught("Dim m As New MemoryBlock(2)\nPrint m.Byte(2)",
                   "OutOfBoundsException: byte 2 of a memory block of 2 bytes");
    expectUncaught("Print Chr(-1)", "OutOfBoundsException: there is no character -1");
}

TEST(Exception, NothingWhereSomethingIsNeeded) {
    expectUncaught("Dim d As Dictionary\nPrint d.Count",
                   "NilObjectException: Count is asked of Nil");
    expectUncaught("Dim a() As Integer\na = Nil\nPrint a(0)",
                   "NilObjectException: an array is wanted, but there is Nil");
    expectUncaught("Raise Nil", "NilObjectException: Nil is raised");
}

TEST(Exception, VariantsThatHoldSomethingElse) {
    expectUncaught("Dim v As Variant = \"a\"\nDim n As Integer = v",
                   "IllegalCastException: String is no Integer");
    expectUncaught("Dim v As Variant = New Date\nDim d As Dictionary = v",
                   "IllegalCastException: Date is no Dictionary");
    expectUncaught("Dim v As Variant = \"a\"\nPrint v - 1",
                   "IllegalCastException: - does not take String and Integer");
    expectUncaught("Dim v As Variant = New Date\nPrint v < 1",
                   "IllegalCastException: < does not take Date and Integer");
    expectUncaught("Dim e As RuntimeException = New NilObjectException\n"
                   "Print KeyNotFoundException(e)",
                   "IllegalCastException: NilObjectException is no KeyNotFoundException");
    expectUncaught("Dim v As Variant = Array(1, 2)\nDim s() As String = v",
                   "IllegalCastException: Array is no String()");
}

TEST(Exception, KeysThatAreNotThere) {
    expectUncaught("Dim d As New Dictionary\nPrint d.Value(\"x\")",
                   "KeyNotFoundException: no key \"x\"");
}

TEST(Exception, MoreMemoryThanThereIs) {
    expectUncaught("Dim s As String = \"x\"\nWhile True\ns = s + s\nWend",
                   "OutOfMemoryException: no memory for 33554432 bytes");
    expectUncaught("Dim a(999999999999) As Integer",
                   "OutOfMemoryException: no memory for 16000000000000 bytes");
    expectUncaught("Dim m As New MemoryBlock(999999999)",
                   "OutOfMemoryException: no memory for a block of 999999999 bytes");
}

TEST(Exception, AFailedAssertion) {
    expectUncaught("Assert 1 = 2", "RuntimeException: an assertion failed");
    expectUncaught("Assert 1 = 2, \"why\"", "RuntimeException: an assertion failed: why");
}

TEST(Exception, EndlessRecursionIsOne) {
    const Ran ran = runProgram("Sub Again(n As Integer)\nAgain n + 1\nEnd Sub\nAgain 1\n");
    ASSERT_TRUE(ran.uncaught);
    EXPECT_EQ(ran.uncaught->exception.className, "StackOverflowException");
    EXPECT_EQ(ran.uncaught->lines.front().line, 2U);
    EXPECT_EQ(ran.uncaught->lines.back().line, 4U);
    expectPrints("Sub Again\nAgain\nEnd Sub\nTry\nAgain\nCatch e As StackOverflowException\n"
                 "Print e.Message\nEnd Try\n",
                 "too many calls inside each other\n");
}

TEST(Exception, TellsTheLinesThatLedThere) {
    const Ran ran = runProgram("Sub Inner(a() As Integer)\n"
                               "    Print a(0)\n"
                               "End Sub\n"
                               "Function Outer As Integer\n"
                               "    Dim a() As Integer\n"
                               "    If True Then\n"
                               "        Inner a\n"
                               "    End If\n"
                               "End Function\n"
                               "Print Outer\n");
    ASSERT_TRUE(ran.uncaught);
    EXPECT_THAT(linesOf(ran), ElementsAre("2 Inner", "7 Outer", "10 "));
}

TEST(Exception, ThatIsRaisedAgainComesFromThere) {
    const Ran ran = runProgram("Sub Fail\nRaise New RuntimeException\nEnd Sub\nTry\nFail\nCatch e\n"
                               "Raise e\nEnd Try\n");
    ASSERT_TRUE(ran.uncaught);
    EXPECT_THAT(linesOf(ran), ElementsAre("7 "));
    const Ran passed = runProgram("Try\nRaise New RuntimeException\nFinally\nPrint 1\nEnd Try\n");
    EXPECT_THAT(linesOf(passed), ElementsAre("2 "));
}
