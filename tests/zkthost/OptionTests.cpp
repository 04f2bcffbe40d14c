// zkthost's command line: what it takes, what it refuses, and hosts that lack a service.

#include "Json.h"
#include "Zkthost.h"

#include "host/services/Services.h"

#include <gmock/gmock.h>

#include <map>

using testing::HasSubstr;

namespace {

class CommandLine : public testing::TestWithParam<ImageFile> {
protected:
    const std::filesystem::path &image = GetParam().path;
};

INSTANTIATE_TEST_SUITE_P(, CommandLine, testing::ValuesIn(images()),
                         [](const auto &parameter) { return parameter.param.name; });

/// Reports and descriptions of two runs, without what differs from process to process.
std::string described(const Finished &run) {
    expectSuccess(run);
    return run.out;
}

} // namespace

TEST_P(CommandLine, TakesOptionsBeforeAndAfterTheCommand) {
    const std::string after =
        described(zkthost({"describe", "--host-version", "2012.5", "--image", image}));
    EXPECT_EQ(described(zkthost({"--image", image, "--host-version", "2012.5", "describe"})),
              after);
    EXPECT_EQ(described(zkthost({"--host-version", "2012.5", "describe", "--image", image})),
              after);
    EXPECT_THAT(after, HasSubstr("interface version 10"));
}

TEST_P(CommandLine, TakesSeveralMissingServices) {
    const auto report =
        parsedJson(described(zkthost({"report", "--format", "json", "--without", "REALBuildString",
                                      "--without", "REALGetRBVersion"},
                                     image)));
    EXPECT_EQ(integerMember(report, "interfaceVersion"), 9);
    for (const Json &row : arrayMember(report, "properties"))
        if (stringMember(row, "type") == "String")
            EXPECT_TRUE(member(row, "value").is_null()) << stringMember(row, "name");
}

TEST_P(CommandLine, TakesTheSameMissingServiceTwice) {
    expectSuccess(
        zkthost({"report", "--without", "REALLockObject", "--without", "REALLockObject"}, image));
}

TEST(Help, ListsTheCommandsTheOptionsAndTheServices) {
    const Finished run = zkthost({"--help"});
    expectSuccess(run);
    for (const char *word : {"describe", "report", "call", "convert", "--image", "--arch",
                             "--host-version", "--without", "--sibling"})
        EXPECT_THAT(run.out, HasSubstr(word));
    for (const std::string_view service : host::Services::names())
        EXPECT_THAT(run.out, HasSubstr("\n  " + std::string(service) + "\n"));
}

TEST(Help, HasTheExitStatuses) {
    const Finished run = zkthost({"--help"});
    EXPECT_THAT(run.out, HasSubstr("\nExit status:\n  0  fine\n  1  the plug-in misbehaved"));
    for (const char *status : {"\n  2  ", "\n  3  ", "\n  4  ", "\n  5  "})
        EXPECT_THAT(run.out, HasSubstr(status));
}

TEST(Help, IsThereForEachCommandWithWhatAllHave) {
    for (const char *command : {"describe", "report", "convert", "call"}) {
        SCOPED_TRACE(command);
        const Finished run = zkthost({command, "--help"});
        expectSuccess(run);
        for (const char *option : {"--format", "--image", "--arch", "--host-version", "--without",
                                   "--sibling", "--trace"})
            EXPECT_THAT(run.out, HasSubstr(option));
        EXPECT_EQ(zkthost({"help", command}).out, run.out);
    }
}

TEST(Help, IsACommandToo) {
    const Finished run = zkthost({"help"});
    expectSuccess(run);
    EXPECT_EQ(run.out, zkthost({"--help"}).out);
    expectBadInput(zkthost({"help", "reprot"}), "no command reprot; the nearest is report");
}

TEST(Help, IsFreeOfTheParsersOwnWords) {
    for (const char *command : {"help", "describe", "report", "convert", "call"})
        for (const char *word : {"->", "Excludes", "REQUIRED", "{"})
            EXPECT_EQ(zkthost({"help", command}).out.find(word), std::string::npos)
                << command << ' ' << word;
}

TEST(Version, IsTheProjects) {
    const Finished run = zkthost({"--version"});
    expectSuccess(run);
    EXPECT_EQ(run.out, "zkthost " PROJECT_VERSION "\n");
}

namespace {

// A command line that is wrong, and the word that its message has to have.
struct WrongCommandLine {
    const char *name;
    std::vector<std::string> arguments;
    const char *mentioned;
};
void PrintTo(const WrongCommandLine &wrong, std::ostream *stream) {
    *stream << wrong.name;
}

class Refusal : public testing::TestWithParam<WrongCommandLine> {};

INSTANTIATE_TEST_SUITE_P(
    , Refusal,
    testing::Values(
        WrongCommandLine{"NoCommand", {}, "command"},
        WrongCommandLine{"UnknownCommand", {"rport"}, "rport"},
        WrongCommandLine{"NearestCommand", {"reprot"}, "no command reprot; the nearest is report"},
        WrongCommandLine{"NoNearCommand", {"xyzzy"}, "no command xyzzy ("},
        WrongCommandLine{"UnknownOption", {"report", "--colour"}, "report has no option --colour"},
        WrongCommandLine{"NearestOption",
                         {"report", "--formt=json"},
                         "no option --formt; the nearest is --format"},
        WrongCommandLine{
            "NearestGeneralOption", {"report", "--imag", "x"}, "the nearest is --image"},
        WrongCommandLine{"OptionBeforeItsCommand",
                         {"--format", "json", "report"},
                         "--format stands behind its command: zkthost report --format"},
        WrongCommandLine{
            "TheFirstOfSeveralWords", {"report", "a", "b"}, "report is followed by a,"},
        WrongCommandLine{
            "SiblingByNumber", {"report", "--sibling", "3"}, "--sibling 3: it is all, "},
        WrongCommandLine{
            "UnknownProcessor", {"report", "--arch", "ppc"}, "--arch ppc: it is x86_64 or arm64"},
        WrongCommandLine{"ProcessorWithoutName", {"report", "--arch"}, "--arch"},
        WrongCommandLine{"EmptyVersion", {"report", "--host-version", ""}, "--host-version : "},
        WrongCommandLine{"NegativeVersion", {"report", "--host-version=-1"}, "--host-version -1"},
        WrongCommandLine{"VersionBeyondNumbers", {"report", "--host-version", "1e999"}, "1e999"},
        WrongCommandLine{"VersionNaN", {"report", "--host-version", "nan"}, "--host-version nan"},
        WrongCommandLine{"FileAndClass", {"convert", "--plist", "a", "--class", "B"}, "--class"},
        WrongCommandLine{"UnknownOptionWithoutCommand", {"--colour"}, "--colour"},
        WrongCommandLine{"TwoCommands", {"report", "describe"}, "describe"},
        WrongCommandLine{"ExtraWord", {"report", "me"}, "me"},
        WrongCommandLine{"ImageWithoutFile", {"report", "--image"}, "--image"},
        WrongCommandLine{
            "UnknownService", {"report", "--without", "REALLockObjekt"}, "REALLockObjekt"},
        WrongCommandLine{
            "ServiceInOtherLetters", {"report", "--without", "reallockobject"}, "REALLockObject"},
        WrongCommandLine{
            "NearestService", {"describe", "--without", "BuildString"}, "REALBuildString"},
        WrongCommandLine{"ServiceThatEveryHostHas",
                         {"report", "--without", "RegisterPluginVersion"},
                         "RegisterPluginVersion"},
        WrongCommandLine{"WithoutNothing", {"report", "--without"}, "--without"},
        WrongCommandLine{"UnknownSibling", {"report", "--sibling", "cousin"}, "cousin"},
        WrongCommandLine{"VersionThatIsNoNumber", {"report", "--host-version", "new"}, "new"},
        WrongCommandLine{"UnknownReportFormat", {"report", "--format", "xml"}, "xml"},
        WrongCommandLine{"UnknownConvertFormat", {"convert", "--format", "xml"}, "xml"},
        WrongCommandLine{"ConvertWithoutFile", {"convert", "--plist"}, "--plist"},
        WrongCommandLine{"ConvertWithoutClass", {"convert", "--class"}, "--class"},
        WrongCommandLine{"PropertyListOfAReport", {"report", "--plist", "a"}, "--plist"},
        WrongCommandLine{"ReportAsMarkdown", {"report", "--format", "markdown"}, "markdown"},
        WrongCommandLine{"PageWithoutWords", {"describe", "--format", "html"}, "--words"},
        WrongCommandLine{"WordsForJson",
                         {"describe", "--format", "json", "--words", "a"},
                         "--words is for --format markdown or html"},
        WrongCommandLine{"WordsOfAReport", {"report", "--words", "a"}, "--words"},
        WrongCommandLine{"UnknownDescribeFormat", {"describe", "--format", "yaml"}, "yaml"}),
    [](const auto &parameter) { return parameter.param.name; });

} // namespace

TEST_P(Refusal, IsOneMessageThatNamesTheCause) {
    for (const ImageFile &image : images()) {
        auto arguments = GetParam().arguments;
        arguments.insert(arguments.begin(), {"--image", image.path});
        expectBadInput(zkthost(arguments), GetParam().mentioned);
    }
}

namespace {

class HostWithout : public testing::TestWithParam<std::tuple<ImageFile, std::string>> {
protected:
    Finished run(const char *command) {
        return zkthost({command, "--without", service}, std::get<0>(GetParam()).path);
    }
    const std::string &service = std::get<1>(GetParam());
};

std::vector<std::string> services() {
    std::vector<std::string> names;
    for (const std::string_view name : host::Services::names())
        if (name != "RegisterPluginVersion") // no host lacks it
            names.emplace_back(name);
    return names;
}

INSTANTIATE_TEST_SUITE_P(
    , HostWithout, testing::Combine(testing::ValuesIn(images()), testing::ValuesIn(services())),
    [](const auto &parameter) {
        return std::string(std::get<0>(parameter.param).name) + "_" + std::get<1>(parameter.param);
    });

} // namespace

TEST_P(HostWithout, AServiceIsStillDescribed) {
    const Finished described = run("describe");
    expectSuccess(described);
    EXPECT_EQ(described.out.find("\nno classes\n") == std::string::npos,
              service != "PluginRegisterClass");
}

TEST_P(HostWithout, AServiceIsStillReportedOn) {
    const Finished reported = run("report");
    if (service == "PluginRegisterClass") {
        expectBadInput(reported, "NSProcessInfoZKT");
        return;
    }
    // What such a host has to expect: arguments and entries of the environment that it alone could
    // release, and an activity's reason that is released without having been held.
    const std::map<std::string, std::string> consequences{
        {"REALUnlockObject", "leaked, 1 reference never released"},
        {"REALUnlockString", "leaked, 1 reference never released"},
        {"REALUnlockObject", "leaked, 1 reference never released"},
        {"REALLockString", "after it was freed"}};
    if (const auto found = consequences.find(service); found != consequences.end()) {
        EXPECT_EQ(reported.status, 1);
        EXPECT_THAT(reported.err, testing::HasSubstr(found->second));
    } else {
        expectSuccess(reported);
    }
    EXPECT_EQ(reported.out.find("processInfo gives nil") != std::string::npos,
              service == "PluginNewInstance");
}
