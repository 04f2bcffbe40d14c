// Tests that leak fail, where LeakSanitizer looks on.

#include "ChildProcess.h"

#include <gmock/gmock.h>

using testing::HasSubstr;

TEST(LeakingTest, FailsAmongIsolatedTests) {
    const Finished run = runProgram(LEAKING_TESTS, {"--isolate"});
    EXPECT_EQ(run.status, 1);
    EXPECT_THAT(run.out, HasSubstr("Direct leak of 77 byte(s) in 1 object(s)"));
    EXPECT_THAT(run.out, HasSubstr("FAILED Leaking.ABlock ended with status 1\n"));
}
