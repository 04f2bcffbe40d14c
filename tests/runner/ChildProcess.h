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

/// Runs a program, without a shell, with a file as its standard input, and waits for it. Throws
/// std::system_error when it cannot be started.
Finished runProgram(const std::filesystem::path &program, const std::vector<std::string> &arguments,
                    const std::filesystem::path &input = "/dev/null");
