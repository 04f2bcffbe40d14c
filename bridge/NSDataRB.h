#pragma once

#include "frame/HostTypes.h"

#include <Foundation/Foundation.h>

/// Copies the data's bytes (borrowed) into a new host MemoryBlock, which the caller owns. Null for
/// nil and for no bytes. Null, and an OutOfMemoryException for the host program, when no block of
/// that size is to be had.
REALobjectStruct *NSDataRB(NSData *data);
