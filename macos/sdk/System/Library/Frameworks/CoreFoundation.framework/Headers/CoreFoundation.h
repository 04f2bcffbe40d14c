// Umbrella header of Core Foundation.

#pragma once
#pragma clang system_header

#include <CoreFoundation/CFBase.h>

#include <CoreFoundation/CFDictionary.h>
#include <CoreFoundation/CFNumber.h>
#include <CoreFoundation/CFString.h>
#include <CoreFoundation/CFTypes.h>
#include <CoreFoundation/CFURL.h>
