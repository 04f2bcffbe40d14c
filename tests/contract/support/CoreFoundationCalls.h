#pragma once

#include "Alone.h"

#include "host/image/Image.h"

#include <functional>
#include <string_view>

/// Watches every call that one image makes itself of the Core Foundation functions that this
/// program stands before. One at a time, beside any spy of these functions.
class CoreFoundationCalls {
public:
    /// Runs before each call; may throw. When it answers false, CFRelease is not run.
    using Action = std::function<bool(std::string_view function)>;

    CoreFoundationCalls(const host::Image &image, Action action);
    ~CoreFoundationCalls();
    CoreFoundationCalls(const CoreFoundationCalls &) = delete;
    CoreFoundationCalls &operator=(const CoreFoundationCalls &) = delete;

    /// For the functions: tells of a call, and gives what the action answers, or true.
    static bool tell(const void *caller, std::string_view function);

private:
    Alone<CoreFoundationCalls> alone_;
};
