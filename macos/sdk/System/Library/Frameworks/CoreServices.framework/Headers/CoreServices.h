// Umbrella header of Core Services.

#pragma once
#pragma clang system_header

#include <CoreFoundation/CoreFoundation.h>

#include <CoreServices/Files.h>
