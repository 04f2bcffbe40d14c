#include "host/classes/Builtins.h"
#include "host/classes/CallLine.h"
#include "host/classes/ClassTable.h"
#include "host/classes/Exceptions.h"
#include "host/classes/Instances.h"
#include "host/classes/NativeData.h"
#include "host/core/Core.h"
#include "host/memory/Heap.h"

#include <cstdlib>

namespace host {

namespace {

constexpr std::string_view className = "MemoryBlock";

/// Zero-filled; false when there is no such memory.
bool allocate(Core &core, MemoryData &data, std::uint64_t size) {
    if (size > core.options.memoryBlockLimit)
        return false;
    // calloc leaves large blocks to the kernel, which gives pages when they are touched.
    data.bytes.reset(static_cast<std::byte *>(std::calloc(size == 0 ? 1 : size, 1)), std::free);
    data.size = data.bytes == nullptr ? 0 : size;
    return data.bytes != nullptr;
}

void construct(Core &core, ObjectHandle handle, std::int64_t size) {
    auto *data = payloadOf<MemoryData>(core.heap, handle, className);
    if (data == nullptr)
        return;
    if (size < 0)
        raiseNew(core, "OutOfBoundsException",
                 "a memory block of " + std::to_string(size) + " bytes");
    else if (!allocate(core, *data, static_cast<std::uint64_t>(size)))
        raiseNew(core, "OutOfMemoryException",
                 "no memory for a block of " + std::to_string(size) + " bytes");
}

void *convertToPointer(Core &core, ObjectHandle handle) {
    return services::pointerOfMemoryBlock(core, handle);
}

/// The byte at the index; null, after an exception, past the end.
std::byte *byteAt(Core &core, ObjectHandle handle, std::int64_t index) {
    const auto *data = payloadOf<MemoryData>(core.heap, handle, className);
    if (data == nullptr)
        return nullptr;
    if (index >= 0 && std::cmp_less(index, data->size))
        return data->bytes.get() + index;
    raiseNew(core, "OutOfBoundsException",
             "byte " + std::to_string(index) + " of a memory block of " +
                 std::to_string(data->size) + " bytes");
    return nullptr;
}

std::int64_t getByte(Core &core, ObjectHandle handle, std::int64_t index) {
    const std::byte *byte = byteAt(core, handle, index);
    return byte == nullptr ? 0 : std::to_integer<std::int64_t>(*byte);
}

/// The lowest eight bits.
void setByte(Core &core, ObjectHandle handle, std::int64_t index, std::int64_t value) {
    if (std::byte *byte = byteAt(core, handle, index))
        *byte = static_cast<std::byte>(value);
}

Value size(const Object &object) {
    return static_cast<std::int64_t>(std::any_cast<const MemoryData &>(object.payload).size);
}

} // namespace

namespace services {

ObjectHandle newMemoryBlock(Core &core, std::int32_t size) {
    if (size < 0) {
        core.heap.violation("got the size " + std::to_string(size));
        return nullptr;
    }
    MemoryData data;
    if (!allocate(core, data, static_cast<std::uint64_t>(size)))
        return nullptr;
    Object *block = instantiate(core, *core.classes.findAny(className));
    block->payload = std::move(data);
    return block->handle();
}

void *pointerOfMemoryBlock(Core &core, ObjectHandle handle) {
    const auto *data = payloadOf<MemoryData>(core.heap, handle, className);
    return data == nullptr ? nullptr : data->bytes.get();
}

std::int64_t sizeOfMemoryBlock(Core &core, ObjectHandle handle) {
    const auto *data = payloadOf<MemoryData>(core.heap, handle, className);
    return data == nullptr ? 0 : static_cast<std::int64_t>(data->size);
}

} // namespace services

void addMemoryBlock(ClassTable &classes) {
    HostClass type{.name = std::string(className),
                   .makePayload = [] { return std::any(MemoryData{}); }};
    type.methods = {
        nativeMethod("Constructor(bytes As Integer)",
                     hostMethod<"MemoryBlock.Constructor", construct>()),
        nativeMethod("Byte(index As Integer, Assigns value As Integer)",
                     hostMethod<"MemoryBlock.Byte", setByte>()),
        nativeMethod("Byte(index As Integer) As Integer",
                     hostMethod<"MemoryBlock.Byte", getByte>()),
        nativeMethod("Operator_Convert() As Ptr",
                     hostMethod<"MemoryBlock.Operator_Convert", convertToPointer>()),
    };
    type.properties = {Property{.name = "Size", .type = parseType("Integer"), .read = size}};
    classes.add(std::move(type));
}

std::string memoryBlockBytes(ObjectHandle block) {
    const auto &data = inspected<MemoryData>(Core::current().heap, block, className);
    return {reinterpret_cast<const char *>(data.bytes.get()), data.size};
}

std::uint64_t memoryBlockSize(ObjectHandle block) {
    return inspected<MemoryData>(Core::current().heap, block, className).size;
}

} // namespace host
