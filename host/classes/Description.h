#pragma once

// The classes that plug-ins registered, exactly as they registered them.

#include "host/core/Json.h"

#include <string>

namespace host {

class Host;

enum class DescriptionFormat { text, json, markdown, html };

/// Every registered class in order of registration, every row in table order. There is no HTML of
/// them alone: that is the text.
std::string describeClasses(const Host &host, DescriptionFormat format);
/// The same as an array.
Json classesAsJson(const Host &host);

} // namespace host
