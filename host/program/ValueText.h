#pragma once

#include "host/classes/Inspect.h"
#include "host/core/Text.h"
#include "host/language/Value.h"

#include <string>

namespace host::program {

/// As Print and Str show it: a String as it is, a number as the shortest text that reads back the
/// same, True, False, Nil, an object by its class. A Variant as what is in it.
std::string textOf(const Value &value);
std::string textOf(const VariantContent &content);

} // namespace host::program
