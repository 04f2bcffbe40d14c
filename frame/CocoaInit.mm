#include "frame/CocoaInit.h"

#include "frame/FamilyHooks.h"

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
