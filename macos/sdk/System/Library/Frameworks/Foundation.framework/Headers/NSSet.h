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
+ (instancetype)setWithObjects:(ObjectType)first, ... __attribute__((sentinel(0, 1)));
+ (instancetype)setWithArray:(NSArray<ObjectType> *)array;
@end

OBJC_VISIBLE
@interface NSMutableSet<ObjectType> : NSSet <ObjectType>
- (void)addObject:(ObjectType)object;
@end

/// Counts how often an object was added.
OBJC_VISIBLE
@interface NSCountedSet<ObjectType> : NSMutableSet <ObjectType>
@end

#pragma clang assume_nonnull end
