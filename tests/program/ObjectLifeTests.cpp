// When the objects of a program come to their end.

#include "Ran.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

using testing::ElementsAre;
using testing::IsEmpty;

namespace {

/// Live objects at each Print.
std::vector<std::size_t> liveIn(const char *program) {
    const Ran ran = runProgram(program);
    EXPECT_THAT(ran.errors, IsEmpty());
    EXPECT_THAT(ran.violations, IsEmpty());
    EXPECT_EQ(ran.account.liveObjects, 0U);
    EXPECT_EQ(ran.account.liveStrings, 0U);
    return ran.liveObjects;
}

} // namespace

TEST(ObjectLife, EndsWithTheLastVariable) {
    EXPECT_THAT(liveIn("Dim a As New Date\nDim b As Date = a\nPrint 1\na = Nil\nPrint 2\nb = Nil\n"
                       "Print 3\n"),
                ElementsAre(1, 1, 0));
}

TEST(ObjectLife, EndsWithTheBlock) {
    EXPECT_THAT(liveIn("If True Then\nDim a As New Date\nPrint 1\nEnd If\nPrint 2\n"
                       "For i As Integer = 1 To 2\nDim a As New Date\nPrint 3\nNext\nPrint 4\n"),
                ElementsAre(1, 0, 1, 1, 0));
}

TEST(ObjectLife, EndsWithTheProcedure) {
    EXPECT_THAT(liveIn("Sub Make(d As Date)\nDim a As New Date\nPrint 1\nEnd Sub\n"
                       "Make New Date\nPrint 2\n"),
                ElementsAre(2, 0));
}

TEST(ObjectLife, EndsWithTheStatementThatMadeIt) {
    EXPECT_THAT(liveIn("Print (New Date).Year\nDim y As Integer = (New Date).Year\nPrint y\n"),
                ElementsAre(0, 0));
}

TEST(ObjectLife, EndsWithTheCollection) {
    EXPECT_THAT(liveIn("Dim a() As Date\na.Append New Date\na.Append New Date\nPrint 1\n"
                       "a.Remove 0\nPrint 2\nReDim a(-1)\nPrint 3\n"),
                ElementsAre(3, 2, 1));
}

TEST(ObjectLife, EndsWhenAnExceptionPasses) {
    EXPECT_THAT(liveIn("Sub Fail\nDim a As New Date\nRaise New RuntimeException\nEnd Sub\n"
                       "Try\nFail\nCatch e\nPrint 1\nEnd Try\nPrint 2\n"),
                ElementsAre(1, 0));
}

TEST(ObjectLife, OfExceptionsEndsWithTheirCatch) {
    EXPECT_THAT(liveIn("Try\nRaise New RuntimeException\nCatch\nPrint 1\nEnd Try\n"
                       "Dim kept As RuntimeException\nTry\nRaise New RuntimeException\nCatch e\n"
                       "kept = e\nEnd Try\nPrint 2\n"),
                ElementsAre(0, 1));
}

TEST(ObjectLife, OfThingsThatHoldEachOtherIsTold) {
    const Ran ran = runProgram("Dim d As New Dictionary\nd.Value(1) = d\n");
    EXPECT_THAT(ran.circles,
                ElementsAre("Dictionary#1 outlives the program: objects hold each other in a "
                            "circle"));
    EXPECT_THAT(ran.violations, IsEmpty());
}

TEST(ObjectLife, OfALongChainDoesNotEndTheStack) {
    expectPrints("Dim last As New Dictionary\nFor i As Integer = 1 To 100000\n"
                 "Dim d As New Dictionary\nd.Value(0) = last\nlast = d\nNext\nlast = Nil\n"
                 "Print \"released\"\n",
                 "released\n");
}
