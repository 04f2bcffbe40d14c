#pragma once

#include <functional>
#include <optional>
#include <string>

namespace zkthost {

/// Runs the body; the answer describes the NSException that left it, if one did. Other
/// exceptions pass through.
std::optional<std::string> cocoaExceptionFrom(const std::function<void()> &body);

} // namespace zkthost
