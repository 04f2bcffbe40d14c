#pragma once

#include "host/Host.h"

#include <functional>
#include <optional>
#include <string>
#include <string_view>

// What leaves a call, for tests that cannot catch it themselves: a source file catches either
// Cocoa's exceptions or C++'s. Those of the other kind pass through.

/// "Name: reason" of the NSException that leaves the body; nothing when it returns.
std::optional<std::string> cocoaExceptionFrom(const std::function<void()> &body);

/// The what() of the std::exception that leaves the body; nothing when it returns.
std::optional<std::string> standardExceptionFrom(const std::function<void()> &body);

/// Fails the test unless the call raised an NSException of this name and reason in the host, the
/// only one so far.
void expectRaised(const host::Outcome &outcome, std::string_view name, std::string_view reason);
