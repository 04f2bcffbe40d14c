// Strings. Any NSString will do, also one that only answers length and characterAtIndex:.

#import "StandInString.h"

#include <CoreFoundation/CoreFoundation.h>

#include "Encodings.h"
#include "Misuse.h"
#include "WideResults.h"

#include <unicode/unorm2.h>

#include <algorithm>
#include <array>
#include <utility>

namespace {

static_assert(sizeof(unichar) == sizeof(UniChar) && sizeof(unichar) == sizeof(char16_t));

StandInString *newString(std::u16string units) {
    StandInString *const string = [[StandInString alloc] init];
    string->text = std::move(units);
    return string;
}

std::u16string unitsOf(NSString *string) {
    std::u16string units([string length], u'\0');
    [string getCharacters:reinterpret_cast<unichar *>(units.data())
                    range:NSMakeRange(0, units.size())];
    return units;
}

// Some units of the string from `start` on. A pair is never cut in two.
std::u16string_view nextPiece(NSString *string, NSUInteger start, NSUInteger length,
                              std::array<unichar, 128> &buffer) {
    NSUInteger count = std::min<NSUInteger>(length - start, buffer.size());
    [string getCharacters:buffer.data() range:NSMakeRange(start, count)];
    const bool endsInHighSurrogate = (buffer[count - 1] & 0xFC00) == 0xD800;
    if (endsInHighSurrogate && start + count < length) {
        --count;
    }
    return {reinterpret_cast<const char16_t *>(buffer.data()), count};
}

const UNormalizer2 *normalizer(CFStringNormalizationForm form, UErrorCode &status) {
    switch (form) {
    case kCFStringNormalizationFormD:
        return unorm2_getNFDInstance(&status);
    case kCFStringNormalizationFormKD:
        return unorm2_getNFKDInstance(&status);
    case kCFStringNormalizationFormC:
        return unorm2_getNFCInstance(&status);
    case kCFStringNormalizationFormKC:
        return unorm2_getNFKCInstance(&status);
    }
    standin::misuse("CFStringNormalize", "unknown normalization form");
}

} // namespace

CFStringRef CFStringCreateWithBytes(CFAllocatorRef, const UInt8 *bytes, CFIndex byteCount,
                                    CFStringEncoding encoding, Boolean isExternalRepresentation) {
    if (byteCount < 0 || (bytes == nullptr && byteCount > 0)) {
        standin::misuse(__func__, "there are no such bytes");
    }
    auto units = standin::decode({bytes, static_cast<std::size_t>(byteCount)}, encoding,
                                 isExternalRepresentation != 0);
    return units ? (CFStringRef)newString(std::move(*units)) : nullptr;
}

CFStringRef CFStringCreateWithCharacters(CFAllocatorRef, const UniChar *characters,
                                         CFIndex length) {
    if (length < 0 || (characters == nullptr && length > 0)) {
        standin::misuse(__func__, "there are no such characters");
    }
    const auto *units = reinterpret_cast<const char16_t *>(characters);
    return (CFStringRef)newString({units, static_cast<std::size_t>(length)});
}

CFMutableStringRef CFStringCreateMutableCopy(CFAllocatorRef, CFIndex maxLength,
                                             CFStringRef string) {
    standin::requireObject(string, __func__);
    if (maxLength != 0) {
        standin::misuse(__func__, "only strings without a limit are made here");
    }
    return (CFMutableStringRef)newString(unitsOf((NSString *)string));
}

CFIndex CFStringGetLength(CFStringRef string) {
    standin::requireObject(string, __func__);
    return static_cast<CFIndex>([(NSString *)string length]);
}

void CFStringGetCharacters(CFStringRef string, CFRange range, UniChar *buffer) {
    standin::requireObject(string, __func__);
    [(NSString *)string getCharacters:buffer
                                range:NSMakeRange(static_cast<NSUInteger>(range.location),
                                                  static_cast<NSUInteger>(range.length))];
}

extern "C" standin::WideBoolean getCString(CFStringRef string, char *buffer, CFIndex bufferSize,
                                           CFStringEncoding encoding) asm("CFStringGetCString");

standin::WideBoolean getCString(CFStringRef string, char *buffer, CFIndex bufferSize,
                                CFStringEncoding encoding) {
    standin::requireObject(string, "CFStringGetCString");
    if (bufferSize < 1) {
        return 0;
    }
    // Piece by piece, so that nothing is allocated.
    auto *const text = (NSString *)string;
    const NSUInteger length = [text length];
    const std::span<char> room(buffer, static_cast<std::size_t>(bufferSize) - 1);
    std::array<unichar, 128> units;
    std::size_t written = 0;
    for (NSUInteger at = 0; at < length;) {
        const std::u16string_view piece = nextPiece(text, at, length, units);
        const auto size = standin::encode(piece, encoding, room.subspan(written));
        if (!size) {
            buffer[0] = '\0';
            return 0;
        }
        written += *size;
        at += piece.size();
    }
    buffer[written] = '\0';
    return 1;
}

void CFStringNormalize(CFMutableStringRef string, CFStringNormalizationForm form) {
    standin::requireObject(string, __func__);
    const std::u16string source = unitsOf((NSString *)string);
    UErrorCode status = U_ZERO_ERROR;
    const UNormalizer2 *form2 = normalizer(form, status);
    const auto size = static_cast<std::int32_t>(source.size());
    const std::int32_t needed = unorm2_normalize(form2, source.data(), size, nullptr, 0, &status);
    status = U_ZERO_ERROR; // the first pass only measures
    std::u16string result(static_cast<std::size_t>(needed), u'\0');
    unorm2_normalize(form2, source.data(), size, result.data(), needed, &status);

    StandInString *const replacement = newString(std::move(result));
    [(NSMutableString *)string setString:replacement];
    [replacement release];
}
