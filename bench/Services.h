#pragma once

struct REALobjectStruct;

/// A host service that does next to nothing, and a pointer to it. Both are defined in a file of
/// their own, so that no call is optimised away.
void countingService(REALobjectStruct *object);
extern void (*bareEntryPoint)(REALobjectStruct *);
