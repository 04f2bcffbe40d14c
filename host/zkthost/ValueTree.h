#pragma once

// A host value with everything in it.

#include "host/core/Json.h"
#include "host/language/Value.h"

#include <string>

namespace zkthost {

/// Lines of text, the first for the value itself, what it holds indented below; dictionaries sorted
/// by key:
///
///   Dictionary, 2 entries
///     "list": Array, 2 elements
///       0: Integer 1
///       1: nil
///     "name": "text"
std::string treeAsText(const host::Value &value);

/// {"type": "Integer", "value": 1}, {"type": "Array", "elements": [...]}, {"type": "Dictionary",
/// "entries": [{"key": ..., "value": ...}]}, {"type": "MemoryBlock", "size": 5, "bytes":
/// "68656C6C6F"}, {"type": "FolderItem", "path": "/usr"}; nil is null. Other objects have a type
/// alone.
host::Json treeAsJson(const host::Value &value);

} // namespace zkthost
