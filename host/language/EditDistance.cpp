#include "host/language/EditDistance.h"

#include <algorithm>
#include <numeric>
#include <utility>
#include <vector>

namespace host {

std::size_t editDistance(std::string_view from, std::string_view to) {
    // distances[i]: from what was read of `from` to the first i characters of `to`.
    std::vector<std::size_t> distances(to.size() + 1);
    std::iota(distances.begin(), distances.end(), std::size_t{0});
    for (std::size_t row = 0; row < from.size(); ++row) {
        std::size_t diagonal = std::exchange(distances.front(), row + 1);
        for (std::size_t i = 0; i < to.size(); ++i) {
            const std::size_t replaced = diagonal + (from[row] == to[i] ? 0 : 1);
            diagonal = distances[i + 1];
            distances[i + 1] = std::min({replaced, diagonal + 1, distances[i] + 1});
        }
    }
    return distances.back();
}

} // namespace host
