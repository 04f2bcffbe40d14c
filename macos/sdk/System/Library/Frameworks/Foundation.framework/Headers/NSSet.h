// Sets.

#pragma once
#pragma clang system_header

#include <Foundation/NSObject.h>

@class NSArray<ObjectType>;

#pragma clang assume_nonnull begin

OBJC_VISIBLE
@interface NSSet<__covariant ObjectType> : NSObject <NSCopying, NSMutableCopying>
@property(readonly) NSUInteger count;
- (instancetype)init;
@property(readonly, copy) NSArray<ObjectType> *allObjects;
+ (instancetype)set;
+ (instancetype)setWithObject:(ObjectType)object;
@end

#pragma clang assume_nonnull end
