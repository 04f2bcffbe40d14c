#pragma once

#include <stdexcept>
#include <string>
#include <typeinfo>
#include <utility>

/// A member of what there may be one of at a time: a second one throws std::logic_error.
template <class Owner>
class Alone {
public:
    Alone() {
        if (std::exchange(exists_, true))
            throw std::logic_error(std::string("there is one already: ") + typeid(Owner).name());
    }
    ~Alone() { exists_ = false; }
    Alone(const Alone &) = delete;
    Alone &operator=(const Alone &) = delete;

private:
    static inline bool exists_ = false;
};
