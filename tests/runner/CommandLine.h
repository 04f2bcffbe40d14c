#pragma once

#include <optional>

namespace CLI {
class App;
}

/// Exit status of a program whose command line or files cannot be worked with.
inline constexpr int badInput = 2;

/// Parses a program's command line. Nothing: the program goes on. Else it ends at once with this
/// status: 0 after its help, badInput after a message that names what is wrong.
std::optional<int> parseCommandLine(CLI::App &app, int argc, const char *const *argv);
