#include "CommandLine.h"

#include <CLI/CLI.hpp>

#include <filesystem>
#include <iostream>

std::optional<int> parseCommandLine(CLI::App &app, int argc, const char *const *argv) {
    app.name(std::filesystem::path(argv[0]).filename());
    try {
        app.parse(argc, argv);
    } catch (const CLI::CallForHelp &) {
        std::cout << app.help() << std::flush;
        return std::cout.good() ? 0 : 1;
    } catch (const CLI::ParseError &error) {
        std::cerr << app.get_name() << ": " << error.what() << " (--help lists what there is)\n";
        return badInput;
    }
    return std::nullopt;
}
