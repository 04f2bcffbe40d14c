#pragma once

namespace zkthost {

/// Exit statuses; Options.cpp has them in words.
enum Status {
    fine = 0,
    misbehaved = 1,
    badInput = 2,
    raisedException = 3,
    crashed = 4,
    failed = 5,
};

} // namespace zkthost
