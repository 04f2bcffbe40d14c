#pragma once

// The host's own classes and global methods.

#include "host/classes/ClassTable.h"
#include "host/classes/Inspect.h"
#include "host/memory/Heap.h"

#include <string_view>
#include <vector>

namespace host {

class Host;

inline constexpr std::string_view variantClassName = "Variant";
inline constexpr std::string_view arrayClassName = "Array";

/// Adds every class below to the host.
void addBuiltinClasses(Host &host);

void addVariantAndArray(ClassTable &classes);
void addDictionary(ClassTable &classes);
void addDate(ClassTable &classes);
void addMemoryBlock(ClassTable &classes);
void addFolderItem(ClassTable &classes);
void addExceptions(ClassTable &classes);

/// LenB and GetTrueFolderItem: called with their declared parameters alone.
std::vector<Method> globalMethods();
Method trueFolderItemMethod();

/// A method of a host class from its declaration and the function that plug-ins get.
Method nativeMethod(const char *declaration, void *function);

/// One reference, the plug-in's.
ObjectHandle makeVariant(Host &host, VariantContent content);
/// Makes the exception with a UTF-8 message and raises it.
void raiseNew(Host &host, std::string_view className, std::string_view message);

/// The payload of a live object of the class; null, after a violation, when it is something else.
template <typename Data>
Data *payloadOf(Heap &heap, ObjectHandle handle, std::string_view wanted) {
    Object *object = heap.check(handle);
    if (object == nullptr)
        return nullptr;
    auto *data = std::get_if<Data>(&object->payload);
    if (data == nullptr)
        heap.violation("got " + Heap::name(*object) + " where a live " + std::string(wanted) +
                       " is needed (" + object->history.text() + ")");
    return data;
}

/// The same for programs: anything else is a UsageError.
template <typename Data>
const Data &inspected(const Heap &heap, ObjectHandle handle, std::string_view wanted) {
    const Object *object = heap.find(handle);
    if (object != nullptr && object->life != Life::freed)
        if (const auto *data = std::get_if<Data>(&object->payload))
            return *data;
    throw UsageError(heap.name(handle) + " is no live " + std::string(wanted));
}

} // namespace host
