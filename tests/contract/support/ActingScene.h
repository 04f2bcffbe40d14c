#pragma once

#include "LoadedPlugin.h"

#include <functional>

/// A host and an instance of NSProcessInfoZKT whose messages run what a test tells them to.
struct ActingScene : LoadedPlugin {
    /// The action runs for every message that an operation sends to the wrapped object, which then
    /// answers 7, "seven" or 7.0. Its references are the instance's and go with it.
    explicit ActingScene(std::function<void()> action,
                         host::Siblings siblings = host::Siblings::all);

    host::ObjectRef info;
};

/// Raises an NSException of Foundation's own class, without user info.
[[noreturn]] void raiseNSException(const char *name, const char *reason);
