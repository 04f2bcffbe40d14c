#include "processinfo/Handlers.h"

#include "bridge/NewNSString.h"
#include "frame/CocoaTrap.h"
#include "processinfo/WrappedObject.h"

namespace processinfo {

void disableSuddenTermination(REALobjectStruct *instance) {
    trapCocoaExceptions([&] { [wrappedObject(instance) disableSuddenTermination]; });
}

void enableSuddenTermination(REALobjectStruct *instance) {
    trapCocoaExceptions([&] { [wrappedObject(instance) enableSuddenTermination]; });
}

void disableAutomaticTermination(REALobjectStruct *instance, REALstringStruct *reason) {
    trapCocoaExceptions(
        [&] { [wrappedObject(instance) disableAutomaticTermination:NewNSString(reason)]; });
}

void enableAutomaticTermination(REALobjectStruct *instance, REALstringStruct *reason) {
    trapCocoaExceptions(
        [&] { [wrappedObject(instance) enableAutomaticTermination:NewNSString(reason)]; });
}

} // namespace processinfo
