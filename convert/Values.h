#pragma once

#include "frame/HostTypes.h"

#include <Foundation/Foundation.h>

// Host values for Cocoa's values. Objects are borrowed; results are owned by the caller, and null
// when the host has no such value or class.

/// A String Variant; of a null string for nil and for an empty string.
REALobjectStruct *newStringVariant(NSString *string);

/// A FolderItem for the URL of a file or of one that may be made, else a Variant of its text.
REALobjectStruct *newURLValue(NSURL *url);

/// A Boolean Variant of one of Core Foundation's two booleans.
REALobjectStruct *newBooleanVariant(NSObject *boolean);

/// A Variant by the number's type code.
REALobjectStruct *newNumberVariant(NSNumber *number);

/// A Date of the date's calendar fields in the default time zone, to the second.
REALobjectStruct *newHostDate(NSDate *date);

/// A geometry object with the value's fields; for a media time, what the family's hook gives. Null
/// for other types.
REALobjectStruct *newStructure(NSValue *value);
