#pragma once

#include <stdexcept>

namespace macho {

/// Why a file cannot be loaded. The message starts with the file's path, says what is wrong and
/// where, and is fit to be shown to a user as it stands.
class LoadError : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

} // namespace macho
