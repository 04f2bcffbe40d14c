// Foundation's linkage, and its log.

#pragma once
#pragma clang system_header

#include <CoreFoundation/CFAvailability.h>
#include <objc/NSObjCRuntime.h>
#include <stdarg.h>

#ifdef __cplusplus
#define FOUNDATION_EXPORT extern "C"
#else
#define FOUNDATION_EXPORT extern
#endif

#define NS_ENUM(type, name) CF_ENUM(type, name)
#define NS_OPTIONS(type, name) CF_OPTIONS(type, name)

#ifdef __OBJC__

@class NSString;

#pragma clang assume_nonnull begin

FOUNDATION_EXPORT NSString *NSStringFromSelector(SEL selector);
FOUNDATION_EXPORT NSString *NSStringFromClass(Class cls);

/// Writes a line to the system's log and to standard error. %@ takes an object, null included.
FOUNDATION_EXPORT void NSLog(NSString *format, ...) __attribute__((format(__NSString__, 1, 2)));

#pragma clang assume_nonnull end

#endif
