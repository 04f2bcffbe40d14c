#pragma once

#include <stdexcept>

namespace host {

/// A value that does not fit where it is used: an argument of the wrong type, a missing member,
/// a result asked for as something it is not. The fault of whoever uses the host, never of the
/// plug-in (that is a violation).
class UsageError : public std::logic_error {
public:
    using std::logic_error::logic_error;
};

} // namespace host
