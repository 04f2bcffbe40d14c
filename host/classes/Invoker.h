#pragma once

// Calls functions of plug-ins, and of the host's own classes, through their declarations: a table
// row that does not fit its function shows here.
//
// Functions called:
//   instance method   (object, parameters...) -> result
//   shared method     (parameters...) -> result
//   getter            (object, parameter slot) -> value
//   setter            (object, parameter slot, value)
// Arguments are borrowed by the callee; a string or object result comes with one reference, which
// becomes the host's. Of Boolean results only the low byte counts.
//
// Exceptions thrown by the callee pass through. Wrong arguments are UsageErrors; wrong results
// (a handle that is none, an object of another class than declared, no reference to hand over)
// are violations and read as nil. Registers that the declaration leaves free hold a pattern, so
// that a function which takes more than it declares, or answers in another register, is noticed.

#include "host/classes/ClassTable.h"
#include "host/core/Core.h"
#include "host/language/Value.h"
#include "host/memory/Heap.h"

namespace host {

/// Missing arguments take the declaration's defaults.
Value callMethod(Core &core, const Method &method, Object &object, const Values &arguments);
Value callSharedMethod(Core &core, const HostClass &type, const Method &method,
                       const Values &arguments);

Value readProperty(Core &core, Object &object, const Property &property);
void writeProperty(Core &core, Object &object, const Property &property, const Value &value);

} // namespace host
