// One element after the other.

#pragma once
#pragma clang system_header

#include <Foundation/NSObject.h>

OBJC_VISIBLE
@interface NSEnumerator<ObjectType> : NSObject
- (nullable ObjectType)nextObject; // null: no more
@end
