// zkthost call: statements from the command line, and the values of expressions.

#include "Zkthost.h"

#include <gmock/gmock.h>

#include <string>

using testing::EndsWith;
using testing::HasSubstr;
using testing::StartsWith;

namespace {

class Call : public testing::TestWithParam<ImageFile> {
protected:
    Finished call(const std::string &statements) {
        return zkthost({"call", statements}, GetParam().path);
    }
    void expectResult(const std::string &statements, const std::string &result) {
        SCOPED_TRACE(statements);
        const Finished run = call(statements);
        expectSuccess(run);
        EXPECT_EQ(run.out, result.empty() ? "" : result + "\n");
    }
    void expectRaised(const std::string &statements, const std::string &exception) {
        SCOPED_TRACE(statements);
        const Finished run = call(statements);
        EXPECT_EQ(run.status, 3);
        EXPECT_EQ(run.out, "");
        EXPECT_THAT(run.err, EndsWith("zkthost: " + exception + ", error number 0\n"));
    }
    void expectRefused(const std::string &statements, const std::string &errors) {
        SCOPED_TRACE(statements);
        const Finished run = call(statements);
        EXPECT_EQ(run.status, 2);
        EXPECT_EQ(run.out, "");
        EXPECT_EQ(run.err, errors + "\n");
    }
};

INSTANTIATE_TEST_SUITE_P(, Call, testing::ValuesIn(images()),
                         [](const auto &parameter) { return parameter.param.name; });

} // namespace

TEST_P(Call, ShowsAPropertyAsConvertDoes) {
    expectResult("processName", "\"zkthost\"");
    expectResult("PROCESSNAME", "\"zkthost\"");
    expectResult("argumentsCount", "Integer 5");
    expectResult("automaticTerminationSupportEnabled", "Boolean false");
    expectResult("beginActivity(0, \"\").Reason", "\"\"");
    expectResult("\"Gr\xC3\xBC\xC3\x9F"
                 "e\"",
                 "\"Gr\xC3\xBC\xC3\x9F"
                 "e\"");
    expectResult("nil", "nil");
}

TEST_P(Call, PassesArguments) {
    expectResult("argument(1)", "\"call\"");
    expectResult("argument(&h1)", "\"call\"");
    expectResult(" argument ( 1 ) ", "\"call\"");
    expectResult("arguments(1)", "\"call\"");
}

TEST_P(Call, ShowsWhatCollectionsHold) {
    const Finished run = call("arguments");
    expectSuccess(run);
    EXPECT_THAT(run.out, StartsWith("Array, 5 elements\n  0: \""));
    EXPECT_THAT(run.out, HasSubstr("\n  1: \"call\"\n  2: \"arguments\"\n  3: \"--image\"\n"));
    expectResult("Array(1, 2.5)", "Array, 2 elements\n  0: Double 1\n  1: Double 2.5");
    expectResult("Dim d As New Dictionary; d.Value(\"a\") = New Date; d",
                 "Dictionary, 1 entry\n  \"a\": Date 2000-01-01 00:00:00");
    expectResult("environment.Lookup(\"NO_SUCH_VARIABLE\", \"none\")", "\"none\"");
}

TEST_P(Call, EvaluatesOperators) {
    expectResult("argumentsCount - 1", "Integer 4");
    expectResult("NSActivityBackground Or NSActivityLatencyCritical", "Integer 1095216660735");
    expectResult("1 / 2", "Double 0.5");
    expectResult("processName + \"!\"", "\"zkthost!\"");
    expectResult("-5; Not True", "Integer -5\nBoolean false");
}

TEST_P(Call, RunsStatementsOneAfterTheOther) {
    expectResult("processName = \"another \"\"name\"\"\"; processName", R"("another \"name\"")");
    expectResult("automaticTerminationSupportEnabled = true", "");
    expectResult("Dim a As NSProcessInfoActivityZKT = beginActivity(1, \"w\"); a.Reason; "
                 "endActivity a; a.Handle; Print \"done\"",
                 "\"w\"\nInteger 0\ndone");
    expectResult("For i As Integer = 1 To 2; Print i; Next", "1\n2");
}

TEST_P(Call, MakesInstances) {
    expectResult("New NSProcessInfoActivityZKT.Handle", "Integer 0");
    expectResult("New NSProcessInfoZKT.processName", "\"zkthost\"");
    expectResult("New NSProcessInfoZKT", "NSProcessInfoZKT");
}

TEST_P(Call, ReachesConstantsAndSharedMethods) {
    expectResult("NSProcessInfoZKT.NSMACHOperatingSystem", "Integer 5");
    expectResult("NSMACHOperatingSystem", "Integer 5");
    expectResult("NSProcessInfoZKT.processInfo.processName", "\"zkthost\"");
    expectResult("NSProcessInfoThermalStateDidChangeNotification",
                 "\"NSProcessInfoThermalStateDidChangeNotification\"");
}

TEST_P(Call, WritesJson) {
    const Finished run =
        zkthost({"call", "--format", "json", "Print 1; processName; nil"}, GetParam().path);
    expectSuccess(run);
    EXPECT_THAT(run.out, HasSubstr("\"printed\": \"1\\n\""));
    EXPECT_THAT(run.out, HasSubstr("\"type\": \"String\""));
    EXPECT_THAT(run.out, HasSubstr("\"value\": \"zkthost\""));
    EXPECT_THAT(run.out, HasSubstr("null"));
    EXPECT_THAT(run.out, HasSubstr("\"leaks\": 0"));
}

TEST_P(Call, ShowsWhatHoldsItselfOnce) {
    const Finished run = call("Dim d As New Dictionary; d.Value(\"a\") = d; d");
    EXPECT_EQ(run.out, "Dictionary, 1 entry\n  \"a\": Dictionary (not shown again)\n");
    EXPECT_EQ(run.status, 1);
    EXPECT_EQ(run.err, "leak: Dictionary#1 outlives the program: objects hold each other in a "
                       "circle\n");
}

TEST_P(Call, TellsAnExceptionAndEndsWithThree) {
    expectRaised("endActivity(nil)", "NilObjectException: activity is nil");
    expectRaised("argument(5)", "NSExceptionZKT (NSRangeException): Index 5 is out of range 5 (in "
                                "'objectAtIndex:')");
    expectRaised("1 \\ 0", "UnsupportedOperationException: 1 \\ 0 divides by zero");
}

TEST_P(Call, SuggestsTheNearestName) {
    expectRefused("procesName", "call:1:1: nothing is called procesName; the nearest is "
                                "processName");
    expectRefused("processNme = \"x\"",
                  "call:1:1: nothing is called processNme; the nearest is processName");
    expectRefused("NSProcessInfoZKT.procesInfo",
                  "call:1:18: NSProcessInfoZKT has no member procesInfo; the nearest is "
                  "processInfo");
    expectRefused("New NSNoSuchClassZKT.Handle", "call:1:5: there is no class NSNoSuchClassZKT");
    expectRefused("foo", "call:1:1: nothing is called foo");
}

TEST_P(Call, SaysWhatTheDeclarationAsksFor) {
    const std::string argument = "NSProcessInfoZKT.argument(index As Integer) As String";
    expectRefused("argument", "call:1:1: no arguments for " + argument);
    expectRefused("argument(1, 2)", "call:1:1: 2 arguments for " + argument);
    expectRefused("argument(\"a\")", "call:1:10: index of " + argument +
                                         " is Integer, not String; Val makes a number of one");
    expectRefused("processName(1)", "call:1:1: NSProcessInfoZKT.processName is a property and "
                                    "takes no arguments");
    expectRefused("processIdentifier = 1",
                  "call:1:1: NSProcessInfoZKT.processIdentifier is read-only");
    expectRefused("processName = 5", "call:1:15: NSProcessInfoZKT.processName is String, not "
                                     "Integer; Str makes one of a number");
    expectRefused("NSProcessInfoActivityZKT.Handle",
                  "call:1:26: Handle belongs to instances: (New NSProcessInfoActivityZKT).Handle");
    expectRefused("processIdentifier.Handle", "call:1:19: Integer has no members");
}

TEST_P(Call, SaysWhereTextIsNoExpression) {
    expectRefused("argument(", "call:1:10: a value was expected");
    expectRefused("argument(1", "call:1:11: a comma or ) was expected");
    expectRefused("argument(1))",
                  "call:1:12: the end of the statement was expected instead of \")\"");
    expectRefused("processName = \"x",
                  "call:1:15: a closing quote was expected instead of \"\"x\"");
    expectRefused("argument(1x)", "call:1:10: a number was expected instead of \"1x\"");
    expectRefused("argument(&hZZ)", "call:1:10: a number was expected instead of \"&hZZ\"");
    expectRefused("processName.", "call:1:13: a member's name was expected");
    expectRefused("1 +; 2 +", "call:1:4: a value was expected\ncall:1:9: a value was expected");
}
