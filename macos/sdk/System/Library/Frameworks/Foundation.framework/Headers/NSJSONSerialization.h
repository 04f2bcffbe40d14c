// JSON.

#pragma once
#pragma clang system_header

#include <Foundation/NSObject.h>

@class NSData;
@class NSError;

#pragma clang assume_nonnull begin

typedef enum : NSUInteger { NSJSONWritingPrettyPrinted = 1 } NSJSONWritingOptions;

OBJC_VISIBLE
@interface NSJSONSerialization : NSObject
/// Null, and why in *error; an object that JSON cannot hold raises NSInvalidArgumentException.
+ (nullable NSData *)dataWithJSONObject:(id)object
                                options:(NSJSONWritingOptions)options
                                  error:(NSError *_Nullable *_Nullable)error;
@end

#pragma clang assume_nonnull end
