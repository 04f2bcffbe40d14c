#pragma once

#include <CLI/CLI.hpp>

#include <filesystem>
#include <string>

/// A run in which each test has a process of its own, a fork of this one: what a test binds, loads
/// or breaks is gone with it, and the program is started only once.
struct IsolatedRun {
    bool wanted = false; ///< else all tests run in this process, as GoogleTest's options say
    unsigned jobs = 0;   ///< tests at a time; 0: one for each processor
    unsigned secondsPerTest = 300;        ///< after which a test is killed and has failed
    std::string matching = {};            ///< regular expression; empty: all tests
    std::string except = {};              ///< regular expression of tests to leave out; empty: none
    std::filesystem::path order = {};     ///< file of names, one a line, to run in that order
    std::filesystem::path durations = {}; ///< file to write: "SECONDS NAME" for each test
    std::filesystem::path junit = {};     ///< file to write: the results as XML
    bool stopAtFirstFailure = false;

    void addOptionsTo(CLI::App &app);
};

/// Runs the tests after testing::InitGoogleMock and gives the process's exit status, which main
/// must return at once: it is called in the forks too. Prints what failing tests print, and at the
/// end one line that begins with the label: tests passed, failed, skipped and left out by `except`,
/// and the sum of the lines "N cells" that tests have printed.
int runTests(const IsolatedRun &run, const std::string &label);
