#include "frame/CocoaTrap.h"

#include "frame/FamilyHooks.h"
#include "frame/HostServices.h"

void raiseInHost(NSException *exception) {
    NSString *name = [exception name];
    NSString *reason = [exception reason];
    NSDictionary *userInfo = [exception userInfo];
    NSLog(@"A %@: %@, Info: %@\n", name, reason, userInfo);

    REALobjectStruct *hostException = [NSException NewNSExceptionZKT:exception];
    if (hostException == nullptr)
        return;
    REALRaiseException(hostException);
    REALUnlockObject(hostException);
}
