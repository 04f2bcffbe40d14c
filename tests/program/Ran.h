#pragma once

#include "host/program/Session.h"

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

/// What became of a program in a host without plug-ins.
struct Ran {
    std::string printed;
    std::vector<std::string> errors; ///< "LINE:COLUMN: what is wrong"
    std::optional<host::program::Uncaught> uncaught;
    /// Live objects at each line that was printed.
    std::vector<std::size_t> liveObjects;
    host::Account account; ///< at the end
    std::vector<std::string> circles;
    std::vector<std::string> violations;
};

Ran runProgram(std::string_view text);

/// It runs to its end and prints this; nothing is left of it.
void expectPrints(std::string_view text, std::string_view printed);
/// It is refused with these errors, in this order.
void expectErrors(std::string_view text, const std::vector<std::string> &errors);
/// It ends with "CLASS: MESSAGE".
void expectUncaught(std::string_view text, std::string_view exception);
