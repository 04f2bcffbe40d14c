#include "host/program/Wording.h"

#include "host/language/EditDistance.h"
#include "host/language/Names.h"

#include <algorithm>

namespace host::program {

std::string counted(std::size_t count, std::string_view one) {
    return (count == 0 ? "no" : std::to_string(count)) + ' ' + std::string(one) +
           (count == 1 ? "" : "s");
}

std::string nearestAmong(const std::vector<std::string> &names, std::string_view wanted) {
    const std::string folded = foldedName(wanted);
    const auto distance = [&](const std::string &name) {
        return editDistance(foldedName(name), folded);
    };
    const auto nearest = std::ranges::min_element(names, {}, distance);
    const std::size_t most = std::min<std::size_t>(wanted.size() / 2, 1 + wanted.size() / 4);
    if (nearest == names.end() || distance(*nearest) > most)
        return {};
    return "; the nearest is " + *nearest;
}

} // namespace host::program
