#include "host/language/Encodings.h"
#include "host/services/ServiceBodies.h"

#include <CoreFoundation/CoreFoundation.h>

namespace host::services {

namespace {

/// An encoding that the host can work with; a violation otherwise.
bool isUsable(Host &host, TextEncoding encoding) {
    if (isKnownEncoding(static_cast<std::uint32_t>(encoding)))
        return true;
    host.heap().violation("got " + callText::show(host, encoding, true) +
                          ", which is no text encoding");
    return false;
}

} // namespace

void lockString(Host &host, StringHandle string) {
    host.heap().lock(string);
}

void unlockString(Host &host, StringHandle string) {
    host.heap().unlock(string);
}

StringHandle buildString(Host &host, const unsigned char *bytes, std::int32_t length) {
    return buildStringWithEncoding(host, bytes, length, TextEncoding{encoding::unknown});
}

StringHandle buildStringWithEncoding(Host &host, const unsigned char *bytes, std::int32_t length,
                                     TextEncoding encoding) {
    if (length < 0 || (bytes == nullptr && length > 0)) {
        host.heap().violation(length < 0 ? "got the length " + std::to_string(length)
                                         : std::string("got no bytes"));
        return nullptr;
    }
    if (!isUsable(host, encoding))
        return nullptr;
    const auto *text = reinterpret_cast<const char *>(bytes);
    return host.heap()
        .makeString(std::string(text, static_cast<std::size_t>(length)),
                    static_cast<std::uint32_t>(encoding))
        .handle();
}

StringHandle convertString(Host &host, StringHandle handle, TextEncoding encoding) {
    if (handle == nullptr)
        return nullptr;
    const String *string = host.heap().check(handle);
    if (string == nullptr || !isUsable(host, encoding))
        return nullptr;
    const auto target = static_cast<std::uint32_t>(encoding);
    return host.heap()
        .makeString(convertBytes(string->bytes, string->encoding, target), target)
        .handle();
}

void setStringEncoding(Host &host, StringHandle handle, TextEncoding encoding) {
    String *string = host.heap().check(handle);
    if (string != nullptr && isUsable(host, encoding))
        string->encoding = static_cast<std::uint32_t>(encoding);
}

TextEncoding stringEncoding(Host &host, StringHandle handle) {
    const String *string = host.heap().check(handle);
    return TextEncoding{string == nullptr ? 0 : string->encoding};
}

const void *stringBytes(Host &host, StringHandle handle) {
    if (handle == nullptr)
        return "";
    const String *string = host.heap().check(handle);
    return string == nullptr ? nullptr : string->bytes.c_str();
}

// Bytes belong to their string here, so there is nothing to give back.
void disposeStringData(Host &host, void *data) {
    if (data == nullptr)
        host.heap().violation("got no string data");
}

void *stringCFString(Host &host, StringHandle handle, std::int32_t /*reserved*/) {
    const String *string = host.heap().check(handle);
    if (string == nullptr || string->encoding == encoding::unknown)
        return nullptr;
    const std::string text = toUtf8(string->bytes, string->encoding);
    return const_cast<void *>(static_cast<const void *>(
        CFStringCreateWithBytes(nullptr, reinterpret_cast<const UInt8 *>(text.data()),
                                static_cast<CFIndex>(text.size()), encoding::utf8, false)));
}

} // namespace host::services
