#pragma once

#include "frame/HostTypes.h"

#include <cstddef>
#include <cstdint>

#ifdef __OBJC__
@class NSData;

// Copies the data's bytes (borrowed) into a new host MemoryBlock, which the caller owns. Null for
// nil and for no bytes. Null, and an OutOfMemoryException for the host program, when no block of
// that size is to be had.
REALobjectStruct *NSDataRB(NSData *data);
#endif

// The same for bytes, of which there is at least one.
REALobjectStruct *newMemoryBlock(const void *bytes, std::int64_t size);

// What REALNewMemoryBlockWork is asked and answers.
struct MemoryBlockRequest {
    std::int64_t size;       // in: bytes wanted
    REALobjectStruct *block; // out: owned by the caller; null until success
};
static_assert(sizeof(MemoryBlockRequest) == 16);
static_assert(offsetof(MemoryBlockRequest, block) == 8);

// Makes a block by the host class's constructor, whose size has 64 bits. The constructor raises
// when memory is short: run this under the host's exception guard, with a MemoryBlockRequest as
// argument.
void REALNewMemoryBlockWork(void *request);
