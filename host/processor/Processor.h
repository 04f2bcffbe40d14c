#pragma once

// The processor that the host is built for, and with it the images that it can run. What differs
// between processors stands in a file for each.

#if defined(__x86_64__)
#include "host/processor/x86_64.h"
#elif defined(__aarch64__)
#include "host/processor/arm64.h"
#else
#error "The host runs on x86_64 and arm64."
#endif
