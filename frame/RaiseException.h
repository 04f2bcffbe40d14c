#pragma once

#include "frame/HostTypes.h"

#include <cstdint>

/// Raises an exception in the host program, once the current call of the plug-in returns, as an
/// object of the host class className, or of RuntimeException if the host has no such class. Both
/// texts are ASCII; a null message sets the exception's Message to nil. Without either class
/// nothing is raised. Encoding and error number belong to the host family's interface but are not
/// consulted: every exception of this plug-in is ASCII and number 0.
void RaiseException(const char *className, const char *message,
                    std::uint32_t encoding = HostEncoding::ascii, std::int64_t errorNumber = 0);
