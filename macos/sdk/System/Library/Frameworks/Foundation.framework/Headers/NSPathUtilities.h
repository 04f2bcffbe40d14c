// Folders that every process has.

#pragma once
#pragma clang system_header

#include <Foundation/NSObjCRuntime.h>

#pragma clang assume_nonnull begin

FOUNDATION_EXPORT NSString *NSHomeDirectory(void);

#pragma clang assume_nonnull end
