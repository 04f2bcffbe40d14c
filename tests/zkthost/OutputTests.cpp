// Standard output: what cannot be written is an error; a terminal is given colours and short lines.

#include "Pty.h"
#include "Zkthost.h"

#include "host/zkthost/Columns.h"

#include <gmock/gmock.h>

#include <array>
#include <cstdlib>
#include <regex>
#include <sys/ioctl.h>
#include <sys/wait.h>
#include <unistd.h>

using testing::HasSubstr;
using testing::Not;

namespace {

/// The program with a redirection as a shell has it.
Finished redirected(const std::string &to, const std::vector<std::string> &arguments) {
    std::vector<std::string> command = commandOf(ZKTHOST_PROGRAM, arguments);
    command.insert(command.begin(), {"/bin/sh", "-c", "exec \"$0\" \"$@\" " + to});
    return runCommand(command);
}

const std::vector<std::vector<std::string>> commands{
    {"--help"},
    {"--version"},
    {"report", "--image", MACOS_BUNDLE},
    {"report", "--format", "json", "--image", MACOS_BUNDLE},
    {"describe", "--image", MACOS_BUNDLE},
    {"convert", "--image", MACOS_BUNDLE},
    {"call", "hostName", "--image", MACOS_BUNDLE}};

void expectFailure(const std::string &to, const std::string &reason) {
    for (const auto &command : commands) {
        SCOPED_TRACE(command.front() + ' ' + to);
        const Finished run = redirected(to, command);
        EXPECT_EQ(run.status, 5);
        EXPECT_EQ(run.err, "zkthost: standard output cannot be written: " + reason + "\n");
    }
}

/// What a report on a terminal of so many columns prints.
std::string onTerminal(unsigned short columns) {
    winsize size{};
    size.ws_col = columns;
    size.ws_row = 24;
    int terminal = -1;
    const pid_t process = forkpty(&terminal, nullptr, nullptr, &size);
    if (process == 0)
        become(commandOf(ZKTHOST_PROGRAM, {"report", "--image", MACOS_BUNDLE}));
    std::string text;
    std::array<char, 4096> buffer{};
    for (ssize_t count = 0; (count = read(terminal, buffer.data(), buffer.size())) > 0;)
        text.append(buffer.data(), static_cast<std::size_t>(count));
    int status = 0;
    waitpid(process, &status, 0);
    EXPECT_EQ(status, 0);
    close(terminal);
    return std::regex_replace(text, std::regex("\r\n"), "\n");
}

std::string withoutColours(const std::string &text) {
    return std::regex_replace(text, std::regex("\033\\[[0-9]*m"), "");
}

} // namespace

TEST(Output, ThatTheDeviceCannotTakeIsAnError) {
    if (!std::filesystem::exists("/dev/full"))
        GTEST_SKIP() << "this system has no device that is full";
    expectFailure(">/dev/full", "No space left on device");
}

TEST(Output, ThatIsClosedIsAnError) {
    expectFailure(">&-", "Bad file descriptor");
}

TEST(Output, IsColouredOnATerminalUnlessRefused) {
    setenv("TERM", "xterm", 1);
    unsetenv("NO_COLOR");
    EXPECT_THAT(onTerminal(80), HasSubstr("\033[1mProperties\033[0m\n"));
    setenv("NO_COLOR", "", 1);
    EXPECT_THAT(onTerminal(80), HasSubstr("\033[1mProperties\033[0m\n"));
    setenv("NO_COLOR", "1", 1);
    EXPECT_THAT(onTerminal(80), Not(HasSubstr("\033")));
    unsetenv("NO_COLOR");
    setenv("TERM", "dumb", 1);
    EXPECT_THAT(onTerminal(80), Not(HasSubstr("\033")));
}

TEST(Output, FoldsValuesIntoTheirColumn) {
    setenv("TERM", "xterm", 1);
    const std::string value(300, 'v');
    setenv("ZKTHOST_LONG", value.c_str(), 1);
    const std::string text = withoutColours(onTerminal(80));
    const auto lines = linesOf(text);
    std::string joined;
    for (std::size_t i = 4; i < lines.size(); ++i) { // behind the names of files
        EXPECT_LE(zkthost::displayWidth(lines[i]), 80u) << lines[i];
        if (lines[i].ends_with("vvv"))
            joined += lines[i].substr(lines[i].find("vvv"));
    }
    EXPECT_EQ(joined, value) << "nothing is lost";
}

TEST(Output, PutsValuesBelowTheirNamesOnANarrowTerminal) {
    setenv("TERM", "dumb", 1);
    EXPECT_THAT(onTerminal(40),
                HasSubstr("\n  processIdentifier                   Integer\n      "));
}
