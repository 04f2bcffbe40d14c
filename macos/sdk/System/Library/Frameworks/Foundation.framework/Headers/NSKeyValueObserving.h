// Who is told of an object's changes.

#pragma once
#pragma clang system_header

#include <Foundation/NSObject.h>

@class NSString;

#pragma clang assume_nonnull begin

typedef NS_OPTIONS(NSUInteger, NSKeyValueObservingOptions) {
    NSKeyValueObservingOptionNew = 1,
    NSKeyValueObservingOptionOld = 2,
};

@interface NSObject (NSKeyValueObserverRegistration)
- (void)addObserver:(NSObject *)observer
         forKeyPath:(NSString *)path
            options:(NSKeyValueObservingOptions)options
            context:(nullable void *)context;
- (void)removeObserver:(NSObject *)observer forKeyPath:(NSString *)path;
@end

#pragma clang assume_nonnull end
