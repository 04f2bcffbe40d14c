// Sets of indices.

#pragma once
#pragma clang system_header

#include <Foundation/NSObject.h>

#pragma clang assume_nonnull begin

OBJC_VISIBLE
@interface NSIndexSet : NSObject <NSCopying, NSMutableCopying>
+ (instancetype)indexSet;
+ (instancetype)indexSetWithIndex:(NSUInteger)index;
@end

#pragma clang assume_nonnull end
