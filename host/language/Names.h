#pragma once

// Names of the host's language: letters' case does not matter.

#include <algorithm>
#include <string>
#include <string_view>

namespace host {

constexpr char folded(char c) {
    return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
}

inline std::string foldedName(std::string_view name) {
    std::string result(name);
    std::ranges::transform(result, result.begin(), folded);
    return result;
}

constexpr bool sameName(std::string_view a, std::string_view b) {
    return std::ranges::equal(a, b, {}, folded, folded);
}

} // namespace host
