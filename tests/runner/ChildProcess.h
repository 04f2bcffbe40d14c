#pragma once

#include <filesystem>
#include <string>
#include <sys/types.h>
#include <vector>

/// A program that has come to its end.
struct Finished {
    pid_t process;
    int status; ///< exit status; -1 after a signal
    int signal; ///< that ended it; 0 otherwise
    std::string out;
    std::string err;
};

/// What starts a program of this build: its path and the arguments, behind the emulator where the
/// build is for another processor than the machine's.
std::vector<std::string> commandOf(const std::filesystem::path &program,
                                   const std::vector<std::string> &arguments);
/// An emulated program cannot start itself again: the system knows no way to.
bool isEmulated();

/// Runs a command, without a shell, with a file as its standard input, and waits for it. Throws
/// std::system_error when it cannot be started.
Finished runCommand(std::vector<std::string> command,
                    const std::filesystem::path &input = "/dev/null");
/// The same with a program of this build.
Finished runProgram(const std::filesystem::path &program, const std::vector<std::string> &arguments,
                    const std::filesystem::path &input = "/dev/null");
/// In a fork: goes on as the command.
[[noreturn]] void become(std::vector<std::string> command);
