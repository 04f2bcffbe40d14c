#pragma once

#include "frame/HostTypes.h"

#include <Foundation/Foundation.h>

// Conversion of Cocoa objects to host values. Objects are borrowed; a result carries one host
// reference, which belongs to the caller. Null is the host's nil, for nil, for NSNull and for what
// has no host value. Nothing is reported, but for an OutOfMemoryException where data gets no block.
// Exceptions pass to the caller; only an NSException while a Core Foundation object is wrapped is
// dropped.

/// The host value that represents the object best: a Variant, Date, array, Dictionary, MemoryBlock
/// or FolderItem, or an instance of a wrapper class of the family, which retains the object.
REALobjectStruct *NewVariantFromNSObject(NSObject *object);
