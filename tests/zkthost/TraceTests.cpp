// zkthost --trace: the host's calls as they happen.

#include "Zkthost.h"

#include "tests/host/WrongPlugins.h"

#include <gmock/gmock.h>

using testing::Contains;
using testing::ElementsAre;
using testing::HasSubstr;

namespace {

class LiveTrace : public testing::TestWithParam<const char *> {
protected:
    static Finished run(const std::string &called, const char *fault) {
        return zkthost({"call", called, "--trace"}, wrongPlugin(GetParam(), fault));
    }
};

INSTANTIATE_TEST_SUITE_P(, LiveTrace, testing::ValuesIn(wrongPluginSystems),
                         [](const auto &parameter) { return std::string(parameter.param); });

} // namespace

TEST_P(LiveTrace, HasEveryCallInOrder) {
    const Finished run = this->run("New WrongZKT.act(\"text\")", "none");
    EXPECT_EQ(run.status, 0);
    EXPECT_EQ(run.out, "WrongZKT\n");
    EXPECT_THAT(linesOf(run.err),
                ElementsAre("find RegisterPluginVersion", "RegisterPluginVersion(13)",
                            "find PluginRegisterClass", "PluginRegisterClass(\"WrongZKT\")",
                            "find StringGetCString", "StringGetCString(String#1) = pointer",
                            "find PluginNewInstance", "PluginNewInstance(\"Date\") = Date#2",
                            "find REALUnlockObject", "REALUnlockObject(Date#2)",
                            "find REALBuildString", "REALBuildString(\"made\", 4) = String#2",
                            "find REALUnlockString", "REALUnlockString(String#2)",
                            "find REALLockObject", "REALLockObject(WrongZKT#1)"));
}

TEST_P(LiveTrace, RepeatsACallThatOthersCameBetween) {
    const Finished run = this->run("New WrongZKT.act", "writtenAfterDestruction");
    EXPECT_THAT(linesOf(run.err), Contains("PluginNewInstance(\"WrongZKT\") = WrongZKT#2"));
}

TEST_P(LiveTrace, EndsWithTheCrash) {
    const Finished run = this->run("New WrongZKT.act", "storedAfterOverRelease");
    EXPECT_EQ(run.status, 4);
    EXPECT_THAT(run.err,
                HasSubstr("\nREALUnlockObject(WrongZKT#1)\nzkthost: WrongZKT.act crashed"));
}

TEST(LiveTraceOfThePlugin, IsThereForEveryCommand) {
    for (const char *command : {"report", "describe", "convert"}) {
        SCOPED_TRACE(command);
        const Finished run = zkthost({command, "--trace"}, macosImage().path);
        EXPECT_EQ(run.status, 0);
        EXPECT_THAT(linesOf(run.err), Contains("PluginRegisterClass(\"NSProcessInfoZKT\")"));
    }
    EXPECT_EQ(zkthost({"describe"}, macosImage().path).err, "");
}
