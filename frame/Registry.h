#pragma once

#include "frame/HostServices.h"

#include <CoreFoundation/CoreFoundation.h>

// The family's registry: Cocoa object (by identity) to the host instance that wraps it, without a
// reference on either.
namespace registry {

/// Null until a sibling plug-in supplies it: then it has no instance, and none is entered.
inline constinit CFMutableDictionaryRef instances = nullptr;

/// The instance that wraps the object, with a reference for the caller, or null.
inline REALobjectStruct *wrapperOf(const void *cocoaObject) {
    if (instances == nullptr)
        return nullptr;
    auto *known = static_cast<REALobjectStruct *>(
        const_cast<void *>(CFDictionaryGetValue(instances, cocoaObject)));
    if (known != nullptr)
        REALLockObject(known);
    return known;
}

/// Makes the instance the object's wrapper, instead of any earlier one.
void enter(const void *cocoaObject, REALobjectStruct *instance);

/// Takes the object's entry out, whichever instance it names.
void remove(const void *cocoaObject);

} // namespace registry
