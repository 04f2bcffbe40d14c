// The root class and its protocols, and copying.

#pragma once
#pragma clang system_header

#include <Foundation/NSObjCRuntime.h>
#include <objc/NSObject.h>

#pragma clang assume_nonnull begin

struct _NSZone;
typedef struct _NSZone NSZone;

@protocol NSCopying
- (id)copyWithZone:(nullable NSZone *)zone;
@end

@protocol NSMutableCopying
- (id)mutableCopyWithZone:(nullable NSZone *)zone;
@end

/// An instance with `extraBytes` behind its variables, all zero. The zone is ignored.
FOUNDATION_EXPORT id NSAllocateObject(Class cls, NSUInteger extraBytes, NSZone *_Nullable zone);
FOUNDATION_EXPORT void NSDeallocateObject(id object);

#pragma clang assume_nonnull end
