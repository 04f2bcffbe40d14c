#pragma once

#include "LoadedPlugin.h"
#import "SharedObjectSubstitute.h"
#import "TracedObject.h"

#include <utility>

/// A host, and an object in the place of Foundation's shared one.
struct SharedScene : LoadedPlugin {
    explicit SharedScene(host::HostOptions options = {}) : LoadedPlugin(std::move(options)) {}

    Traced shared{"shared"};
    SharedObjectSubstitute substitute{image, shared};
};
