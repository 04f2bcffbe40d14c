#pragma once

// The beginning and the end of an instance's life.

#include "host/classes/ClassTable.h"
#include "host/memory/Heap.h"

namespace host {

class Host;

/// Makes an object and runs its class constructors, superclass first. One reference, the
/// plug-in's. Null, after a violation, when a constructor released its own object.
Object *instantiate(Host &host, const HostClass &type);

/// From the class up: the "Destructor" method, then the class destructor.
void runDestructors(Object &object);

} // namespace host
