// Plug-ins that are wrong in one thing: the program names it, and ends as it always ends.

#include "Zkthost.h"

#include "tests/host/WrongPlugins.h"

#include <gmock/gmock.h>

#include <string>

namespace {

class WrongPlugin : public testing::TestWithParam<const char *> {
protected:
    static Finished run(const std::vector<std::string> &command, const char *fault) {
        return zkthost(command, wrongPlugin(GetParam(), fault));
    }
    static void expectFault(const Finished &run, const std::string &lines) {
        EXPECT_EQ(run.signal, 0);
        EXPECT_EQ(run.status, 1);
        EXPECT_EQ(run.err, lines + '\n');
    }
    static void expectFaultOfCall(const char *fault, const std::string &lines,
                                  const char *member = "act") {
        SCOPED_TRACE(fault);
        expectFault(run({"call", std::string("New WrongZKT.") + member}, fault), lines);
    }
    static void expectFaultOfRecord(const char *fault, const std::string &violation) {
        SCOPED_TRACE(fault);
        expectFault(run({"describe"}, fault), violation);
        expectFault(run({"call", "New WrongZKT.act"}, fault),
                    violation + "\ncall:1:5: there is no class WrongZKT");
        expectFault(run({"report"}, fault),
                    violation + "\nzkthost: " + wrongPlugin(GetParam(), fault).string() +
                        ": registered no class NSProcessInfoZKT");
    }
};

INSTANTIATE_TEST_SUITE_P(, WrongPlugin, testing::ValuesIn(wrongPluginSystems),
                         [](const auto &parameter) { return std::string(parameter.param); });

} // namespace

TEST_P(WrongPlugin, NoneWithoutAFault) {
    const Finished run = this->run({"call", "New WrongZKT.act(\"text\")"}, "none");
    expectSuccess(run);
    EXPECT_EQ(run.out, "WrongZKT\n");
    expectSuccess(this->run({"describe"}, "none"));
}

TEST_P(WrongPlugin, References) {
    expectFaultOfCall("leakedObject", "violation: Date#2 leaked, 1 reference never released (made "
                                      "by PluginNewInstance)");
    expectFaultOfCall("leakedString", "violation: String#1 leaked, 1 reference never released "
                                      "(made by REALBuildString)");
    expectFaultOfCall("lentStringReleased",
                      "violation: REALUnlockString: releases String#1, of which the plug-in holds "
                      "no reference (made by the host, handed to the host by the host)",
                      "act(\"text\")");
    expectFaultOfCall("objectUsedAfterRelease",
                      "violation: REALGetPropValueInteger: got Date#2 after it was freed (made by "
                      "PluginNewInstance, released by REALUnlockObject, freed by "
                      "REALUnlockObject)");
    expectFaultOfCall("releasedInConstructor",
                      "violation: the host: the constructor of WrongZKT released its own object\n"
                      "zkthost: NilObjectException: act is asked of Nil, error number 0");
}

TEST_P(WrongPlugin, Memory) {
    const std::string history = " (made by the host, handed to the host by the host, released by "
                                "the host)";
    expectFaultOfCall("writtenBehindData",
                      "violation: the host: WrongZKT#1 was overwritten behind its 16 bytes of "
                      "instance data" +
                          history);
    expectFaultOfCall("writtenBeforeData",
                      "violation: the host: WrongZKT#1 was overwritten before its instance data" +
                          history);
    expectFaultOfCall("writtenOverHeader", "violation: the host: WrongZKT#1 was overwritten before "
                                           "its instance data (made by the host)");
    expectFaultOfCall("writtenAfterDestruction",
                      "violation: the host: WrongZKT#2 was written to after it was freed (made by "
                      "PluginNewInstance, released by REALUnlockObject, freed by "
                      "REALUnlockObject)");
}

TEST_P(WrongPlugin, Declarations) {
    expectFaultOfCall("numberForAString", "violation: act: got a pointer that is no host string "
                                          "where a live string is needed");
    expectFaultOfCall("resultOfOtherClass",
                      "violation: act: returned MemoryBlock#2 where the declaration says Date");
    expectFaultOfCall("resultWithoutReference",
                      "violation: act: returned WrongZKT#1 without a reference to hand over (made "
                      "by the host, handed to the host by the host)");
    expectFaultOfCall("undeclaredParameter", "violation: REALLockObject: got what the host had "
                                             "left in a register where a live object is needed");
    expectFaultOfCall("getterForADouble",
                      "violation: size: returned what the host had left in a register where the "
                      "declaration says Double",
                      "size");
}

TEST_P(WrongPlugin, Records) {
    expectFaultOfRecord("unreadableDeclaration",
                        "violation: PluginRegisterClass: WrongZKT: method 1 (act(text as): "
                        "\"act(text as\": column 12: expected a type");
    expectFaultOfRecord("oddDataSize", "violation: PluginRegisterClass: WrongZKT: the data size 24 "
                                       "is no multiple of 16");
    expectFaultOfRecord("unknownClassFlags", "violation: PluginRegisterClass: WrongZKT: the flags "
                                             "5 are not supported");
    expectFault(run({"describe"}, "registeredTwice"),
                "violation: PluginRegisterClass: WrongZKT: the class is registered already");
}

TEST_P(WrongPlugin, Exceptions) {
    const std::string passed = " let a C++ exception through: not caught at home";
    for (const char *command : {"describe", "report"})
        expectFault(run({command}, "thrownByEntryPoint"), "zkthost: the entry point" + passed);
    expectFaultOfCall("thrownByConstructor", "zkthost: New WrongZKT" + passed);
    expectFaultOfCall("thrownByMethod", "zkthost: WrongZKT.act" + passed);
    expectFaultOfCall("thrownAfterOverRelease",
                      "violation: REALUnlockObject: releases WrongZKT#1, of which the plug-in "
                      "holds no reference (made by the host, handed to the host by the host)\n"
                      "zkthost: WrongZKT.act" +
                          passed);
    expectFaultOfCall("thrownByDestructor", "violation: the host: a foreign exception left the "
                                            "destructor of WrongZKT#1");
}

TEST_P(WrongPlugin, NoPluginAtAll) {
    expectBadInput(run({"describe"}, "noEntryPoint"),
                   wrongPlugin(GetParam(), "noEntryPoint").string() +
                       ": no plug-in: it does not export REALPluginMain");
}
