#include "processinfo/Handlers.h"

namespace processinfo {

REALobjectStruct *beginActivityWithOptions(REALobjectStruct *, std::int64_t, REALstringStruct *) {
    return nullptr;
}

void endActivity(REALobjectStruct *, REALobjectStruct *) {}

void disableSuddenTermination(REALobjectStruct *) {}

void enableSuddenTermination(REALobjectStruct *) {}

void disableAutomaticTermination(REALobjectStruct *, REALstringStruct *) {}

void enableAutomaticTermination(REALobjectStruct *, REALstringStruct *) {}

} // namespace processinfo

namespace processinfo::activity {

void Constructor(REALobjectStruct *) {}

void Destructor(REALobjectStruct *) {}

} // namespace processinfo::activity
