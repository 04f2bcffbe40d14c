// Messages as objects.

#pragma once
#pragma clang system_header

#include <Foundation/NSObject.h>

#pragma clang assume_nonnull begin

OBJC_VISIBLE
@interface NSMethodSignature : NSObject
@end

OBJC_VISIBLE
@interface NSInvocation : NSObject
@property SEL selector;
- (void)invokeWithTarget:(id)target;
@end

#pragma clang assume_nonnull end
