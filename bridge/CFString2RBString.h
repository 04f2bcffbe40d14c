#pragma once

#include "frame/HostTypes.h"

#include <CoreFoundation/CoreFoundation.h>

/// Makes a UTF-8 host string, owned by the caller, from a Cocoa string (borrowed). It ends at the
/// first U+0000. Null for nil, for an empty string and for text that UTF-8 cannot express.
REALstringStruct *CFString2RBString(CFStringRef string);
