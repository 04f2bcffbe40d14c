// Tests that die say where.

#include "ChildProcess.h"

#include <gmock/gmock.h>

#include <csignal>

using testing::ContainsRegex;
using testing::HasSubstr;

namespace {

void expectPlace(const std::string &text) {
    EXPECT_THAT(text, HasSubstr("crashing_tests: WrongZKT.act crashed: SIGSEGV at 0x8 (nothing is "
                                "mapped there)\n"));
    EXPECT_THAT(text, ContainsRegex("\n  plugin\\+0x[0-9a-f]+: .*storeTo\\(char\\*\\) "
                                    "\\(.*Crashes\\.cpp:[0-9]+\\)\n"));
}

} // namespace

TEST(DyingTest, SaysWhereInTheImage) {
    const Finished run = runProgram(CRASHING_TESTS, {});
    EXPECT_EQ(run.signal, SIGSEGV);
    EXPECT_THAT(run.out, HasSubstr("printed before"));
    expectPlace(run.err);
}

TEST(DyingTest, SaysWhereInTheImageAmongIsolatedTests) {
    const Finished run = runProgram(CRASHING_TESTS, {"--isolate"});
    EXPECT_EQ(run.status, 1);
    EXPECT_THAT(run.out, HasSubstr("printed before"));
    expectPlace(run.out);
    EXPECT_THAT(run.out, HasSubstr("FAILED Crashing.InThePlugin died of signal 11\n"));
}
