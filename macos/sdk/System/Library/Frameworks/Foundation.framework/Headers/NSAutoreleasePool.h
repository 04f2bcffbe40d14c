// Pools of objects that wait for their release.

#pragma once
#pragma clang system_header

#include <Foundation/NSObject.h>

OBJC_VISIBLE
@interface NSAutoreleasePool : NSObject
- (void)drain;
@end
