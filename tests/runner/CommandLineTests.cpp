// Command lines of the test programs themselves: what is wrong is named, and nothing is run.

#include "ChildProcess.h"

#include <gmock/gmock.h>

#include <string>
#include <vector>

using testing::HasSubstr;
using testing::StartsWith;

namespace {

struct WrongCommandLine {
    const char *name;
    const char *program;
    std::vector<std::string> arguments;
    const char *mentioned;
};
void PrintTo(const WrongCommandLine &wrong, std::ostream *stream) {
    *stream << wrong.name;
}

const std::string image = std::string("--image=") + LINUX_OBJECT;

class ProgramOfTests : public testing::TestWithParam<WrongCommandLine> {};

INSTANTIATE_TEST_SUITE_P(
    , ProgramOfTests,
    testing::Values(
        WrongCommandLine{
            "ContractTestsUnknownOption", CONTRACT_TESTS, {"--nonsense"}, "--nonsense"},
        WrongCommandLine{"ContractTestsWithoutImage", CONTRACT_TESTS, {}, "--image"},
        WrongCommandLine{"ContractTestsOfNoImage",
                         CONTRACT_TESTS,
                         {"--isolate", "--image=/no/such/image"},
                         "/no/such/image"},
        WrongCommandLine{"ContractTestsMatchingNoExpression",
                         CONTRACT_TESTS,
                         {image, "--isolate", "--matching", "("},
                         "--matching ("},
        WrongCommandLine{"ContractTestsInNoOrder",
                         CONTRACT_TESTS,
                         {image, "--isolate", "--order=/no/such/order"},
                         "/no/such/order"},
        WrongCommandLine{"SoakWithoutImage", SOAK, {}, "--image"},
        WrongCommandLine{"SoakOfNoImage", SOAK, {"--image=/no/such/image"}, "/no/such/image"},
        WrongCommandLine{"SoakForNoNumber", SOAK, {image, "--seconds", "abc"}, "abc"},
        WrongCommandLine{"SoakForLessThanNothing", SOAK, {image, "--seconds=-1"}, "--seconds"},
        WrongCommandLine{"SoakOfNoOperations", SOAK, {image, "--operations", "0"}, "--operations"}),
    [](const auto &parameter) { return parameter.param.name; });

} // namespace

TEST_P(ProgramOfTests, RefusesWhatItCannotWorkWith) {
    const Finished run = runProgram(GetParam().program, GetParam().arguments);
    EXPECT_EQ(run.signal, 0);
    EXPECT_EQ(run.status, 2);
    EXPECT_EQ(run.out, "");
    const std::string program = GetParam().program;
    EXPECT_THAT(run.err, StartsWith(program.substr(program.rfind('/') + 1) + ": "));
    EXPECT_THAT(run.err, HasSubstr(GetParam().mentioned));
}

TEST(ProgramsOfTests, HelpAndEnd) {
    for (const char *program : {CONTRACT_TESTS, SOAK}) {
        const Finished run = runProgram(program, {"--help"});
        EXPECT_EQ(run.signal, 0);
        EXPECT_EQ(run.status, 0);
        EXPECT_THAT(run.out, HasSubstr("--image"));
        EXPECT_EQ(run.err, "");
    }
}

TEST(ProgramsOfTests, SayHowManyTestsWereLeftOut) {
    const Finished run = runProgram(CRASHING_TESTS, {"--isolate", "--except", "^Crashing"});
    EXPECT_EQ(run.status, 1) << "no test was run";
    EXPECT_EQ(run.out, "crashing_tests: 0 passed, 0 failed, 0 skipped, 1 left out by --except "
                       "^Crashing, in 0 s\n");
}
