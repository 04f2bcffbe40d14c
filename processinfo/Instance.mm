#include "processinfo/Handlers.h"

#include "bridge/CocoaStrings.h"
#include "frame/CocoaInit.h"
#include "frame/CocoaTrap.h"
#include "frame/HeldUntilReset.h"
#include "frame/RaiseException.h"
#include "processinfo/WrappedObject.h"

namespace processinfo {

// Retains the object for the instance and makes the instance its wrapper in the family's registry,
// instead of any earlier one.
static void bind(REALobjectStruct *instance, NSProcessInfo *object) {
    NSProcessInfo *wrapped = wrappedObject(instance) = [object retain];
    if (wrapped != nil && instances != nullptr)
        CFDictionarySetValue(instances, wrapped, instance);
}

void NSProcessInfoConstructor(REALobjectStruct *) {
    // The wrapped object is set by Constructor or by processInfo.
    CocoaInit();
}

void Constructor(REALobjectStruct *instance) {
    if (wrappedObject(instance) != nil) {
        RaiseException("UnsupportedOperationException",
                       "Constructor called too often. Object is already initialized.");
        return;
    }
    trapCocoaExceptions([&] { bind(instance, [NSProcessInfo processInfo]); });
}

REALobjectStruct *processInfo() {
    CocoaInit();
    return trapCocoaExceptions<REALobjectStruct *>(nullptr, []() -> REALobjectStruct * {
        NSProcessInfo *shared = [NSProcessInfo processInfo];
        if (shared == nil)
            return nullptr;
        if (REALobjectStruct *known = registeredWrapper(shared))
            return known;
        ObjectReference instance{REALnewInstance("NSProcessInfoZKT")};
        if (instance)
            bind(instance.get(), shared);
        return instance.handOver();
    });
}

REALstringStruct *getNSProcessInfoThermalStateDidChangeNotification() {
    // Linked weakly: macOS has the name since 10.10.3.
    if (&NSProcessInfoThermalStateDidChangeNotification == nullptr)
        return nullptr;
    return CFString2RBString((CFStringRef)NSProcessInfoThermalStateDidChangeNotification);
}

REALobjectStruct *DummyException(REALobjectStruct *) {
    return nullptr;
}

void NSProcessInfoDestructor(REALobjectStruct *instance) {
    CocoaInit();
    NSProcessInfo *&wrapped = wrappedObject(instance);
    if (wrapped == nil)
        return;
    trapCocoaExceptions([&] {
        // By key alone: where a later instance wraps the same object, it is its entry that goes.
        if (instances != nullptr)
            CFDictionaryRemoveValue(instances, wrapped);
        [wrapped release];
        wrapped = nil;
    });
}

} // namespace processinfo
