// Plug-ins that crash: who, where, and what was known until then.

#include "Zkthost.h"

#include "host/processor/Processor.h"
#include "tests/host/WrongPlugins.h"

#include <gmock/gmock.h>

#include <map>
#include <string>

using testing::ContainsRegex;
using testing::HasSubstr;
using testing::MatchesRegex;
using testing::Not;
using testing::StartsWith;

namespace {

constexpr int crashStatus = 4;

/// "Crashes.cpp:21": the line of the source that has this text.
std::string lineOf(const std::string &text) {
    const auto lines = linesOf(readFile(CRASHES));
    for (std::size_t i = 0; i < lines.size(); ++i)
        if (lines[i].find(text) != std::string::npos)
            return "Crashes.cpp:" + std::to_string(i + 1);
    throw std::runtime_error("no such line: " + text);
}

class Crash : public testing::TestWithParam<const char *> {
protected:
    static Finished run(const std::vector<std::string> &command, const char *fault) {
        return zkthost(command, wrongPlugin(GetParam(), fault));
    }
    static std::vector<std::string> told(const char *fault,
                                         const char *called = "New WrongZKT.act") {
        const Finished run = Crash::run({"call", called}, fault);
        EXPECT_EQ(run.signal, 0);
        EXPECT_EQ(run.status, crashStatus);
        auto lines = linesOf(run.err);
        if (lines.empty())
            lines.emplace_back("nothing was told");
        return lines;
    }
    static std::string loadedAt() {
        return "  " + wrongPlugin(GetParam(), "any").string() + " is loaded at 0x[0-9a-f]+";
    }
    static std::string step(const std::string &function, const std::string &line) {
        return "  plugin\\+0x[0-9a-f]+: .*" + function + "\\(.*\\) \\(.*" + line + "\\).*";
    }
};

INSTANTIATE_TEST_SUITE_P(, Crash, testing::ValuesIn(wrongPluginSystems),
                         [](const auto &parameter) { return std::string(parameter.param); });

} // namespace

TEST_P(Crash, NamesTheMemberTheAddressAndTheWayThere) {
    const auto lines = told("storedToNothing");
    ASSERT_EQ(lines.size(), 4u);
    EXPECT_EQ(lines[0], "zkthost: WrongZKT.act crashed: SIGSEGV at 0x8 (nothing is mapped there)");
    EXPECT_THAT(lines[1], MatchesRegex(step("storeTo", lineOf("// the store"))));
    EXPECT_THAT(lines[2], MatchesRegex(step("", lineOf("\"act\", [](ObjectHandle) { storeTo"))));
    EXPECT_THAT(lines[3], MatchesRegex(loadedAt()));
}

TEST_P(Crash, NamesWhatElseAProgramDid) {
    constexpr const char *crashed = " crashed: SIGSEGV at 0x8 (nothing is mapped there)";
    EXPECT_EQ(told("storedToNothingByConstructor").front(),
              std::string("zkthost: New WrongZKT") + crashed);
    EXPECT_EQ(told("storedToNothingByDestructor").front(),
              std::string("zkthost: the destructor of WrongZKT") + crashed);
    EXPECT_EQ(told("storedToNothingBySetter", "Dim wrong As New WrongZKT; wrong.size = 5").front(),
              std::string("zkthost: setting WrongZKT.size") + crashed);
    EXPECT_EQ(told("storedToNothingByEntryPoint").front(),
              std::string("zkthost: the entry point") + crashed);
}

// arm64 leaves the highest byte of an address to programs.
TEST_P(Crash, OfAnAddressThatIsNone) {
    const std::map<std::string_view, std::string> places{
        {"arm64", "0x0 (nothing is mapped there)"},
        {"x86_64", "an address that no memory can have"}};
    EXPECT_EQ(told("storedToNoAddress").front(),
              "zkthost: WrongZKT.act crashed: SIGSEGV at " + places.at(processor::name));
}

TEST_P(Crash, IsToldWithTheViolationsBeforeIt) {
    const auto lines = told("storedAfterOverRelease");
    EXPECT_THAT(lines.front(), StartsWith("zkthost: WrongZKT.act crashed: SIGSEGV at 0x8"));
    EXPECT_THAT(lines.back(),
                StartsWith("violation: REALUnlockObject: releases WrongZKT#1, of which"));
}

TEST_P(Crash, WhereNoCodeIsLeadsToTheCaller) {
    const auto lines = told("jumpedToNothing");
    ASSERT_GE(lines.size(), 4u);
    EXPECT_EQ(lines[0], "zkthost: WrongZKT.act crashed: SIGSEGV at 0x0 (nothing is mapped there)");
    EXPECT_EQ(lines[1], "  0x0, where no code is");
    EXPECT_THAT(lines[2], MatchesRegex(step("callNothing", lineOf("    noFunction();"))));
}

TEST_P(Crash, OfAStackThatIsFull) {
    const auto lines = told("recursedForEver");
    EXPECT_THAT(lines[0], StartsWith("zkthost: WrongZKT.act crashed: SIGSEGV at 0x"));
    EXPECT_THAT(lines[1], ContainsRegex("plugin\\+0x[0-9a-f]+: .*descend\\(int\\)"));
}

TEST_P(Crash, ByAbort) {
    const auto lines = told("aborted");
    EXPECT_EQ(lines[0], "zkthost: WrongZKT.act crashed: SIGABRT");
    EXPECT_THAT(lines, testing::Contains(MatchesRegex(step("giveUp", lineOf("std::abort();")))));
}

TEST_P(Crash, InASystemLibraryLeadsToThePlugin) {
    const auto lines = told("crashedInTheSystem");
    EXPECT_THAT(lines[0], StartsWith("zkthost: WrongZKT.act crashed: SIGSEGV at 0x10"));
    EXPECT_THAT(lines[1], ContainsRegex("^  libc\\.so\\.6\\+0x[0-9a-f]+"));
    EXPECT_THAT(lines, testing::Contains(MatchesRegex(step("measure", lineOf("std::strlen(")))));
}

namespace {

class ReportOfACrash : public testing::TestWithParam<ImageFile> {};

INSTANTIATE_TEST_SUITE_P(, ReportOfACrash, testing::ValuesIn(images()),
                         [](const auto &parameter) { return parameter.param.name; });

} // namespace

// The system's gethostname crashes, which Foundation asks for a unique name: the plug-in itself has
// no such fault.
TEST_P(ReportOfACrash, HasWhatCameBefore) {
    // The dynamic linker takes a blank in this list for its end, in a folder's name too.
    const std::filesystem::path library = CRASHING_HOST_NAME;
    setenv("LD_LIBRARY_PATH", library.parent_path().c_str(), 1);
    setenv("LD_PRELOAD", library.filename().c_str(), 1);
    const Finished run = zkthost({"report"}, GetParam().path);
    unsetenv("LD_PRELOAD");
    unsetenv("LD_LIBRARY_PATH");
    EXPECT_EQ(run.signal, 0);
    EXPECT_EQ(run.status, crashStatus);
    EXPECT_THAT(run.out, ContainsRegex("\n  operatingSystemVersionString +String +[^ \n]+\n$"));
    EXPECT_THAT(run.out, Not(HasSubstr("globallyUniqueString")));
    EXPECT_THAT(
        run.err,
        StartsWith("zkthost: NSProcessInfoZKT.globallyUniqueString crashed: SIGSEGV at 0x8"));
    EXPECT_THAT(run.err,
                ContainsRegex("\n  NSProcessInfoZKT[.a-z]*\\+0x[0-9a-f]+: "
                              "processinfo::globallyUniqueString\\(REALobjectStruct\\*, long\\) "
                              "\\([^\n]*processinfo/Properties.mm:[0-9]+\\)"));
}
