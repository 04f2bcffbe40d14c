#pragma once

// The classes that plug-ins registered, exactly as they registered them.

#include "host/core/Json.h"

#include <string>

namespace host {

class ClassTable;

enum class DescriptionFormat { text, json, markdown, html };

/// Every registered class in order of registration, every row in table order. There is no HTML of
/// them alone: that is the text.
std::string describeClasses(const ClassTable &classes, DescriptionFormat format);
/// The same as an array.
Json classesAsJson(const ClassTable &classes);

} // namespace host
