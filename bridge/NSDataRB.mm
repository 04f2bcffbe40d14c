#include "bridge/MemoryBlocks.h"

#include <Foundation/Foundation.h>

// Sends the messages only: catching C++ exceptions is another file's business, as one file has one
// kind of exception handling.
REALobjectStruct *NSDataRB(NSData *data) {
    if (data == nil)
        return nullptr;
    const void *bytes = [data bytes];
    const auto size = static_cast<std::int64_t>([data length]);
    return bytes != nullptr && size > 0 ? newMemoryBlock(bytes, size) : nullptr;
}
