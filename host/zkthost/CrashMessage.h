#pragma once

#include <string>

namespace zkthost {

/// While it lives, a crash ends the program with this message and exit status 2. For work on
/// objects that may be in no fit state. One at a time.
class CrashMessage {
public:
    explicit CrashMessage(std::string message);
    ~CrashMessage();
    CrashMessage(const CrashMessage &) = delete;
    CrashMessage &operator=(const CrashMessage &) = delete;
};

} // namespace zkthost
