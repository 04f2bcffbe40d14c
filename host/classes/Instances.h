#pragma once

// The beginning and the end of an instance's life.

#include "host/classes/ClassTable.h"
#include "host/core/Core.h"
#include "host/memory/Heap.h"

namespace host {

/// Makes an object without running its constructors. One reference, the plug-in's.
Object &makeObject(Core &core, const HostClass &type);

/// Makes an object and runs its class constructors, superclass first. One reference, the
/// plug-in's. Null, after a violation, when a constructor released its own object.
Object *instantiate(Core &core, const HostClass &type);

/// From the class up: the "Destructor" method, then the class destructor.
void runDestructors(Object &object);

} // namespace host
