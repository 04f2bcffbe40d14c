// Classes of which nothing is asked but their instances.

#pragma once
#pragma clang system_header

#include <Foundation/NSDate.h>
#include <Foundation/NSInvocation.h>
#include <Foundation/NSObject.h>
#include <Foundation/NSValue.h>

#pragma clang assume_nonnull begin

@class NSDirectoryEnumerator;
@class NSString;

OBJC_VISIBLE
@interface NSFileManager : NSObject
@property(class, readonly, strong) NSFileManager *defaultManager;
- (nullable NSDirectoryEnumerator *)enumeratorAtPath:(NSString *)path;
@end

OBJC_VISIBLE
@interface NSRunLoop : NSObject
@property(class, readonly, strong) NSRunLoop *currentRunLoop;
@end

OBJC_VISIBLE
@interface NSTimer : NSObject
+ (NSTimer *)timerWithTimeInterval:(NSTimeInterval)seconds
                            target:(id)target
                          selector:(SEL)selector
                          userInfo:(nullable id)userInfo
                           repeats:(BOOL)repeats;
@end

OBJC_VISIBLE
@interface NSDecimalNumber : NSNumber
+ (NSDecimalNumber *)decimalNumberWithString:(NSString *)text;
@end

OBJC_VISIBLE
@interface NSLock : NSObject
@end

OBJC_VISIBLE
@interface NSUndoManager : NSObject
@end

OBJC_VISIBLE
@interface NSDistributedNotificationCenter : NSObject
@end

/// A root class beside NSObject.
OBJC_VISIBLE
__attribute__((objc_root_class))
@interface NSProxy<NSObject> {
    Class isa;
}
+ (id)alloc;
- (void)dealloc;
- (void)forwardInvocation:(NSInvocation *)invocation;
- (nullable NSMethodSignature *)methodSignatureForSelector:(SEL)selector;
@end

#pragma clang assume_nonnull end
