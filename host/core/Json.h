#pragma once

// JSON documents that keep their members in the order in which they were written.

#include <nlohmann/json.hpp>

#include <string>

namespace host {

/// Numbers that JSON does not have (infinities, NaN) are written as null.
using Json = nlohmann::ordered_json;

/// Indented, with a newline at the end. Bytes that are no UTF-8 become U+FFFD.
std::string jsonText(const Json &json);

/// On one line, without a newline at the end.
std::string jsonLine(const Json &json);

} // namespace host
