#pragma once

#include "RatioReporter.h"

#include "host/image/Image.h"

#include <cstddef>
#include <vector>

/// Registers conversions by the image, which was given the light host: finding the row of an object
/// that has none, property lists with few and with many collections, dictionaries.
std::vector<Ratio> registerConversions(const host::Image &image);

/// Bytes that stay allocated after a million conversions whose results were released.
std::ptrdiff_t keptAfterConversions(const host::Image &image);
