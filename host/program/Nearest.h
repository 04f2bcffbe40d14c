#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace host::program {

/// "; the nearest is processName", or "" when no name is near: about a third of the letters
/// would have to change.
std::string nearestAmong(const std::vector<std::string> &names, std::string_view wanted);

} // namespace host::program
