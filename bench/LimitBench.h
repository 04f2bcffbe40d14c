#pragma once

#include "RatioReporter.h"

#include "host/image/Image.h"

#include <vector>

/// Registers every conversion and the getter of "environment", each beside its limit: the messages
/// and services that it takes in a plain function.
std::vector<Ratio> registerLimits(const host::Image &image);
