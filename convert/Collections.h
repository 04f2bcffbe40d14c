#pragma once

#include "frame/HostTypes.h"

#include <Foundation/Foundation.h>

/// Host arrays of the converted elements, owned by the caller; null if the host makes no array. An
/// element without a host value is nil in its place.
REALobjectStruct *newHostArray(NSArray *array);
REALobjectStruct *newHostArrayOfSet(NSSet *set); // in the order of allObjects

/// A host Dictionary of the converted keys and values, owned by the caller; null for nil and if the
/// host makes none.
REALobjectStruct *NSDictionaryRB(NSDictionary *dictionary);
