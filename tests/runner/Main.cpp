#include "CommandLine.h"
#include "IsolatedRun.h"

#include <gmock/gmock.h>

#include <exception>
#include <filesystem>
#include <iostream>

// What is thrown ends the program and is named as it does.
// NOLINTNEXTLINE(bugprone-exception-escape)
int main(int argc, char **argv) {
    testing::InitGoogleMock(&argc, argv);
    IsolatedRun run;
    CLI::App app{"Tests; GoogleTest's options are valid too."};
    run.addOptionsTo(app);
    if (const auto end = parseCommandLine(app, argc, argv))
        return *end;
    try {
        return runTests(run, std::filesystem::path(argv[0]).filename());
    } catch (const std::exception &exception) {
        std::cerr << argv[0] << ": " << exception.what() << '\n';
        return badInput;
    }
}
