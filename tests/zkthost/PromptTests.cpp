// zkthost run on a terminal.

#include "Pty.h"
#include "Zkthost.h"

#include <gmock/gmock.h>

#include <array>
#include <chrono>
#include <csignal>
#include <cstdlib>
#include <poll.h>
#include <sys/wait.h>
#include <termios.h>
#include <thread>
#include <unistd.h>

using testing::HasSubstr;

namespace {

/// A terminal with zkthost run in it.
class Terminal {
public:
    explicit Terminal(const std::filesystem::path &image) {
        process_ = forkpty(&file_, nullptr, nullptr, nullptr);
        if (process_ == 0) {
            setenv("TERM", "dumb", 1);
            become(commandOf(ZKTHOST_PROGRAM, {"run", "--image", image.string()}));
        }
        readUntilPrompt("> ");
    }
    ~Terminal() {
        kill(process_, SIGKILL);
        waitpid(process_, nullptr, 0);
        close(file_);
    }
    Terminal(const Terminal &) = delete;
    Terminal &operator=(const Terminal &) = delete;

    /// What the terminal shows until the next prompt.
    std::string type(const std::string &line, std::string_view prompt = "> ") {
        const std::string keys = line + "\n";
        EXPECT_EQ(write(file_, keys.data(), keys.size()), static_cast<ssize_t>(keys.size()));
        return readUntilPrompt(prompt);
    }
    /// Ctrl-D; the exit status.
    int end() {
        EXPECT_EQ(write(file_, "\x04", 1), 1);
        readUntil("nothing that is ever shown");
        int status = 0;
        waitpid(process_, &status, 0);
        return WEXITSTATUS(status);
    }

private:
    /// And until keys go to the program as they are typed: shortly after its prompt. Ctrl-D before
    /// that is the terminal's own, and lost.
    std::string readUntilPrompt(std::string_view prompt) {
        std::string shown = readUntil(prompt);
        termios state{};
        for (int tries = 0; tries < 10000; ++tries) {
            if (tcgetattr(file_, &state) != 0 || (state.c_lflag & ICANON) == 0)
                break;
            std::this_thread::sleep_for(std::chrono::milliseconds(1));
        }
        return shown;
    }
    /// Or until the program ends, or for ten seconds.
    std::string readUntil(std::string_view end) {
        std::string shown;
        std::array<char, 4096> bytes{};
        pollfd waiting{.fd = file_, .events = POLLIN, .revents = 0};
        while (!shown.ends_with(end) && poll(&waiting, 1, 10000) > 0) {
            const ssize_t count = read(file_, bytes.data(), bytes.size());
            if (count <= 0)
                break;
            shown.append(bytes.data(), static_cast<std::size_t>(count));
        }
        return shown;
    }

    int file_ = -1;
    pid_t process_ = -1;
};

class Prompt : public testing::TestWithParam<ImageFile> {};

INSTANTIATE_TEST_SUITE_P(, Prompt, testing::ValuesIn(images()),
                         [](const auto &parameter) { return parameter.param.name; });

} // namespace

TEST_P(Prompt, ShowsValuesAndKeepsVariables) {
    Terminal terminal(GetParam().path);
    terminal.type("Dim n As Integer = 20");
    EXPECT_THAT(terminal.type("n + 1"), HasSubstr("Integer 21\r\n"));
    EXPECT_THAT(terminal.type("processName + \"!\""), HasSubstr("\"zkthost!\"\r\n"));
    EXPECT_EQ(terminal.end(), 0);
}

TEST_P(Prompt, ReadsOnUntilABlockIsClosed) {
    Terminal terminal(GetParam().path);
    terminal.type("For i As Integer = 6 To 7", "... ");
    terminal.type("Print i * 7", "... ");
    EXPECT_THAT(terminal.type("Next"), HasSubstr("42\r\n49\r\n"));
}

TEST_P(Prompt, GoesOnBehindErrorsAndExceptions) {
    Terminal terminal(GetParam().path);
    EXPECT_THAT(terminal.type("Print nothing"),
                HasSubstr("line:1:7: nothing is called nothing\r\n"));
    EXPECT_THAT(terminal.type("1 \\ 0"),
                HasSubstr("line:1: uncaught UnsupportedOperationException: 1 \\ 0 divides by "
                          "zero\r\n"));
    EXPECT_THAT(terminal.type("\"still \" + \"here\""), HasSubstr("\"still here\"\r\n"));
    EXPECT_EQ(terminal.end(), 0);
}
