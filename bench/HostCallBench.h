#pragma once

#include "RatioReporter.h"

#include <vector>

/// What a host call costs through its wrapper: a load, a test and the call that it is anyway.
std::vector<Ratio> registerHostCalls();
