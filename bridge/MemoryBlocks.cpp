#include "bridge/MemoryBlocks.h"

#include "frame/HeldUntilReset.h"
#include "frame/RaiseException.h"

#include <array>
#include <cstdio>
#include <cstring>
#include <new>
#include <utility>

namespace {

constexpr std::int64_t firstLargeSize = 0x7FFFFFFF; // bytes
constexpr std::int32_t scratchSize = 4;

using DataPointerMethod = void *(REALobjectStruct *block);
using SizeConstructor = void(REALobjectStruct *block, std::int64_t size);

constinit DataPointerMethod *myMemoryBlockGetPtr = nullptr;

void unlockBlock(MemoryBlockRequest *request) {
    if (request->block != nullptr)
        REALUnlockObject(request->block);
}

REALobjectStruct *newLargeBlock(std::int64_t size) {
    MemoryBlockRequest request{size, nullptr};
    // The guard may throw when its callback has made the block already.
    const HeldUntilReset<MemoryBlockRequest *, unlockBlock> answer{&request};
    ObjectReference exception{
        REALCallFunctionWithExceptionHandler(REALNewMemoryBlockWork, &request)};
    exception.reset(); // what the constructor raised becomes the report of the missing block
    return std::exchange(request.block, nullptr);
}

// From a scratch block; from the new one only if there is no other.
void loadDataPointerMethod(REALobjectStruct *block) {
    ObjectReference scratch{REALNewMemoryBlockOriginal(scratchSize)};
    myMemoryBlockGetPtr = reinterpret_cast<DataPointerMethod *>(
        REALLoadObjectMethod(scratch ? scratch.get() : block, "Operator_Convert() As Ptr"));
    scratch.reset();
}

// Borrowed from the block; null when the host gives none.
void *dataPointer(REALobjectStruct *block) {
    if (myMemoryBlockGetPtr == nullptr)
        loadDataPointerMethod(block);
    return myMemoryBlockGetPtr != nullptr ? myMemoryBlockGetPtr(block)
                                          : REALMemoryBlockGetPtr(block);
}

REALobjectStruct *newFilledBlock(const void *bytes, std::int64_t size) {
    ObjectReference block{size < firstLargeSize
                              ? REALNewMemoryBlockOriginal(static_cast<std::int32_t>(size))
                              : newLargeBlock(size)};
    if (!block)
        return nullptr;
    void *destination = dataPointer(block.get());
    if (destination == nullptr) {
        block.reset();
        return nullptr;
    }
    std::memcpy(destination, bytes, static_cast<std::size_t>(size));
    return block.handOver();
}

void raiseOutOfMemory(std::int64_t size) {
    std::array<char, 200> message{};
    std::snprintf(message.data(), message.size(),
                  "Failed to allocate a memoryblock with %lld bytes in size.",
                  static_cast<long long>(size));
    RaiseException("OutOfMemoryException", message.data());
}

} // namespace

REALobjectStruct *newMemoryBlock(const void *bytes, std::int64_t size) {
    try {
        if (REALobjectStruct *block = newFilledBlock(bytes, size))
            return block;
        raiseOutOfMemory(size);
    } catch (const std::bad_alloc &) {
        raiseOutOfMemory(size);
    }
    return nullptr;
}

void REALNewMemoryBlockWork(void *argument) {
    static constinit bool constructorLoaded = false;
    static constinit SizeConstructor *constructor = nullptr;

    auto &request = *static_cast<MemoryBlockRequest *>(argument);
    ObjectReference block{REALnewInstance("MemoryBlock")};
    if (!block)
        return;
    if (!constructorLoaded) {
        constructor = reinterpret_cast<SizeConstructor *>(
            REALLoadObjectMethod(block.get(), "Constructor(bytes as Integer)"));
        constructorLoaded = true;
    }
    if (constructor == nullptr) {
        block.reset();
        return;
    }
    constructor(block.get(), request.size);

    std::int64_t size = 0;
    if (!REALGetPropValueInteger(block.get(), "Size", &size))
        size = REALMemoryBlockGetSize(block.get());
    if (size >= request.size)
        request.block = block.handOver();
    else
        block.reset();
}
