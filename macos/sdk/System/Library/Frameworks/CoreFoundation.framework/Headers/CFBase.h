// Core Foundation's base: scalar types, references, ownership, type identifiers.

#pragma once
#pragma clang system_header

#include <CoreFoundation/CFAvailability.h>
#include <MacTypes.h>
#include <stdbool.h>
#include <stddef.h>

#ifdef __cplusplus
#define CF_EXPORT extern "C"
#else
#define CF_EXPORT extern
#endif

/// An opaque struct whose objects are at the same time objects of that Objective-C class.
#ifdef __OBJC__
#define CF_BRIDGED_TYPE(class) __attribute__((objc_bridge(class)))
#define CF_BRIDGED_MUTABLE_TYPE(class) __attribute__((objc_bridge_mutable(class)))
#else
#define CF_BRIDGED_TYPE(class)
#define CF_BRIDGED_MUTABLE_TYPE(class)
#endif

#pragma clang assume_nonnull begin

typedef signed long CFIndex;
typedef unsigned long CFTypeID;
typedef unsigned long CFOptionFlags;
typedef unsigned long CFHashCode;

typedef const CF_BRIDGED_TYPE(id) void *CFTypeRef;
typedef const struct CF_BRIDGED_TYPE(id) __CFAllocator *CFAllocatorRef;
typedef const struct CF_BRIDGED_TYPE(NSString) __CFString *CFStringRef;
typedef struct CF_BRIDGED_MUTABLE_TYPE(NSMutableString) __CFString *CFMutableStringRef;

typedef struct {
    CFIndex location;
    CFIndex length;
} CFRange;

/// Null: the default allocator.
CF_EXPORT const CFAllocatorRef _Nullable kCFAllocatorDefault;

/// The identifier of the object's Core Foundation type.
CF_EXPORT CFTypeID CFGetTypeID(CFTypeRef object);

/// Takes one more reference and returns the object. The object must not be null.
CF_EXPORT CFTypeRef CFRetain(CFTypeRef object);

/// Gives back one reference. The object must not be null.
CF_EXPORT void CFRelease(CFTypeRef object);

#pragma clang assume_nonnull end
