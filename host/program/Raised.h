#pragma once

// Host exceptions on their way through a program.

#include "host/language/Value.h"

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace host::program {

/// A line that was being run.
struct RunningLine {
    std::size_t line = 0;
    std::string procedure = {}; ///< "": the program itself
};

/// Thrown through the evaluator until a Catch takes it.
struct Raised {
    ObjectRef exception;
    std::vector<RunningLine> lines = {}; ///< innermost first; grows on the way
};

/// Makes an exception of one of the host's classes and throws it.
[[noreturn]] void raise(std::string_view className, std::string_view message);

/// "index 5 of an array of 2 elements"
[[noreturn]] void raiseOutOfBounds(std::int64_t index, std::size_t count);

/// The value of a call, or its exception thrown.
Value valueOf(Outcome outcome);

} // namespace host::program
