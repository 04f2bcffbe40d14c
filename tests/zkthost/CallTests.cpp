// zkthost call: one member, evaluated through the registered declarations.

#include "Zkthost.h"

#include <gmock/gmock.h>

#include <string>

using testing::EndsWith;
using testing::HasSubstr;

namespace {

class Call : public testing::TestWithParam<ImageFile> {
protected:
    Finished call(const std::string &expression) {
        return zkthost({"call", expression}, GetParam().path);
    }
    void expectResult(const std::string &expression, const std::string &result) {
        SCOPED_TRACE(expression);
        const Finished run = call(expression);
        expectSuccess(run);
        EXPECT_EQ(run.out, result + "\n");
    }
    void expectRaised(const std::string &expression, const std::string &exception) {
        SCOPED_TRACE(expression);
        const Finished run = call(expression);
        EXPECT_EQ(run.status, 3);
        EXPECT_EQ(run.out, "");
        EXPECT_THAT(run.err, EndsWith("zkthost: " + exception + ", error number 0\n"));
    }
    void expectRefused(const std::string &expression, const std::string &mentioned) {
        SCOPED_TRACE(expression);
        expectBadInput(call(expression), mentioned);
    }
};

INSTANTIATE_TEST_SUITE_P(, Call, testing::Values(macosImage(), linuxImage()),
                         [](const auto &parameter) { return parameter.param.name; });

} // namespace

TEST_P(Call, ShowsAPropertyWithItsType) {
    expectResult("processName", "\"zkthost\" As String");
    expectResult("PROCESSNAME", "\"zkthost\" As String");
    expectResult("argumentsCount", "5 As Integer");
    expectResult("automaticTerminationSupportEnabled", "false As Boolean");
}

TEST_P(Call, PassesArguments) {
    expectResult("argument(1)", "\"call\" As String");
    expectResult("argument(&h1)", "\"call\" As String");
    expectResult(" argument ( 1 ) ", "\"call\" As String");
}

TEST_P(Call, ShowsEveryElementOfAnArray) {
    const Finished run = call("arguments");
    expectSuccess(run);
    EXPECT_THAT(run.out, HasSubstr("\", \"call\", \"arguments\", \"--image\", \""));
    EXPECT_THAT(run.out, EndsWith("\") As String()\n"));
}

TEST_P(Call, SetsAProperty) {
    expectResult("processName = \"another \"\"name\"\"\"", "no result");
    expectResult("automaticTerminationSupportEnabled = true", "no result");
}

TEST_P(Call, FollowsMembersOfWhatACallGave) {
    expectResult("beginActivity(NSActivityBackground, \"work\").Options", "255 As Integer");
    expectResult("beginActivity(-1, \"work\").Reason", "\"work\" As String");
    expectResult("beginActivity(0, \"\").Reason", "\"\" As String");
    expectResult("endActivity(beginActivity(1, \"work\"))", "no result");
}

TEST_P(Call, MakesInstances) {
    expectResult("New NSProcessInfoActivityZKT.Handle", "0 As Integer");
    expectResult("New NSProcessInfoZKT.processName", "\"zkthost\" As String");
}

TEST_P(Call, ReachesConstantsAndSharedMethods) {
    expectResult("NSProcessInfoZKT.NSMACHOperatingSystem", "5 As Integer");
    expectResult("NSMACHOperatingSystem", "5 As Integer");
    expectResult("NSProcessInfoZKT.processInfo.processName", "\"zkthost\" As String");
    expectResult("NSProcessInfoThermalStateDidChangeNotification",
                 "\"NSProcessInfoThermalStateDidChangeNotification\" As String");
}

TEST_P(Call, TellsAnExceptionAndEndsWithThree) {
    expectRaised("endActivity(nil)", "NilObjectException: activity is nil");
    expectRaised("argument(5)", "NSExceptionZKT (NSRangeException): Index 5 is out of range 5 (in "
                                "'objectAtIndex:')");
}

TEST_P(Call, SuggestsTheNearestName) {
    expectRefused("procesName", "NSProcessInfoZKT has no member procesName; the nearest is "
                                "processName");
    expectRefused("processNme = \"x\"", "the nearest is processName");
    expectRefused("NSProcessInfoZKT.procesInfo", "the nearest is processInfo");
    expectRefused("New NSNoSuchClassZKT.Handle", "the host knows no class NSNoSuchClassZKT");
}

TEST_P(Call, SaysWhatTheDeclarationAsksFor) {
    expectRefused("argument", "0 arguments for NSProcessInfoZKT.argument(index As Integer) As "
                              "String");
    expectRefused("argument(1, 2)", "2 arguments for NSProcessInfoZKT.argument(index As Integer)");
    expectRefused("argument(\"a\")", "NSProcessInfoZKT.argument(index As Integer) As String: "
                                     "\"a\" is no value for Integer");
    expectRefused("processName(1)", "processName is a property and takes no arguments");
    expectRefused("processIdentifier = 1", "NSProcessInfoZKT.processIdentifier is read-only");
    expectRefused("NSProcessInfoActivityZKT.Handle", "New NSProcessInfoActivityZKT.Handle");
    expectRefused("processIdentifier.Handle", "which has no members");
}

TEST_P(Call, SaysWhereTextIsNoExpression) {
    expectRefused("", "column 1: a name was expected");
    expectRefused("argument(", "column 10: a name was expected");
    expectRefused("argument(1", "column 11: a comma or ) was expected");
    expectRefused("argument(1))", "column 12: the end was expected");
    expectRefused("processName = \"x", "column 17: a closing \" was expected");
    expectRefused("argument(1x)", "column 10: a number was expected");
    expectRefused("argument(&hZZ)", "column 10: a number was expected");
    expectRefused("processName.", "column 13: a name was expected");
}
