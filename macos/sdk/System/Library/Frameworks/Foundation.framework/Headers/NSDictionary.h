// Dictionaries.

#pragma once
#pragma clang system_header

#include <Foundation/NSObject.h>

@class NSArray<ObjectType>;

#pragma clang assume_nonnull begin

OBJC_VISIBLE
@interface NSDictionary<__covariant KeyType, __covariant ObjectType>
    : NSObject <NSCopying, NSMutableCopying>
@property(readonly) NSUInteger count;
- (nullable ObjectType)objectForKey:(KeyType)key;
- (instancetype)init;
@property(readonly, copy) NSArray<KeyType> *allKeys;
@property(readonly, copy) NSArray<ObjectType> *allValues;
+ (instancetype)dictionary;
+ (instancetype)dictionaryWithObject:(ObjectType)object forKey:(KeyType<NSCopying>)key;
+ (instancetype)dictionaryWithObjectsAndKeys:(id)firstObject, ... __attribute__((sentinel(0, 1)));
+ (instancetype)dictionaryWithObjects:(const ObjectType _Nonnull[_Nullable])objects
                              forKeys:(const KeyType<NSCopying> _Nonnull[_Nullable])keys
                                count:(NSUInteger)count;
- (instancetype)initWithObjectsAndKeys:(id)firstObject, ... __attribute__((sentinel(0, 1)));
@end

OBJC_VISIBLE
@interface NSMutableDictionary<KeyType, ObjectType> : NSDictionary <KeyType, ObjectType>
- (void)setObject:(ObjectType)object forKey:(KeyType<NSCopying>)key;
- (void)removeObjectForKey:(KeyType)key;
- (void)removeAllObjects;
@end

#pragma clang assume_nonnull end
