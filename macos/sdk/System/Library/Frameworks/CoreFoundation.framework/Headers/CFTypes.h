// Identifiers of the types that are only told apart here, never used.

#pragma once
#pragma clang system_header

#include <CoreFoundation/CFBase.h>

CF_EXPORT CFTypeID CFArrayGetTypeID(void);
CF_EXPORT CFTypeID CFAttributedStringGetTypeID(void);
CF_EXPORT CFTypeID CFBagGetTypeID(void);
CF_EXPORT CFTypeID CFBundleGetTypeID(void);
CF_EXPORT CFTypeID CFCharacterSetGetTypeID(void);
CF_EXPORT CFTypeID CFDataGetTypeID(void);
CF_EXPORT CFTypeID CFDateGetTypeID(void);
CF_EXPORT CFTypeID CFErrorGetTypeID(void);
CF_EXPORT CFTypeID CFSetGetTypeID(void);
CF_EXPORT CFTypeID CFTimeZoneGetTypeID(void);
CF_EXPORT CFTypeID CFUUIDGetTypeID(void);
