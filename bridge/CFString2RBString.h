#pragma once

#include "frame/HostTypes.h"

#include <CoreFoundation/CoreFoundation.h>

#ifdef __OBJC__
@class NSString;

// The text of a host string (borrowed) as an autoreleased Cocoa string; nil for nil and for bytes
// that the string's declared encoding does not allow. Bytes without a declared encoding are read as
// Mac Roman, which allows every byte.
NSString *NewNSString(REALstringStruct *string);
#endif

// Makes a UTF-8 host string, owned by the caller, from a Cocoa string (borrowed). It ends at the
// first U+0000. Null for nil, for an empty string and for text that UTF-8 cannot express.
REALstringStruct *CFString2RBString(CFStringRef string);
