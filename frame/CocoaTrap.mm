#include "frame/CocoaTrap.h"

#include "frame/FamilyHooks.h"
#include "frame/HeldUntilReset.h"

void raiseInHost(NSException *exception) {
    NSString *name = [exception name];
    NSString *reason = [exception reason];
    NSDictionary *userInfo = [exception userInfo];
    NSLog(@"A %@: %@, Info: %@\n", name, reason, userInfo);

    ObjectReference hostException{[NSException NewNSExceptionZKT:exception]};
    if (!hostException)
        return;
    REALRaiseException(hostException.get());
    hostException.reset();
}
