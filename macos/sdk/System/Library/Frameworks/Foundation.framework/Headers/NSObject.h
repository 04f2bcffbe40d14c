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

#pragma clang assume_nonnull end
