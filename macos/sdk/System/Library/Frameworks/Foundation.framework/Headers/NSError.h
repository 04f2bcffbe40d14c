// Errors as objects.

#pragma once
#pragma clang system_header

#include <Foundation/NSObject.h>

@class NSDictionary<KeyType, ObjectType>;
@class NSString;

#pragma clang assume_nonnull begin

typedef NSString *NSErrorDomain;

OBJC_VISIBLE
@interface NSError : NSObject <NSCopying>
+ (instancetype)errorWithDomain:(NSErrorDomain)domain
                           code:(NSInteger)code
                       userInfo:(nullable NSDictionary *)userInfo;
- (instancetype)initWithDomain:(NSErrorDomain)domain
                          code:(NSInteger)code
                      userInfo:(nullable NSDictionary *)userInfo;
@property(readonly) NSInteger code;
@property(readonly, copy) NSString *localizedDescription;
@property(nullable, readonly, copy) NSString *localizedFailureReason;
@property(readonly, copy) NSDictionary *userInfo;
@end

#pragma clang assume_nonnull end
