#include "host/core/Core.h"
#include "host/language/Encodings.h"
#include "host/memory/Heap.h"
#include "host/services/ServiceBodies.h"

#include <CoreFoundation/CoreFoundation.h>

namespace host::services {

namespace {

/// An encoding that the host can work with; a violation otherwise.
bool isUsable(Core &core, TextEncoding encoding) {
    if (isKnownEncoding(static_cast<std::uint32_t>(encoding)))
        return true;
    core.heap.violation("got " + callText::show(core, encoding, true) +
                        ", which is no text encoding");
    return false;
}

} // namespace

void lockString(Core &core, StringHandle string) {
    core.heap.lock(string);
}

void unlockString(Core &core, StringHandle string) {
    core.heap.unlock(string);
}

StringHandle buildString(Core &core, const unsigned char *bytes, std::int32_t length) {
    return buildStringWithEncoding(core, bytes, length, TextEncoding{encoding::unknown});
}

StringHandle buildStringWithEncoding(Core &core, const unsigned char *bytes, std::int32_t length,
                                     TextEncoding encoding) {
    if (length < 0 || (bytes == nullptr && length > 0)) {
        core.heap.violation(length < 0 ? "got the length " + std::to_string(length)
                                       : std::string("got no bytes"));
        return nullptr;
    }
    if (!isUsable(core, encoding))
        return nullptr;
    const auto *text = reinterpret_cast<const char *>(bytes);
    return core.heap
        .makeString(std::string(text, static_cast<std::size_t>(length)),
                    static_cast<std::uint32_t>(encoding))
        .handle();
}

StringHandle convertString(Core &core, StringHandle handle, TextEncoding encoding) {
    if (handle == nullptr)
        return nullptr;
    const String *string = core.heap.check(handle);
    if (string == nullptr || !isUsable(core, encoding))
        return nullptr;
    const auto target = static_cast<std::uint32_t>(encoding);
    return core.heap.makeString(convertBytes(string->bytes, string->encoding, target), target)
        .handle();
}

void setStringEncoding(Core &core, StringHandle handle, TextEncoding encoding) {
    String *string = core.heap.check(handle);
    if (string != nullptr && isUsable(core, encoding))
        string->encoding = static_cast<std::uint32_t>(encoding);
}

TextEncoding stringEncoding(Core &core, StringHandle handle) {
    const String *string = core.heap.check(handle);
    return TextEncoding{string == nullptr ? 0 : string->encoding};
}

const void *stringBytes(Core &core, StringHandle handle) {
    if (handle == nullptr)
        return "";
    const String *string = core.heap.check(handle);
    return string == nullptr ? nullptr : string->bytes.c_str();
}

// Bytes belong to their string here, so there is nothing to give back.
void disposeStringData(Core &core, void *data) {
    if (data == nullptr)
        core.heap.violation("got no string data");
}

void *stringCFString(Core &core, StringHandle handle, std::int32_t /*reserved*/) {
    const String *string = core.heap.check(handle);
    if (string == nullptr || string->encoding == encoding::unknown)
        return nullptr;
    const std::string text = toUtf8(string->bytes, string->encoding);
    return const_cast<void *>(static_cast<const void *>(
        CFStringCreateWithBytes(nullptr, reinterpret_cast<const UInt8 *>(text.data()),
                                static_cast<CFIndex>(text.size()), encoding::utf8, false)));
}

} // namespace host::services
