#include "frame/CocoaInit.h"

#include "frame/FamilyHooks.h"
#include "frame/Registry.h"

void CocoaInit() {
    static constinit bool ExceptionsInitialized = false;

    if (registry::instances == nullptr &&
        [NSException respondsToSelector:@selector(GetInstancesDictionaryZKT)])
        registry::instances = [NSException GetInstancesDictionaryZKT];

    if (!ExceptionsInitialized &&
        [NSException respondsToSelector:@selector(PrepareNSExceptionZKT)]) {
        [NSException PrepareNSExceptionZKT];
        ExceptionsInitialized = true;
    }
}
