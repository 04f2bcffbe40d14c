#include "frame/CocoaInit.h"

#include "frame/FamilyHooks.h"
#include "frame/HostServices.h"

REALobjectStruct *registeredWrapper(const void *cocoaObject) {
    if (instances == nullptr)
        return nullptr;
    auto *known = static_cast<REALobjectStruct *>(
        const_cast<void *>(CFDictionaryGetValue(instances, cocoaObject)));
    if (known != nullptr)
        REALLockObject(known);
    return known;
}

void CocoaInit() {
    static constinit bool ExceptionsInitialized = false;

    if (instances == nullptr &&
        [NSException respondsToSelector:@selector(GetInstancesDictionaryZKT)])
        instances = [NSException GetInstancesDictionaryZKT];

    if (!ExceptionsInitialized &&
        [NSException respondsToSelector:@selector(PrepareNSExceptionZKT)]) {
        [NSException PrepareNSExceptionZKT];
        ExceptionsInitialized = true;
    }
}
