// The platform's types have the sizes, alignments and signs that 64-bit macOS gives them.

#include <CoreFoundation/CoreFoundation.h>
#include <CoreServices/CoreServices.h>
#include <objc/NSObjCRuntime.h>
#include <objc/objc.h>

#include <cstddef>
#include <type_traits>

namespace {

template <typename Type, typename Same>
constexpr bool is = std::is_same_v<Type, Same>;

#if defined(__APPLE__) && defined(__arm64__)
static_assert(is<BOOL, bool>);
#else
static_assert(is<BOOL, signed char>);
#endif
static_assert(sizeof(BOOL) == 1);
static_assert(is<Boolean, unsigned char>);
static_assert(is<NSInteger, long> && is<NSUInteger, unsigned long>);
static_assert(is<CFIndex, long> && is<CFTypeID, unsigned long>);
static_assert(is<CFOptionFlags, unsigned long> && is<CFHashCode, unsigned long>);
static_assert(is<CFTypeRef, const void *>);
static_assert(is<UInt8, unsigned char> && is<SInt8, signed char>);
static_assert(is<UInt16, unsigned short> && is<SInt16, short>);
static_assert(is<UInt32, unsigned int> && is<SInt32, int>);
static_assert(is<UInt64, unsigned long long> && is<SInt64, long long>);
static_assert(is<UniChar, unsigned short>);
static_assert(is<OSErr, short> && is<OSStatus, int>);
static_assert(is<CFStringEncoding, unsigned int>);
static_assert(sizeof(CFStringNormalizationForm) == sizeof(long));
static_assert(sizeof(id) == 8 && sizeof(SEL) == 8 && sizeof(Class) == 8);

static_assert(sizeof(CFRange) == 16 && offsetof(CFRange, length) == 8);

static_assert(sizeof(FSRef) == 80 && alignof(FSRef) == 1);

static_assert(sizeof(HFSUniStr255) == 512 && alignof(HFSUniStr255) == 2);
static_assert(offsetof(HFSUniStr255, length) == 0 && offsetof(HFSUniStr255, unicode) == 2);
static_assert(std::extent_v<decltype(HFSUniStr255::unicode)> == 255);
static_assert(is<decltype(HFSUniStr255::length), UInt16>);

static_assert(sizeof(FSCatalogInfo) == 148 && alignof(FSCatalogInfo) == 2);
static_assert(offsetof(FSCatalogInfo, volume) == 2);
static_assert(offsetof(FSCatalogInfo, parentDirID) == 4);
static_assert(offsetof(FSCatalogInfo, nodeID) == 8);
static_assert(offsetof(FSCatalogInfo, createDate) == 16);
static_assert(offsetof(FSCatalogInfo, permissions) == 56);
static_assert(offsetof(FSCatalogInfo, finderInfo) == 76);
static_assert(offsetof(FSCatalogInfo, dataLogicalSize) == 108);
static_assert(offsetof(FSCatalogInfo, textEncodingHint) == 144);
static_assert(is<decltype(FSCatalogInfo::nodeID), UInt32>);

static_assert(kFSCatInfoNone == 0 && kFSCatInfoNodeID == 0x10);
static_assert(kCFStringNormalizationFormD == 0);
static_assert(kCFStringEncodingMacRoman == 0 && kCFStringEncodingUTF16 == 0x0100);
static_assert(kCFStringEncodingISOLatin1 == 0x0201 && kCFStringEncodingWindowsLatin1 == 0x0500);
static_assert(kCFStringEncodingASCII == 0x0600 && kCFStringEncodingUTF8 == 0x08000100);
static_assert(kCFStringEncodingUTF32 == 0x0C000100);
static_assert(kCFStringEncodingInvalidId == 0xFFFFFFFFU);

} // namespace
