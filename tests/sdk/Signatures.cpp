// Every C function has macOS's signature.

#include <CoreFoundation/CoreFoundation.h>
#include <CoreServices/CoreServices.h>
#include <CoreText/CoreText.h>
#include <objc/runtime.h>

#include <type_traits>

// Some are deprecated, which is a fact about them and no concern of this file.
#pragma clang diagnostic ignored "-Wdeprecated-declarations"

namespace {

template <auto Function, typename Signature>
constexpr bool has = std::is_same_v<std::remove_pointer_t<decltype(Function)>, Signature>;

static_assert(has<&CFRetain, CFTypeRef(CFTypeRef)>);
static_assert(has<&CFRelease, void(CFTypeRef)>);
static_assert(has<&CFGetTypeID, CFTypeID(CFTypeRef)>);

static_assert(has<&CFStringGetLength, CFIndex(CFStringRef)>);
static_assert(has<&CFStringGetCharacters, void(CFStringRef, CFRange, UniChar *)>);
static_assert(has<&CFStringGetCString, Boolean(CFStringRef, char *, CFIndex, CFStringEncoding)>);
static_assert(has<&CFStringCreateWithBytes,
                  CFStringRef(CFAllocatorRef, const UInt8 *, CFIndex, CFStringEncoding, Boolean)>);
static_assert(
    has<&CFStringCreateWithCharacters, CFStringRef(CFAllocatorRef, const UniChar *, CFIndex)>);
static_assert(
    has<&CFStringCreateMutableCopy, CFMutableStringRef(CFAllocatorRef, CFIndex, CFStringRef)>);
static_assert(has<&CFStringNormalize, void(CFMutableStringRef, CFStringNormalizationForm)>);

static_assert(has<&CFDictionaryCreateMutable,
                  CFMutableDictionaryRef(CFAllocatorRef, CFIndex, const CFDictionaryKeyCallBacks *,
                                         const CFDictionaryValueCallBacks *)>);
static_assert(has<&CFDictionaryGetCount, CFIndex(CFDictionaryRef)>);
static_assert(has<&CFDictionaryGetValue, const void *(CFDictionaryRef, const void *)>);
static_assert(has<&CFDictionarySetValue, void(CFMutableDictionaryRef, const void *, const void *)>);
static_assert(has<&CFDictionaryRemoveValue, void(CFMutableDictionaryRef, const void *)>);

static_assert(has<&CFURLGetFSRef, Boolean(CFURLRef, FSRef *)>);
static_assert(has<&CFURLCreateCopyDeletingLastPathComponent, CFURLRef(CFAllocatorRef, CFURLRef)>);
static_assert(has<&CFURLCopyLastPathComponent, CFStringRef(CFURLRef)>);

static_assert(has<&FSGetCatalogInfo, OSErr(const FSRef *, FSCatalogInfoBitmap, FSCatalogInfo *,
                                           HFSUniStr255 *, FSSpecPtr, FSRef *)>);
static_assert(has<&FSRefMakePath, OSStatus(const FSRef *, UInt8 *, UInt32)>);

static_assert(has<&sel_registerName, SEL(const char *)>);
static_assert(has<&object_getClassName, const char *(id)>);
static_assert(has<&object_getClass, Class(id)>);
static_assert(has<&class_getName, const char *(Class)>);
static_assert(has<&class_getSuperclass, Class(Class)>);
static_assert(has<&class_getMethodImplementation, IMP(Class, SEL)>);
static_assert(std::is_invocable_v<decltype(objc_getClass), const char *>);

static_assert(std::is_same_v<decltype(kCFAllocatorDefault), const CFAllocatorRef>);
static_assert(std::is_same_v<decltype(kCFBooleanTrue), const CFBooleanRef>);
static_assert(std::is_same_v<decltype(kCFBooleanFalse), const CFBooleanRef>);

using Identify = CFTypeID();
static_assert(has<&CFArrayGetTypeID, Identify> && has<&CFAttributedStringGetTypeID, Identify> &&
              has<&CFBagGetTypeID, Identify> && has<&CFBooleanGetTypeID, Identify> &&
              has<&CFBundleGetTypeID, Identify> && has<&CFCharacterSetGetTypeID, Identify> &&
              has<&CFDataGetTypeID, Identify> && has<&CFDateGetTypeID, Identify> &&
              has<&CFDictionaryGetTypeID, Identify> && has<&CFErrorGetTypeID, Identify> &&
              has<&CFNumberGetTypeID, Identify> && has<&CFSetGetTypeID, Identify> &&
              has<&CFStringGetTypeID, Identify> && has<&CFTimeZoneGetTypeID, Identify> &&
              has<&CFURLGetTypeID, Identify> && has<&CFUUIDGetTypeID, Identify>);
static_assert(has<&CTFontGetTypeID, Identify> && has<&CTFontCollectionGetTypeID, Identify> &&
              has<&CTFrameGetTypeID, Identify> && has<&CTFramesetterGetTypeID, Identify> &&
              has<&CTGlyphInfoGetTypeID, Identify> && has<&CTLineGetTypeID, Identify> &&
              has<&CTParagraphStyleGetTypeID, Identify> && has<&CTRunGetTypeID, Identify> &&
              has<&CTRunDelegateGetTypeID, Identify> && has<&CTTypesetterGetTypeID, Identify>);

} // namespace
