#pragma once

#include "host/Host.h"
#include "host/program/Session.h"

#include <string>
#include <string_view>
#include <vector>

namespace zkthost {

/// The text of a program; "-" is standard input. Throws InputError.
std::string readProgram(const std::string &file);

/// "FILE:LINE:COLUMN: what is wrong", one line each.
std::string errorsAsText(std::string_view file,
                         const std::vector<host::program::Diagnostic> &errors);
/// "FILE:LINE: uncaught CLASS: MESSAGE", then the lines that led there.
std::string uncaughtAsText(std::string_view file, const host::program::Uncaught &uncaught);

/// Reads lines from the terminal, runs them and shows their values, until the input ends.
void runPrompt(host::Host &host);

enum class ProgramEnd { fine, uncaught, refused };

/// Checks and runs a program; what is to be told of it goes to standard error. What the plug-in
/// throws passes through.
ProgramEnd runProgram(host::Host &host, const std::string &file, std::string_view text);

} // namespace zkthost
