#pragma once

#include "RatioReporter.h"

#include "host/Host.h"

#include <vector>

/// Registers begin plus end of an activity, against the same sends plus what the host does for one:
/// an instance made and destroyed, the reason read and held. The host has to outlive the run. The
/// limit is set for the Linux object, whose sends are those of the baseline.
std::vector<Ratio> registerActivities(host::Host &host, host::ImageFormat format);
