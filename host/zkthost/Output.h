#pragma once

// Standard output and standard error.

#include <cstddef>
#include <stdexcept>
#include <string_view>

namespace zkthost {

/// Standard output could not take what was written; says why.
class OutputError : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

/// Writes to standard output at once: a crash loses nothing. Throws OutputError.
void print(std::string_view text);

/// Writes to standard error; where even that fails there is nobody to tell.
void printError(std::string_view text);

/// Whether standard output is read on a terminal that colours may be written to.
bool wantsColours();

/// Columns of the terminal that standard output is read on; 0 when it is none or does not tell.
std::size_t terminalWidth();

} // namespace zkthost
