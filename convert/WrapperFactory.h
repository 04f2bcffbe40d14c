#pragma once

#include "frame/HostTypes.h"

#include <Foundation/Foundation.h>

// Instances of the family's wrapper classes. Objects are borrowed, and retained by the instance
// that wraps them; results are owned by the caller, and null where the host does not know the
// class.

/// The registered instance, or a new one of the host class of that Cocoa class, which is entered in
/// the registry.
REALobjectStruct *newRegisteredWrapper(NSObject *object, const char *cocoaClass);

/// An instance of the most derived class of the object that the host knows, not registered. Null if
/// the object is not a kind of the required class, or either is nil.
REALobjectStruct *NewNSObjectZKT(NSObject *object, Class required);

/// The same without a required class.
REALobjectStruct *newNearestWrapper(NSObject *object);
