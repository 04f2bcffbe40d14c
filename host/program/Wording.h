#pragma once

// Pieces of messages.

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace host::program {

/// "no arguments", "1 argument", "2 arguments"
std::string counted(std::size_t count, std::string_view one);

/// "; the nearest is processName", or "" when no name is near: about a third of the letters
/// would have to change.
std::string nearestAmong(const std::vector<std::string> &names, std::string_view wanted);

} // namespace host::program
