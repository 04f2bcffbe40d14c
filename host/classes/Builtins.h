#pragma once

// The host's own classes and global methods, and the services that belong to one of these classes.

#include "host/classes/ClassTable.h"
#include "host/classes/Exceptions.h"
#include "host/classes/Inspect.h"
#include "host/classes/NativeData.h"
#include "host/core/Core.h"
#include "host/core/UsageError.h"
#include "host/memory/Heap.h"

#include <string_view>
#include <vector>

namespace host {

inline constexpr std::string_view variantClassName = "Variant";
inline constexpr std::string_view arrayClassName = "Array";

/// Adds every class below, and the global methods.
void addBuiltinClasses(ClassTable &classes);

void addVariantAndArray(ClassTable &classes);
void addDictionary(ClassTable &classes);
void addDate(ClassTable &classes);
void addMemoryBlock(ClassTable &classes);
void addFolderItem(ClassTable &classes);
void addExceptions(ClassTable &classes);

Method trueFolderItemMethod();

namespace services {

ObjectHandle createArray(Core &core, std::int32_t elementType, std::int32_t upperBound);
void *stringArrayInsertProcedure(Core &core, ObjectHandle array);
void *objectArrayInsertProcedure(Core &core, ObjectHandle array);

ObjectHandle newMemoryBlock(Core &core, std::int32_t size);
void *pointerOfMemoryBlock(Core &core, ObjectHandle block);
std::int64_t sizeOfMemoryBlock(Core &core, ObjectHandle block);
ObjectHandle folderItemFromParent(Core &core, const void *parentReference, const void *name);

} // namespace services

/// A method of a host class from its declaration and the function that plug-ins get.
Method nativeMethod(const char *declaration, void *function);

/// One reference, the plug-in's.
ObjectHandle makeVariant(Core &core, VariantContent content);

/// The payload of a live object of the class; null, after a violation, when it is something else.
template <typename Data>
Data *payloadOf(Heap &heap, ObjectHandle handle, std::string_view wanted) {
    Object *object = heap.check(handle);
    if (object == nullptr)
        return nullptr;
    auto *data = std::any_cast<Data>(&object->payload);
    if (data == nullptr)
        heap.violation("got " + Heap::name(*object) + " where a live " + std::string(wanted) +
                       " is needed (" + object->history.text() + ")");
    return data;
}

/// The same for programs: anything else is a UsageError.
template <typename Data>
const Data &inspected(const Heap &heap, ObjectHandle handle, std::string_view wanted) {
    if (const Object *object = heap.findLive(handle))
        if (const auto *data = std::any_cast<Data>(&object->payload))
            return *data;
    throw UsageError(heap.name(handle) + " is no live " + std::string(wanted));
}

} // namespace host
