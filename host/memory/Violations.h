#pragma once

// What plug-ins did wrong.

#include <cstddef>
#include <string>
#include <utility>
#include <vector>

namespace host {

class Violations {
public:
    void add(std::string text) { texts_.push_back(std::move(text)); }
    std::size_t count() const { return texts_.size(); }
    /// Whoever gets the list is taken to look at it.
    const std::vector<std::string> &examine() const {
        examined_ = texts_.size();
        return texts_;
    }
    std::vector<std::string> unexamined() const {
        return {texts_.begin() + static_cast<std::ptrdiff_t>(examined_), texts_.end()};
    }

private:
    std::vector<std::string> texts_;
    mutable std::size_t examined_ = 0;
};

} // namespace host
