#include "ChildProcess.h"

#include "System.h"

#include <cerrno>
#include <fcntl.h>
#include <spawn.h>
#include <sstream>
#include <string_view>
#include <sys/mman.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <system_error>
#include <unistd.h>

// Not every unistd.h declares it.
// NOLINTNEXTLINE(readability-redundant-declaration)
extern "C" char **environ;

namespace {

void check(int error, const char *what) {
    if (error != 0)
        throw std::system_error(error, std::generic_category(), what);
}

/// A file in memory that the program writes to: unlike a pipe it takes any amount.
class Output {
public:
    explicit Output(const char *name) : file_(anonymousFile(name)) {
        check(file_ < 0 ? errno : 0, "a file for the output");
    }
    ~Output() { close(file_); }
    Output(const Output &) = delete;
    Output &operator=(const Output &) = delete;

    [[nodiscard]] int file() const { return file_; }
    [[nodiscard]] std::string text() const {
        struct stat status{};
        check(fstat(file_, &status) < 0 ? errno : 0, "fstat");
        std::string text(static_cast<std::size_t>(status.st_size), '\0');
        check(pread(file_, text.data(), text.size(), 0) < 0 ? errno : 0, "pread");
        return text;
    }

private:
    int file_;
};

class FileActions {
public:
    FileActions() { check(posix_spawn_file_actions_init(&actions_), "file actions"); }
    ~FileActions() { posix_spawn_file_actions_destroy(&actions_); }
    FileActions(const FileActions &) = delete;
    FileActions &operator=(const FileActions &) = delete;

    void duplicate(int from, int to) {
        check(posix_spawn_file_actions_adddup2(&actions_, from, to), "file actions");
    }
    void open(int file, const char *path) {
        check(posix_spawn_file_actions_addopen(&actions_, file, path, O_RDONLY, 0), "file actions");
    }
    [[nodiscard]] const posix_spawn_file_actions_t *get() const { return &actions_; }

private:
    posix_spawn_file_actions_t actions_;
};

/// As the system's calls want it; points into the command.
std::vector<char *> pointersTo(std::vector<std::string> &command) {
    std::vector<char *> pointers;
    for (std::string &word : command)
        pointers.push_back(word.data());
    pointers.push_back(nullptr);
    return pointers;
}

} // namespace

std::vector<std::string> commandOf(const std::filesystem::path &program,
                                   const std::vector<std::string> &arguments) {
    std::vector<std::string> command;
    std::istringstream emulator(EMULATOR); // a word a line
    for (std::string word; std::getline(emulator, word);)
        command.push_back(word);
    command.push_back(program.string());
    command.insert(command.end(), arguments.begin(), arguments.end());
    return command;
}

bool isEmulated() {
    return !std::string_view(EMULATOR).empty();
}

Finished runProgram(const std::filesystem::path &program, const std::vector<std::string> &arguments,
                    const std::filesystem::path &input) {
    return runCommand(commandOf(program, arguments), input);
}

void become(std::vector<std::string> command) {
    execv(command.front().c_str(), pointersTo(command).data());
    _exit(127);
}

Finished runCommand(std::vector<std::string> command, const std::filesystem::path &input) {
    const Output out("out");
    const Output err("err");
    FileActions actions;
    actions.open(STDIN_FILENO, input.c_str());
    actions.duplicate(out.file(), STDOUT_FILENO);
    actions.duplicate(err.file(), STDERR_FILENO);
    pid_t process = 0;
    const char *const program = command.front().c_str();
    check(
        posix_spawn(&process, program, actions.get(), nullptr, pointersTo(command).data(), environ),
        program);
    int status = 0;
    check(waitpid(process, &status, 0) < 0 ? errno : 0, "waitpid");
    return {.process = process,
            .status = WIFEXITED(status) ? WEXITSTATUS(status) : -1,
            .signal = WIFSIGNALED(status) ? WTERMSIG(status) : 0,
            .out = out.text(),
            .err = err.text()};
}
