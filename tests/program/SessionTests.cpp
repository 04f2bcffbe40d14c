// Lines that are typed one after the other.

#include "host/Host.h"
#include "host/program/Conversion.h"
#include "host/program/Session.h"
#include "host/program/ValueText.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

using namespace host;
using namespace host::program;
using testing::ElementsAre;
using testing::IsEmpty;

namespace {

class SessionTest : public testing::Test {
protected:
    /// Runs the text; what it shows, prints and raises is added.
    Loaded type(std::string_view text) {
        Loaded loaded = session.load(text);
        for (const Diagnostic &error : loaded.errors)
            seen.push_back("error: " + error.text);
        if (loaded.errors.empty())
            if (const auto uncaught = session.run())
                seen.push_back(uncaught->exception.className);
        return loaded;
    }

    Host host{{.tracing = false}};
    std::vector<std::string> seen;
    Session session{host,
                    Form::typed,
                    {.print = [this](std::string_view line) { seen.emplace_back(line); },
                     .show =
                         [this](const Value &value, const Type &type) {
                             seen.push_back(textOf(plain(value, type)) + " As " + describe(type));
                         }}};
};

} // namespace

TEST_F(SessionTest, ShowsTheValuesOfExpressions) {
    type("1 + 2");
    type("\"a\" + \"b\"; Len(\"abc\")");
    type("Print 5");
    EXPECT_THAT(seen, ElementsAre("3 As Integer", "ab As String", "3 As Integer", "5\n"));
}

TEST_F(SessionTest, KeepsVariablesAndProcedures) {
    type("Dim n As Integer = 5");
    type("Function Twice(x As Integer) As Integer\nReturn 2 * x\nEnd Function");
    type("n = Twice(n)");
    type("n - 1");
    type("Twice(n)");
    EXPECT_THAT(seen, ElementsAre("9 As Integer", "20 As Integer"));
}

TEST_F(SessionTest, LetsAVariableBeDeclaredAgain) {
    type("Dim n As Integer = 5");
    type("Dim n As String = \"five\"");
    type("n");
    EXPECT_THAT(seen, ElementsAre("five As String"));
}

TEST_F(SessionTest, ForgetsWhatAWrongLineDeclares) {
    type("Dim n As Integer = 5");
    type("Dim n As Integer = \"a\"");
    type("Dim other As Integer = nothing");
    type("n");
    type("other");
    EXPECT_THAT(seen, ElementsAre("error: n is Integer, not String; Val makes a number of one",
                                  "error: nothing is called nothing", "5 As Integer",
                                  "error: nothing is called other"));
}

TEST_F(SessionTest, GoesOnBehindAnException) {
    type("Dim n As Integer = 1 \\ 0");
    type("n");
    EXPECT_THAT(seen, ElementsAre("UnsupportedOperationException", "0 As Integer"));
}

TEST_F(SessionTest, KnowsABlockThatGoesOn) {
    EXPECT_TRUE(session.load("If True Then").isIncomplete);
    EXPECT_TRUE(session.load("Sub f\nWhile True\nWend").isIncomplete);
    EXPECT_TRUE(session.load("Try\nIf unknown Then\nPrint 1").isIncomplete);
    EXPECT_FALSE(session.load("If True Then\nPrint (\n").isIncomplete);
    EXPECT_FALSE(session.load("Next").isIncomplete);
    EXPECT_FALSE(session.load("If True Then\nEnd If").isIncomplete);
}

TEST_F(SessionTest, GivesUpItsVariablesAtTheEnd) {
    type("Dim d As New Date");
    EXPECT_EQ(host.account().liveObjects, 1U);
    EXPECT_FALSE(session.finish());
    EXPECT_EQ(host.account().liveObjects, 0U);
}

TEST(SessionSteps, AreCounted) {
    Host host{{.tracing = false}};
    Session session(host, Form::file, {.print = [](std::string_view) {}, .steps = 1000});
    EXPECT_THAT(
        session.load("While True\nTry\nWhile True\nWend\nFinally\nPrint 1\nEnd Try\nWend").errors,
        IsEmpty());
    EXPECT_THROW(session.run(), OutOfSteps);
}
