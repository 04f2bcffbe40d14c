#pragma once

// What a plug-in and the host exchange in memory: handles, the resolver and the class records.
// 64-bit little-endian; the sizes and offsets are the interface and are pinned below.

#include <cstddef>
#include <cstdint>

/// A host object; also a host Variant and a host array. Null is nil.
struct REALobjectStruct;
/// A host string. Null is nil, which programs see as the empty string.
struct REALstringStruct;

namespace host {

using ObjectHandle = REALobjectStruct *;
using StringHandle = REALstringStruct *;

/// From the name of a service to its entry point; null when the host has no such service.
using Resolver = void *(*)(const char *serviceName);
/// The only function that a plug-in exports, "REALPluginMain".
using EntryPoint = void (*)(Resolver);

/// Every host object starts with a header of this size; class data follows it.
inline constexpr std::size_t objectHeaderSize = 48;

struct PluginPropertyRecord {
    std::uint64_t group;
    const char *name;
    const char *type;
    std::int64_t flags;
    void *getter; ///< accessorIsField: the host reads the field itself
    void *setter; ///< null: read-only
    std::int64_t parameter;
    std::uint64_t reserved[5];
};

struct PluginMethodRecord {
    void *function;
    void *secondFunction;
    const char *declaration;
    std::int64_t flags;
    std::uint64_t reserved[2];
};

struct PluginConstantRecord {
    const char *declaration;
    std::uint64_t reserved[4];
};

struct PluginClassRecord {
    std::int32_t version;
    std::uint32_t padding;
    const char *name;
    const char *superclass;
    std::uint64_t dataSize;
    std::uint64_t dataOffset; ///< written by the host when the class is registered
    void (*constructor)(ObjectHandle);
    void (*destructor)(ObjectHandle);
    const PluginPropertyRecord *properties;
    std::uint64_t propertyCount;
    const PluginMethodRecord *methods;
    std::uint64_t methodCount;
    const void *events;
    std::uint64_t eventCount;
    const void *eventInstances;
    std::uint64_t eventInstanceCount;
    const void *interfaces;
    const void *bindings;
    std::uint64_t bindingCount;
    const PluginConstantRecord *constants;
    std::uint64_t constantCount;
    std::uint64_t flags;
    const void *sharedProperties;
    std::uint64_t sharedPropertyCount;
    const PluginMethodRecord *sharedMethods;
    std::uint64_t sharedMethodCount;
    const void *delegates;
    std::uint64_t delegateCount;
    const void *enumerations;
    std::uint64_t enumerationCount;
};

/// A getter and a setter of all ones: the property is a field of the instance data.
inline bool accessorIsField(const void *accessor) {
    return reinterpret_cast<std::intptr_t>(accessor) == -1;
}

static_assert(sizeof(void *) == 8);
static_assert(sizeof(PluginPropertyRecord) == 96);
static_assert(offsetof(PluginPropertyRecord, getter) == 32);
static_assert(offsetof(PluginPropertyRecord, parameter) == 48);
static_assert(sizeof(PluginMethodRecord) == 48);
static_assert(offsetof(PluginMethodRecord, declaration) == 16);
static_assert(sizeof(PluginConstantRecord) == 40);
static_assert(sizeof(PluginClassRecord) == 232);
static_assert(offsetof(PluginClassRecord, name) == 8);
static_assert(offsetof(PluginClassRecord, dataOffset) == 32);
static_assert(offsetof(PluginClassRecord, properties) == 56);
static_assert(offsetof(PluginClassRecord, methods) == 72);
static_assert(offsetof(PluginClassRecord, constants) == 144);
static_assert(offsetof(PluginClassRecord, flags) == 160);
static_assert(offsetof(PluginClassRecord, sharedMethods) == 184);
static_assert(offsetof(PluginClassRecord, enumerationCount) == 224);

} // namespace host
