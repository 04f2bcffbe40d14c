#pragma once

#include "frame/HostTypes.h"

#include <Foundation/Foundation.h>

/// The text of a host string (borrowed) as an autoreleased Cocoa string; nil for nil and for bytes
/// that the string's declared encoding does not allow. Bytes without a declared encoding are read
/// as Mac Roman, which allows every byte.
NSString *NewNSString(REALstringStruct *string);
