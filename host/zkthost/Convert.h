#pragma once

#include "host/Host.h"
#include "host/core/Json.h"
#include "host/zkthost/CocoaSource.h"

#include <string>

namespace zkthost {

/// What the plug-in made of a Cocoa object, in words: it outlives the host's objects.
struct Conversion {
    std::string text;
    host::Json json = nullptr;
    bool raised = false; ///< the text tells the host exception
};

/// Feeds the object to the plug-in. Throws UsageError when the plug-in registered no class that
/// would take it.
Conversion convert(host::Host &host, const host::Image &image, const CocoaSource &source);

std::string conversionAsJson(const Conversion &conversion, const host::Account &account);

} // namespace zkthost
