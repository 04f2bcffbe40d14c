#pragma once

// What is said of the command line: help, and what is wrong with it.

#include <CLI/CLI.hpp>

#include <string>

namespace zkthost {

/// Behind the general help: exit statuses, and the names that --without takes.
std::string footerText();

/// The general help, or that of a command where it is not null, with the options that all have.
std::string helpText(const CLI::App &app, const CLI::App *command);
/// The same for the command with that name; "" for the general help. Throws InputError, as all of
/// these do, with the nearest name that there is.
std::string helpText(const CLI::App &app, const std::string &command);

/// The command that was given; null when there was none.
const CLI::App *givenCommand(const CLI::App &app);

/// Throws when words are left over that no option and no command took: one message about the first.
void refuseRest(const CLI::App &app);

/// Ends messages about a command line.
inline constexpr const char *whereToLook = " (zkthost --help lists what there is)";

} // namespace zkthost
