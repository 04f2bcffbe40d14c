#pragma once

#include <cstddef>
#include <string_view>

namespace host {

/// How many characters have to be inserted, taken out or replaced to make one text of the other.
std::size_t editDistance(std::string_view from, std::string_view to);

} // namespace host
