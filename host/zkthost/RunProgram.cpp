#include "host/zkthost/RunProgram.h"

#include "host/zkthost/Options.h"
#include "host/zkthost/Output.h"

#include <cerrno>
#include <cstring>
#include <fstream>
#include <iostream>
#include <iterator>
#include <optional>

namespace zkthost {

namespace {

using namespace host;

/// Of an endless recursion the first lines and the last tell enough.
constexpr std::size_t shownLines = 20;

std::string textOf(std::istream &stream) {
    return {std::istreambuf_iterator<char>(stream), {}};
}

std::string placeOf(std::string_view file, const program::RunningLine &line) {
    return std::string(file) + ':' + std::to_string(line.line) + ": ";
}

void tell(std::string_view file, const std::optional<program::Uncaught> &uncaught) {
    if (uncaught)
        printError(uncaughtAsText(file, *uncaught));
}

} // namespace

std::string readProgram(const std::string &file) {
    if (file == "-")
        return textOf(std::cin);
    std::error_code error;
    if (std::filesystem::is_directory(file, error))
        throw InputError(file + ": is a folder, no program");
    std::ifstream stream(file, std::ios::binary);
    if (!stream)
        throw InputError(file + ": " + std::strerror(errno));
    return textOf(stream);
}

std::string errorsAsText(std::string_view file, const std::vector<program::Diagnostic> &errors) {
    std::string text;
    for (const auto &[at, what] : errors)
        text += std::string(file) + ':' + std::to_string(at.line) + ':' +
                std::to_string(at.column) + ": " + what + '\n';
    return text;
}

std::string uncaughtAsText(std::string_view file, const program::Uncaught &uncaught) {
    const auto &lines = uncaught.lines;
    std::string text = lines.empty() ? std::string(file) + ": " : placeOf(file, lines.front());
    text += "uncaught " + uncaught.exception.className + ": " +
            uncaught.exception.message.value_or("") + '\n';
    for (std::size_t i = 0; lines.size() > 1 && i < lines.size(); ++i) {
        if (lines.size() > shownLines && i == shownLines / 2) {
            i = lines.size() - shownLines / 2;
            text += "... " + std::to_string(lines.size() - shownLines) + " more calls\n";
        }
        text += placeOf(file, lines[i]) +
                (lines[i].procedure.empty() ? "in the program" : "in " + lines[i].procedure) + '\n';
    }
    return text;
}

ProgramEnd runProgram(Host &host, const std::string &file, std::string_view text) {
    program::Session session(host, program::Form::file,
                             {.print = [](std::string_view line) { zkthost::print(line); }});
    const program::Loaded loaded = session.load(text);
    if (!loaded.errors.empty()) {
        printError(errorsAsText(file, loaded.errors));
        return ProgramEnd::refused;
    }
    const auto uncaught = session.run();
    tell(file, uncaught);
    const auto atTheEnd = session.finish();
    tell(file, atTheEnd);
    return uncaught || atTheEnd ? ProgramEnd::uncaught : ProgramEnd::fine;
}

} // namespace zkthost
