#pragma once

#include "host/program/Syntax.h"

#include <string_view>
#include <vector>

namespace host::program {

/// Who wrote the text: in a file, a value that nothing uses is a mistake; whoever types a line
/// wants to see it.
enum class Form { file, typed };

struct Parsed {
    Program program;
    std::vector<Diagnostic> errors;
    /// Nothing is wrong but that blocks are open at the end: more lines may follow.
    bool isIncomplete = false;
};

/// Never fails: a statement that cannot be read is an error and left out.
Parsed parse(std::string_view text, Form form);

} // namespace host::program
