#pragma once

#include <cstdint>
#include <functional>

/// Native functions that throw and catch C++ exceptions, also for tests in files that deal with
/// Objective-C ones: no file does both.

void throwOutOfRange();
void throwInteger();    // 42
void catchInternally(); // throws and catches, to the outside nothing happens

enum class Outcome : std::uint8_t { returned, outOfRange, logicError, exception, integer, other };

/// What comes out of `body`, which is caught.
Outcome outcomeOf(const std::function<void()> &body);
