#include "CommandLine.h"
#include "Soak.h"

#include "host/core/Cocoa.h"

#include <CLI/CLI.hpp>

#include <exception>
#include <iostream>
#include <unistd.h>

static constexpr long longest = 1'000'000'000'000;

// What is thrown ends the program and is named as it does.
// NOLINTNEXTLINE(bugprone-exception-escape)
int main(int argc, char **argv) {
    host::startFoundation(argc, argv, environ);
    const host::AutoreleasePool pool;
    CLI::App app{"Mixed operations on an image for a long time"};
    SoakOptions options;
    app.add_option("--image", options.image, "macOS bundle or Linux object")
        ->type_name("FILE")
        ->required();
    app.add_option("--operations", options.operations, "how many (default a million)")
        ->check(CLI::Range(1L, longest));
    app.add_option("--seconds", options.seconds, "at most so long; 0: no limit")
        ->check(CLI::Range(0L, longest));
    app.add_option("--plot", options.picture, "write an SVG picture to this file");
    if (const auto end = parseCommandLine(app, argc, argv))
        return *end;
    try {
        return soak(options);
    } catch (const std::exception &error) {
        std::cerr << app.get_name() << ": " << error.what() << '\n';
        return badInput;
    }
}
