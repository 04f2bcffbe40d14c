#pragma once

#include "frame/HostTypes.h"

#include <cstdint>

/// The same as NSDataRB, for bytes, of which there is at least one.
REALobjectStruct *newMemoryBlock(const void *bytes, std::int64_t size);

/// What REALNewMemoryBlockWork is asked and answers.
struct MemoryBlockRequest {
    std::int64_t size;       // in: bytes wanted
    REALobjectStruct *block; // out: owned by the caller; null until success
};
static_assert(sizeof(MemoryBlockRequest) == 16);

/// Makes a block by the host class's constructor, whose size has 64 bits. The constructor raises
/// when memory is short: run this under the host's exception guard, with a MemoryBlockRequest as
/// argument.
void REALNewMemoryBlockWork(void *request);
