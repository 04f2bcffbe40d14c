#pragma once

// Include in a test program: a host that dies with violations nobody looked at fails the test.

#include "host/Host.h"

#include <gtest/gtest.h>

namespace host::detail {

inline const bool violationsFailTests = [] {
    Host::onUnexamined([](const std::string &violation) { ADD_FAILURE() << violation; });
    return true;
}();

} // namespace host::detail
