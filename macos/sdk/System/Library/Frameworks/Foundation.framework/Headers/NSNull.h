// The object that stands for nothing in a collection.

#pragma once
#pragma clang system_header

#include <Foundation/NSObject.h>

OBJC_VISIBLE
@interface NSNull : NSObject <NSCopying>
+ (nonnull NSNull *)null; // always the same object
@end
