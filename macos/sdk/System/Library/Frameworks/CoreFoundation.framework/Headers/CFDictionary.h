// Dictionaries of pointers. The call-backs say how keys are compared and what is retained; without
// call-backs keys are compared by identity and nothing is retained.

#pragma once
#pragma clang system_header

#include <CoreFoundation/CFBase.h>

#pragma clang assume_nonnull begin

typedef const struct CF_BRIDGED_TYPE(NSDictionary) __CFDictionary *CFDictionaryRef;
typedef struct CF_BRIDGED_MUTABLE_TYPE(NSMutableDictionary) __CFDictionary *CFMutableDictionaryRef;

typedef const void *_Nullable (*CFDictionaryRetainCallBack)(CFAllocatorRef _Nullable allocator,
                                                            const void *value);
typedef void (*CFDictionaryReleaseCallBack)(CFAllocatorRef _Nullable allocator, const void *value);
typedef CFStringRef _Nullable (*CFDictionaryCopyDescriptionCallBack)(const void *_Nullable value);
typedef Boolean (*CFDictionaryEqualCallBack)(const void *_Nullable value1,
                                             const void *_Nullable value2);
typedef CFHashCode (*CFDictionaryHashCallBack)(const void *_Nullable value);

typedef struct {
    CFIndex version; // 0
    CFDictionaryRetainCallBack _Nullable retain;
    CFDictionaryReleaseCallBack _Nullable release;
    CFDictionaryCopyDescriptionCallBack _Nullable copyDescription;
    CFDictionaryEqualCallBack _Nullable equal;
    CFDictionaryHashCallBack _Nullable hash;
} CFDictionaryKeyCallBacks;

typedef struct {
    CFIndex version; // 0
    CFDictionaryRetainCallBack _Nullable retain;
    CFDictionaryReleaseCallBack _Nullable release;
    CFDictionaryCopyDescriptionCallBack _Nullable copyDescription;
    CFDictionaryEqualCallBack _Nullable equal;
} CFDictionaryValueCallBacks;

CF_EXPORT CFTypeID CFDictionaryGetTypeID(void);

/// An empty dictionary that the caller releases. `capacity` is a hint.
CF_EXPORT CFMutableDictionaryRef _Null_unspecified CFDictionaryCreateMutable(
    CFAllocatorRef _Nullable allocator, CFIndex capacity,
    const CFDictionaryKeyCallBacks *_Nullable keyCallBacks,
    const CFDictionaryValueCallBacks *_Nullable valueCallBacks);

CF_EXPORT CFIndex CFDictionaryGetCount(CFDictionaryRef dictionary);

/// The value, borrowed; null when there is no such key.
CF_EXPORT const void *_Nullable CFDictionaryGetValue(CFDictionaryRef dictionary,
                                                     const void *_Null_unspecified key);

/// Adds the pair, or replaces the value when the key is there.
CF_EXPORT void CFDictionarySetValue(CFMutableDictionaryRef dictionary,
                                    const void *_Null_unspecified key,
                                    const void *_Null_unspecified value);

/// Removes the pair; without effect when there is no such key.
CF_EXPORT void CFDictionaryRemoveValue(CFMutableDictionaryRef dictionary,
                                       const void *_Null_unspecified key);

#pragma clang assume_nonnull end
