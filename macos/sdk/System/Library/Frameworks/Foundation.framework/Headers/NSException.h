// Exceptions.

#pragma once
#pragma clang system_header

#include <Foundation/NSObject.h>
#include <stdarg.h>

@class NSDictionary<KeyType, ObjectType>;
@class NSString;

#pragma clang assume_nonnull begin

typedef NSString *NSExceptionName;

FOUNDATION_EXPORT NSExceptionName const NSGenericException;
FOUNDATION_EXPORT NSExceptionName const NSInvalidArgumentException;
FOUNDATION_EXPORT NSExceptionName const NSRangeException;

OBJC_VISIBLE
__attribute__((objc_exception))
@interface NSException : NSObject<NSCopying>
+ (NSException *)exceptionWithName:(NSExceptionName)name
                            reason:(nullable NSString *)reason
                          userInfo:(nullable NSDictionary *)userInfo;
- (instancetype)initWithName:(NSExceptionName)name
                      reason:(nullable NSString *)reason
                    userInfo:(nullable NSDictionary *)userInfo;
@property(readonly, copy) NSExceptionName name;
@property(nullable, readonly, copy) NSString *reason;
@property(nullable, readonly, copy) NSDictionary *userInfo;
- (void)raise;
+ (void)raise:(NSExceptionName)name
       format:(NSString *)format, ... __attribute__((format(__NSString__, 2, 3)));
@end

#pragma clang assume_nonnull end
