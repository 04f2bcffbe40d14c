// The root protocol and the root class.

#pragma once
#pragma clang system_header

#include <objc/NSObjCRuntime.h>
#include <objc/objc.h>

#ifdef __OBJC__

@class NSString;

#pragma clang assume_nonnull begin

@protocol NSObject
@property(readonly) NSUInteger hash;
@property(readonly) Class superclass;
@property(readonly, copy) NSString *description;
- (BOOL)isEqual:(nullable id)object;
- (Class)class;
- (instancetype)self;
- (BOOL)isKindOfClass:(Class)aClass;
- (BOOL)isMemberOfClass:(Class)aClass;
- (BOOL)respondsToSelector:(SEL)aSelector;
- (id)performSelector:(SEL)aSelector;
- (id)performSelector:(SEL)aSelector withObject:(nullable id)object;
- (instancetype)retain;
- (oneway void)release;
- (instancetype)autorelease;
- (NSUInteger)retainCount;
@end

OBJC_VISIBLE
__attribute__((objc_root_class))
@interface NSObject<NSObject> {
    Class isa;
}
+ (instancetype)new;
+ (instancetype)alloc;
+ (Class)class;
+ (nullable Class)superclass;
+ (BOOL)instancesRespondToSelector:(SEL)aSelector;
+ (nullable IMP)instanceMethodForSelector:(SEL)aSelector;
+ (BOOL)resolveClassMethod:(SEL)aSelector;
+ (BOOL)resolveInstanceMethod:(SEL)aSelector;
+ (BOOL)isSubclassOfClass:(Class)aClass;
- (nullable IMP)methodForSelector:(SEL)aSelector;
+ (nullable IMP)methodForSelector:(SEL)aSelector;
- (instancetype)init;
- (void)dealloc;
- (id)copy;
- (id)mutableCopy;
- (void)doesNotRecognizeSelector:(SEL)aSelector;
@end

#pragma clang assume_nonnull end

#endif
