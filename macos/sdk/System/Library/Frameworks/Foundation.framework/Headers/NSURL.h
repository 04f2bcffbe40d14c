// URLs.

#pragma once
#pragma clang system_header

#include <Foundation/NSObject.h>

@class NSString;

#pragma clang assume_nonnull begin

OBJC_VISIBLE
@interface NSURL : NSObject <NSCopying>
+ (NSURL *)fileURLWithPath:(NSString *)path;
+ (NSURL *)fileURLWithPath:(NSString *)path isDirectory:(BOOL)isDirectory;
+ (nullable instancetype)URLWithString:(NSString *)text;
+ (nullable instancetype)URLWithString:(NSString *)text relativeToURL:(nullable NSURL *)base;
- (nullable instancetype)initWithString:(NSString *)text;
@property(nullable, readonly, copy) NSString *absoluteString;
@property(readonly, getter=isFileURL) BOOL fileURL;
@property(nullable, readonly, copy) NSString *path;
- (instancetype)initFileURLWithPath:(NSString *)path;
@end

#pragma clang assume_nonnull end
