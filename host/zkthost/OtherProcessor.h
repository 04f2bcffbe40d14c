#pragma once

// Slices of an image that are for another processor: they run in the zkthost of another build.

#include <string_view>

namespace zkthost {

/// Goes on as the zkthost that was built for this processor, with the same arguments. Throws
/// InputError when there is none, with what would build it.
[[noreturn]] void continueFor(std::string_view processor, const char *const *arguments);

} // namespace zkthost
