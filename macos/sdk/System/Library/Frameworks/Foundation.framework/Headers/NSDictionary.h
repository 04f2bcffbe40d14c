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
+ (instancetype)dictionary;
+ (instancetype)dictionaryWithObject:(ObjectType)object forKey:(KeyType<NSCopying>)key;
@end

#pragma clang assume_nonnull end
