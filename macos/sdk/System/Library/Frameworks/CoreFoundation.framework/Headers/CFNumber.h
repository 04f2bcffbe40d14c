// The two boolean objects.

#pragma once
#pragma clang system_header

#include <CoreFoundation/CFBase.h>

#pragma clang assume_nonnull begin

typedef const struct CF_BRIDGED_TYPE(NSNumber) __CFBoolean *CFBooleanRef;

CF_EXPORT const CFBooleanRef _Null_unspecified kCFBooleanTrue;
CF_EXPORT const CFBooleanRef _Null_unspecified kCFBooleanFalse;

CF_EXPORT CFTypeID CFBooleanGetTypeID(void);
CF_EXPORT CFTypeID CFNumberGetTypeID(void);

#pragma clang assume_nonnull end
