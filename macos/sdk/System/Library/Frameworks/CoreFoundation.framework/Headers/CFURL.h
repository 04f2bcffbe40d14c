// URLs of files: file references and path components.

#pragma once
#pragma clang system_header

#include <CoreFoundation/CFBase.h>

#pragma clang assume_nonnull begin

typedef const struct CF_BRIDGED_TYPE(NSURL) __CFURL *CFURLRef;

struct FSRef;

CF_EXPORT CFTypeID CFURLGetTypeID(void);

/// Fills in the reference of the file that the URL names. False when there is no such file or the
/// URL is not a file URL.
CF_EXPORT Boolean CFURLGetFSRef(CFURLRef url, struct FSRef *fsRef) CF_MACOS_DEPRECATED(10.0, 10.9);

/// The URL without its last path component, released by the caller; null when it has no path.
CF_EXPORT CFURLRef _Null_unspecified CFURLCreateCopyDeletingLastPathComponent(
    CFAllocatorRef _Nullable allocator, CFURLRef url);

/// The last path component without percent escapes, released by the caller; null when the URL has
/// no path.
CF_EXPORT CFStringRef _Null_unspecified CFURLCopyLastPathComponent(CFURLRef url);

#pragma clang assume_nonnull end
