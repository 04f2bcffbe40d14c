// Arrays.

#pragma once
#pragma clang system_header

#include <Foundation/NSEnumerator.h>
#include <Foundation/NSObject.h>

#pragma clang assume_nonnull begin

OBJC_VISIBLE
@interface NSArray<__covariant ObjectType>
    : NSObject <NSCopying, NSMutableCopying, NSFastEnumeration>
@property(readonly) NSUInteger count;
/// Raises NSRangeException for an index outside the array.
- (ObjectType)objectAtIndex:(NSUInteger)index;
- (instancetype)init;
- (instancetype)initWithObjects:(ObjectType)first, ... __attribute__((sentinel(0, 1)));
- (NSEnumerator<ObjectType> *)objectEnumerator;
+ (instancetype)array;
+ (instancetype)arrayWithObject:(ObjectType)object;
+ (instancetype)arrayWithObjects:(ObjectType)first, ... __attribute__((sentinel(0, 1)));
+ (instancetype)arrayWithObjects:(const ObjectType _Nonnull[_Nullable])objects
                           count:(NSUInteger)count;
@end

OBJC_VISIBLE
@interface NSMutableArray<ObjectType> : NSArray <ObjectType>
- (void)addObject:(ObjectType)object;
- (void)removeLastObject;
- (void)removeAllObjects;
- (void)replaceObjectAtIndex:(NSUInteger)index withObject:(ObjectType)object;
+ (instancetype)arrayWithCapacity:(NSUInteger)capacity;
@end

#pragma clang assume_nonnull end
