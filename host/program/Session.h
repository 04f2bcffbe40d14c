#pragma once

// Programs from text to end: read, checked, run.

#include "host/program/Checker.h"
#include "host/program/Evaluator.h"
#include "host/program/Parser.h"

#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace host::program {

/// What a text came to before it ran.
struct Loaded {
    std::vector<Diagnostic> errors; ///< in the order of the text; with any, nothing can be run
    bool isIncomplete = false;      ///< all that is wrong is that blocks are open at the end
};

/// An exception that no Catch took.
struct Uncaught {
    RaisedException exception;      ///< without the object
    std::vector<RunningLine> lines; ///< innermost first, never empty
};

/// Runs texts one after the other: each sees what the ones before it declared.
class Session {
public:
    Session(Host &host, Form form, Settings settings);
    Session(const Session &) = delete;
    Session &operator=(const Session &) = delete;

    Loaded load(std::string_view text);
    /// Runs what was loaded last. Exceptions that are none of the host's pass through, OutOfSteps
    /// too.
    std::optional<Uncaught> run();
    /// Gives up all variables; the last thing to do.
    std::optional<Uncaught> finish();

private:
    Host &host_;
    Form form_;
    Checker checker_;
    Evaluator evaluator_;
    /// All of them: later ones call their procedures.
    std::vector<std::unique_ptr<Program>> programs_;
};

/// What is still alive though no variable holds it: objects that hold each other. One line each.
/// For the time after finish().
std::vector<std::string> circles();

} // namespace host::program
