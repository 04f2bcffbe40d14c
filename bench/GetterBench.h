#pragma once

#include "RatioReporter.h"

#include "host/Host.h"

#include <string>
#include <vector>

/// Registers benchmarks of the getters of the image that the host has loaded, and of the same
/// without the plug-in. The host has to outlive the run.
std::vector<Ratio> registerGetters(host::Host &host);

/// The same calls without the plug-in: Foundation's own sends, libffi and NSInvocation.
std::vector<Ratio> registerBaselines();
