// Property lists.

#pragma once
#pragma clang system_header

#include <Foundation/NSObject.h>

@class NSData;
@class NSError;

#pragma clang assume_nonnull begin

typedef enum { NSPropertyListImmutable = 0 } NSPropertyListMutabilityOptions;
typedef enum { NSPropertyListXMLFormat_v1_0 = 100 } NSPropertyListFormat;

OBJC_VISIBLE
@interface NSPropertyListSerialization : NSObject
/// Null, and why in *error, for data that is no property list.
+ (nullable id)propertyListWithData:(NSData *)data
                            options:(NSUInteger)options
                             format:(nullable NSPropertyListFormat *)format
                              error:(NSError *_Nullable *_Nullable)error;
/// Null, and why in *error, for an object that property lists cannot hold.
+ (nullable NSData *)dataWithPropertyList:(id)propertyList
                                   format:(NSPropertyListFormat)format
                                  options:(NSUInteger)options
                                    error:(NSError *_Nullable *_Nullable)error;
@end

#pragma clang assume_nonnull end
