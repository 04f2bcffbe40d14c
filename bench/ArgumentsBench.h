#pragma once

#include "RatioReporter.h"

#include "host/Host.h"

#include <cstddef>
#include <vector>

/// Registers "arguments" for 10,000 and 100,000 short strings. The host has to outlive the run.
std::vector<Ratio> registerArguments(host::Host &host);

/// Bytes that stay allocated after an array of 100,000 arguments was made and released ten times.
std::ptrdiff_t keptAfterArguments(host::Host &host);
