#include "processinfo/Handlers.h"

#include "bridge/CFString2RBString.h"
#include "frame/CocoaInit.h"
#include "frame/CocoaTrap.h"
#include "frame/HeldUntilReset.h"
#include "frame/RaiseException.h"
#include "frame/Registry.h"
#include "processinfo/WrappedObject.h"

namespace processinfo {

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
    trapCocoaExceptions([&] {
        NSProcessInfo *wrapped = wrappedObject(instance) = [[NSProcessInfo processInfo] retain];
        if (wrapped != nil)
            registry::enter(wrapped, instance);
    });
}

REALobjectStruct *processInfo() {
    CocoaInit();
    return trapCocoaExceptions<REALobjectStruct *>(nullptr, []() -> REALobjectStruct * {
        NSProcessInfo *shared = [NSProcessInfo processInfo];
        if (shared == nil)
            return nullptr;
        if (REALobjectStruct *known = registry::wrapperOf(shared))
            return known;
        ObjectReference instance{REALnewInstance("NSProcessInfoZKT")};
        if (instance) {
            wrappedObject(instance.get()) = [shared retain];
            registry::enter(shared, instance.get()); // whatever retain answered
        }
        return instance.handOver();
    });
}

// macOS has the name since 10.10.3.
#pragma weak NSProcessInfoThermalStateDidChangeNotification

#pragma clang diagnostic push
#pragma clang diagnostic ignored "-Wunguarded-availability"
REALstringStruct *getNSProcessInfoThermalStateDidChangeNotification() {
    if (&NSProcessInfoThermalStateDidChangeNotification == nullptr)
        return nullptr;
    return CFString2RBString((CFStringRef)NSProcessInfoThermalStateDidChangeNotification);
}
#pragma clang diagnostic pop

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
        registry::remove(wrapped);
        [wrapped release];
        wrapped = nil;
    });
}

} // namespace processinfo
