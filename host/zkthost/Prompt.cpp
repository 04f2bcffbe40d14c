// zkthost run on a terminal: lines are run as they are typed.

#include "host/program/Conversion.h"
#include "host/zkthost/Output.h"
#include "host/zkthost/RunProgram.h"
#include "host/zkthost/ValueTree.h"

#include <editline/readline.h>

#include <cstdio>
#include <cstdlib>
#include <memory>
#include <optional>

namespace zkthost {

namespace {

using namespace host;

constexpr std::string_view source = "line";

struct Freed {
    void operator()(char *text) const { std::free(text); }
};

/// Nothing at the end of the input.
std::optional<std::string> readLine(const char *prompt) {
    const std::unique_ptr<char, Freed> line(readline(prompt));
    if (line == nullptr)
        return std::nullopt;
    if (*line != '\0')
        add_history(line.get());
    return line.get();
}

/// A statement, with the lines of its block; nothing at the end of the input.
std::optional<program::Loaded> readStatement(program::Session &session) {
    std::string text;
    for (const char *prompt = "> ";; prompt = "... ") {
        const auto line = readLine(prompt);
        if (!line)
            return std::nullopt;
        text += *line + '\n';
        program::Loaded loaded = session.load(text);
        if (!loaded.isIncomplete)
            return loaded;
    }
}

void tell(const std::optional<program::Uncaught> &uncaught) {
    if (uncaught)
        printError(uncaughtAsText(source, *uncaught));
}

} // namespace

void runPrompt(Host &host) {
    zkthost::print("Statements are run as they are typed, values are shown; Ctrl-D ends.\n");
    using_history();
    program::Session session(host, program::Form::typed,
                             {.print = [](std::string_view lines) { zkthost::print(lines); },
                              .show =
                                  [](const Value &value, const Type &type) {
                                      zkthost::print(treeAsText(program::plain(value, type)) +
                                                     '\n');
                                  }});
    while (const auto loaded = readStatement(session)) {
        printError(errorsAsText(source, loaded->errors));
        if (loaded->errors.empty())
            tell(session.run());
    }
    zkthost::print("\n");
    tell(session.finish());
}

} // namespace zkthost
