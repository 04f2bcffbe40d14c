// Messages as objects.

#pragma once
#pragma clang system_header

#include <Foundation/NSObject.h>

#pragma clang assume_nonnull begin

OBJC_VISIBLE
@interface NSMethodSignature : NSObject
@end

@interface NSObject (NSMethodSignature)
- (nullable NSMethodSignature *)methodSignatureForSelector:(SEL)selector;
@end

OBJC_VISIBLE
@interface NSInvocation : NSObject
+ (NSInvocation *)invocationWithMethodSignature:(NSMethodSignature *)signature;
@property(nullable, assign) id target;
@property SEL selector;
- (void)invoke;
/// Copies as many bytes as the signature's result has.
- (void)getReturnValue:(void *)result;
- (void)invokeWithTarget:(id)target;
@end

#pragma clang assume_nonnull end
