#pragma once

#include "convert/ConversionTable.h"

/// The first row of the class table that the object matches, or null. A row whose class is not
/// loaded matches nothing. Sends isKindOfClass: only to objects whose answer may differ from
/// NSObject's own.
const ClassRow *classRowOf(NSObject *object);

/// The first of the classes that a process may lack that the object is a kind of, by name; or null.
/// Each is looked up when an object first comes this far, once in a process.
const char *lateClassOf(NSObject *object);
