#include "CommandLine.h"
#include "ImageUnderTest.h"
#include "IsolatedRun.h"
#include "RowMessages.h"
#include "tests/contract/matrix/FaultMatrix.h"

#include "host/core/Cocoa.h"

#include <gmock/gmock.h>

#include <exception>
#include <iostream>
#include <stdexcept>
#include <string>
#include <unistd.h>

static std::filesystem::path image;

const std::filesystem::path &imageUnderTest() {
    return image;
}

void *imageFunction(host::Image &loaded, std::string_view name) {
    if (void *address = loaded.symbolDemangled(name))
        return address;
    throw std::runtime_error("the image has no function " + std::string(name));
}

// Not every unistd.h declares it.
// NOLINTNEXTLINE(readability-redundant-declaration)
extern "C" char **environ;

// What is thrown ends the program and is named as it does.
// NOLINTNEXTLINE(bugprone-exception-escape)
int main(int argc, char **argv) {
    host::startFoundation(argc, argv, environ);
    const host::AutoreleasePool pool;
    testing::InitGoogleMock(&argc, argv);

    IsolatedRun run;
    CLI::App app{"The plug-in's tests; GoogleTest's options are valid too."};
    app.add_option("--image", image, "the macOS bundle or the Linux object")
        ->check(CLI::ExistingPath);
    app.add_flag_callback(
        "--ask-every-row", [] { askEveryRow(true); }, "convert without the short way to a row");
    app.add_flag_callback("--few-faults", matrix::tryFewFaults,
                          "break the host's services in three ways instead of seven");
    run.addOptionsTo(app);
    if (const auto end = parseCommandLine(app, argc, argv))
        return *end;
    if (image.empty() && !GTEST_FLAG_GET(list_tests)) {
        std::cerr << app.get_name() << ": --image=FILE is missing\n";
        return badInput;
    }
    try {
        return runTests(run, "contract tests of " + image.filename().string());
    } catch (const std::exception &exception) {
        std::cerr << app.get_name() << ": " << exception.what() << '\n';
        return badInput;
    }
}
