#include "bridge/NSDataRB.h"

#include "bridge/MemoryBlocks.h"

// Sends the messages and no more: with GCC's runtime, an Objective-C++ file cannot catch C++
// exceptions.
REALobjectStruct *NSDataRB(NSData *data) {
    if (data == nil)
        return nullptr;
    const void *bytes = [data bytes];
    const auto size = static_cast<std::int64_t>([data length]);
    return bytes != nullptr && size > 0 ? newMemoryBlock(bytes, size) : nullptr;
}
