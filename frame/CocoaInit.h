#pragma once

#include "frame/HostTypes.h"

#include <CoreFoundation/CoreFoundation.h>

// The family's registry: Cocoa object (by identity) to the host instance that wraps it, without a
// host reference on either. Null until a sibling plug-in supplies it.
inline constinit CFMutableDictionaryRef instances = nullptr;

// The instance that wraps a Cocoa object, with a reference for the caller; null when the registry
// has none.
REALobjectStruct *registeredWrapper(const void *cocoaObject);

// Obtains the registry and has the family's exception support prepared, each once. What no sibling
// plug-in offers yet is tried again on the next call.
void CocoaInit();
