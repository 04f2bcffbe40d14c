// Strings: creation from bytes and units, reading, normalization. Lengths and ranges are in UTF-16
// units. Functions named Create return a reference that the caller releases, or null.

#pragma once
#pragma clang system_header

#include <CoreFoundation/CFBase.h>

#pragma clang assume_nonnull begin

typedef UInt32 CFStringEncoding;

#define kCFStringEncodingInvalidId (0xffffffffU)

typedef CF_ENUM(CFStringEncoding, CFStringBuiltInEncodings) {
    kCFStringEncodingMacRoman = 0,
    kCFStringEncodingUTF16 = 0x0100,
    kCFStringEncodingUnicode = kCFStringEncodingUTF16,
    kCFStringEncodingISOLatin1 = 0x0201,
    kCFStringEncodingWindowsLatin1 = 0x0500,
    kCFStringEncodingASCII = 0x0600,
    kCFStringEncodingNextStepLatin = 0x0B01,
    kCFStringEncodingNonLossyASCII = 0x0BFF,
    kCFStringEncodingUTF8 = 0x08000100,
    kCFStringEncodingUTF32 = 0x0C000100,
    kCFStringEncodingUTF16BE = 0x10000100,
    kCFStringEncodingUTF16LE = 0x14000100,
    kCFStringEncodingUTF32BE = 0x18000100,
    kCFStringEncodingUTF32LE = 0x1C000100,
};

typedef CF_ENUM(CFIndex, CFStringNormalizationForm) {
    kCFStringNormalizationFormD = 0, // canonical decomposition
    kCFStringNormalizationFormKD,
    kCFStringNormalizationFormC,
    kCFStringNormalizationFormKC,
};

CF_EXPORT CFTypeID CFStringGetTypeID(void);

/// A string of the decoded bytes; null when the bytes are not valid in the encoding or the encoding
/// is unknown. With `isExternalRepresentation` a byte order mark is honoured and dropped.
CF_EXPORT CFStringRef _Null_unspecified CFStringCreateWithBytes(
    CFAllocatorRef _Nullable allocator, const UInt8 *_Null_unspecified bytes, CFIndex byteCount,
    CFStringEncoding encoding, Boolean isExternalRepresentation);

/// A string of a copy of the units, in host byte order.
CF_EXPORT CFStringRef _Null_unspecified CFStringCreateWithCharacters(
    CFAllocatorRef _Nullable allocator, const UniChar *_Null_unspecified characters,
    CFIndex length);

/// A mutable copy. `maxLength` 0: no limit.
CF_EXPORT CFMutableStringRef _Null_unspecified CFStringCreateMutableCopy(
    CFAllocatorRef _Nullable allocator, CFIndex maxLength, CFStringRef string);

CF_EXPORT CFIndex CFStringGetLength(CFStringRef string);

/// Copies the units of the range. The range must lie within the string.
CF_EXPORT void CFStringGetCharacters(CFStringRef string, CFRange range, UniChar *buffer);

/// Writes the whole string and a terminating zero byte. False when the buffer is too small or the
/// string has no such form in the encoding; the buffer then holds nothing to rely on.
CF_EXPORT Boolean CFStringGetCString(CFStringRef string, char *buffer, CFIndex bufferSize,
                                     CFStringEncoding encoding);

/// Brings the string into a Unicode normalization form, in place.
CF_EXPORT void CFStringNormalize(CFMutableStringRef string, CFStringNormalizationForm form);

#pragma clang assume_nonnull end

#ifdef __cplusplus
inline constexpr CFRange CFRangeMake(CFIndex location, CFIndex length) {
    return {location, length};
}
#endif
