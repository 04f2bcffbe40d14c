// Only ever asked for its class.

#pragma once
#pragma clang system_header

#include <Foundation/NSObject.h>

OBJC_VISIBLE
@interface NSAffineTransform : NSObject
@end
