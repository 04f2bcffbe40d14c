// zkthost run: programs against the plug-in.

#include "Zkthost.h"

#include <gmock/gmock.h>

#include <string>

using testing::EndsWith;
using testing::MatchesRegex;
using testing::StartsWith;

namespace {

class Run : public testing::TestWithParam<ImageFile> {
protected:
    Finished run(std::string_view program, const std::vector<std::string> &arguments = {}) {
        std::vector<std::string> words{"run", "--image", GetParam().path.string(),
                                       folder.write("p.bas", program).string()};
        words.insert(words.end(), arguments.begin(), arguments.end());
        return zkthost(words);
    }
    void expectPrints(std::string_view program, std::string_view printed) {
        SCOPED_TRACE(program);
        const Finished finished = run(program);
        expectSuccess(finished);
        EXPECT_EQ(finished.out, printed);
    }
    /// Refused with these lines; "F" stands for the file.
    void expectRefused(std::string_view program, const std::vector<std::string> &errors) {
        SCOPED_TRACE(program);
        const Finished finished = run(program);
        EXPECT_EQ(finished.status, 2);
        EXPECT_EQ(finished.out, "");
        std::string expected;
        for (const std::string &error : errors)
            expected += (folder.path() / "p.bas").string() + error.substr(1) + '\n';
        EXPECT_EQ(finished.err, expected);
    }

    Folder folder;
};

INSTANTIATE_TEST_SUITE_P(, Run, testing::ValuesIn(images()),
                         [](const auto &parameter) { return parameter.param.name; });

} // namespace

TEST_P(Run, ReachesTheClassesOfThePlugIn) {
    expectPrints("Dim info As NSProcessInfoZKT = NSProcessInfoZKT.processInfo\n"
                 "info.processName = \"renamed\"\n"
                 "Print info.processName, (New NSProcessInfoZKT).processName\n"
                 "Print NSProcessInfoZKT.NSMACHOperatingSystem\n"
                 "Print info.physicalMemory > 0, info.systemUptime > 0, info.environment\n",
                 "renamed renamed\n5\nTrue True Dictionary\n");
}

TEST_P(Run, PassesArgumentsAndTakesResults) {
    expectPrints("Dim info As New NSProcessInfoZKT\n"
                 "Dim a As NSProcessInfoActivityZKT\n"
                 "a = info.beginActivity(NSProcessInfoZKT.NSActivityBackground Or "
                 "NSProcessInfoZKT.NSActivityLatencyCritical, \"work\")\n"
                 "Print a.Options, a.Reason, a.Handle <> 0\n"
                 "info.endActivity a\n"
                 "Print a.Handle\n"
                 "info.disableAutomaticTermination \"saving\"\n"
                 "info.enableAutomaticTermination(\"saving\")\n"
                 "info.disableSuddenTermination\n"
                 "info.enableSuddenTermination()\n",
                 "1095216660735 work True\n0\n");
}

TEST_P(Run, ShowsAProgramItsOwnArguments) {
    const Finished finished = run("Dim info As NSProcessInfoZKT = NSProcessInfoZKT.processInfo\n"
                                  "For i As Integer = 1 To info.argumentsCount - 1\n"
                                  "Print i, info.argument(i), info.arguments(i)\nNext\n"
                                  "Print info.processName\n",
                                  {"one", "--image", "--two=x", "-"});
    expectSuccess(finished);
    EXPECT_EQ(finished.out, "1 one one\n2 --image --image\n3 --two=x --two=x\n4 - -\np.bas\n");
}

TEST_P(Run, ReadsAProgramFromStandardInput) {
    const auto reading = [&](std::string_view program) {
        return zkthostReading(folder.write("piped", program),
                              {"--image", GetParam().path.string(), "run", "-", "argument"});
    };
    const Finished finished = reading("Dim info As New NSProcessInfoZKT\nPrint info.argument(1)");
    expectSuccess(finished);
    EXPECT_EQ(finished.out, "argument\n");
    const Finished refused = reading("Print\nPrint nothing");
    EXPECT_EQ(refused.status, 2);
    EXPECT_EQ(refused.err, "-:2:7: nothing is called nothing\n");
    expectSuccess(reading(""));
}

TEST_P(Run, CatchesWhatThePlugInRaises) {
    const Finished finished = run("Dim info As New NSProcessInfoZKT\n"
                                  "Try\ninfo.endActivity Nil\n"
                                  "Catch e As NilObjectException\nPrint e.Message\nEnd Try\n"
                                  "Try\nPrint info.argument(99)\n"
                                  "Catch e As NSExceptionZKT\nPrint e IsA RuntimeException\n"
                                  "End Try\n");
    EXPECT_EQ(finished.status, 0);
    EXPECT_EQ(finished.out, "activity is nil\nTrue\n");
}

TEST_P(Run, TellsAnUncaughtExceptionWithItsLines) {
    const Finished finished = run("Dim info As New NSProcessInfoZKT\n"
                                  "Print \"begun\"\n"
                                  "Finish Nil\n"
                                  "Sub Finish(a As NSProcessInfoActivityZKT)\n"
                                  "    info.endActivity a\n"
                                  "End Sub\n");
    const std::string file = (folder.path() / "p.bas").string();
    EXPECT_EQ(finished.status, 1);
    EXPECT_EQ(finished.out, "begun\n");
    EXPECT_EQ(finished.err, file + ":5: uncaught NilObjectException: activity is nil\n" + file +
                                ":5: in Finish\n" + file + ":3: in the program\n");
}

TEST_P(Run, TellsEndlessRecursionInFewLines) {
    const Finished finished = run("Again\nSub Again\nAgain\nEnd Sub\n");
    EXPECT_EQ(finished.status, 1);
    const std::vector<std::string> lines = linesOf(finished.err);
    ASSERT_EQ(lines.size(), 22U);
    EXPECT_THAT(lines[0],
                EndsWith("p.bas:3: uncaught StackOverflowException: too many calls inside "
                         "each other"));
    EXPECT_THAT(lines[11], MatchesRegex("\\.\\.\\. [0-9]+ more calls"));
    EXPECT_THAT(lines[21], EndsWith("p.bas:1: in the program"));
}

TEST_P(Run, TellsAllThatIsWrongAndRunsNothing) {
    expectRefused("Print \"never\"\n"
                  "Dim info As NSProcesInfoZKT\n"
                  "Dim other As NSProcessInfoZKT = NSProcessInfoZKT.procesInfo\n"
                  "Dim good As New NSProcessInfoZKT\n"
                  "good.processIdentifier = 1\n"
                  "Print good.argument(\"a\"), good.argument, good.procesName\n"
                  "good.processName = 5\n"
                  "If True Then\n",
                  {"F:2:13: there is no type NSProcesInfoZKT; the nearest is NSProcessInfoZKT",
                   "F:3:50: NSProcessInfoZKT has no member procesInfo; the nearest is processInfo",
                   "F:5:6: NSProcessInfoZKT.processIdentifier is read-only",
                   // NOLINTNEXTLINE(bugprone-suspicious-missing-comma)
                   "F:6:21: index of NSProcessInfoZKT.argument(index As Integer) As String is "
                   "Integer, not String; Val makes a number of one",
                   "F:6:32: no arguments for NSProcessInfoZKT.argument(index As Integer) As String",
                   "F:6:47: NSProcessInfoZKT has no member procesName; the nearest is processName",
                   "F:7:20: NSProcessInfoZKT.processName is String, not Integer; Str makes one of "
                   "a number",
                   "F:8:1: If is not closed with End If"});
}

TEST_P(Run, ReleasesActivitiesWithTheirLastReference) {
    // What the plug-in holds at the end would be a leak and told.
    expectPrints("Sub Work\n"
                 "Dim a As NSProcessInfoActivityZKT = NSProcessInfoZKT.processInfo.beginActivity("
                 "1, \"work\")\n"
                 "Print a.Reason\nEnd Sub\nWork\nDim list() As NSProcessInfoActivityZKT\n"
                 "list.Append NSProcessInfoZKT.processInfo.beginActivity(2, \"more\")\n"
                 "Dim kept As New Dictionary\nkept.Value(\"a\") = list(0)\n",
                 "work\n");
}

TEST_P(Run, TellsObjectsThatHoldEachOther) {
    const Finished finished = run("Dim d As New Dictionary\nd.Value(\"self\") = d\nPrint 1\n");
    EXPECT_EQ(finished.status, 1);
    EXPECT_EQ(finished.out, "1\n");
    EXPECT_THAT(finished.err, StartsWith("leak: Dictionary#1 outlives the program: objects hold "
                                         "each other in a circle\n"));
}

TEST_P(Run, RefusesFilesThatAreNoPrograms) {
    const std::string image = GetParam().path.string();
    expectBadInput(zkthost({"run", "--image", image, (folder.path() / "none.bas").string()}),
                   "none.bas: No such file or directory");
    expectBadInput(zkthost({"run", "--image", image, folder.path().string()}), "is a folder");
    expectBadInput(zkthost({"run", "--image", image}), "no program");
}
