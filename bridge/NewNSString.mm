#include "bridge/NewNSString.h"

#include "frame/HeldUntilReset.h"
#include "frame/HostVersion.h"

namespace {

// The CFString that the host itself hands out, owned by the caller, or null.
CFStringRef stringFromHost(REALstringStruct *string) {
    if (hostVersion >= hostCopiesCFStringsSince)
        if (CFStringRef copy = REALCopyStringCFString(string, 0))
            return copy;
    return REALGetStringCFString(string, 0);
}

// Host and Core Foundation number encodings alike; UTF-16 alone needs more, to be read in host byte
// order with a byte-order mark taken as text.
CFStringRef decoded(StringContents contents, std::uint32_t encoding) {
    const auto [bytes, length] = contents;
    if (bytes == nullptr && length > 0)
        return nullptr; // the host says how many there are, but not where
    if (encoding == HostEncoding::utf16)
        return CFStringCreateWithCharacters(kCFAllocatorDefault,
                                            reinterpret_cast<const UniChar *>(bytes), length / 2);
    return CFStringCreateWithBytes(kCFAllocatorDefault, reinterpret_cast<const UInt8 *>(bytes),
                                   length, encoding, true);
}

// A CFString from the host string's bytes, owned by the caller; null if they do not decode.
CFStringRef stringFromBytes(REALstringStruct *string, std::uint32_t encoding) {
    REALLockString(string); // keeps the bytes where they are
    StringReference lock{string};
    HeldUntilReset<CFStringRef, CFRelease> result{decoded(REALGetStringContents(string), encoding)};
    lock.reset();
    return result.handOver();
}

} // namespace

NSString *NewNSString(REALstringStruct *string) {
    if (string == nullptr)
        return nil;
    const std::uint32_t encoding = REALGetStringEncoding(string);
    CFStringRef result = nullptr;
    if (encoding == HostEncoding::unknown) {
        result = stringFromBytes(string, HostEncoding::macRoman);
    } else {
        result = stringFromHost(string);
        if (result == nullptr)
            result = stringFromBytes(string, encoding);
    }
    return [(NSString *)result autorelease];
}
