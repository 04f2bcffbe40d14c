#pragma once

#include "frame/HostTypes.h"

#include <array>
#include <cstddef>
#include <cstdint>

// The records that describe a class to the host. They are exchanged as memory: 64-bit
// little-endian, eight bytes a slot. The host keeps pointers into them, and into the texts they
// name, for as long as the library is loaded; it writes only PluginClassRecord::dataOffset.

/// The functions that a record can name, by the shape in which the host calls them. One slot each.
/// An instance is passed first; accessors get their row's parameter behind it.
union PropertyGetter {
    std::intptr_t marker;
    std::int64_t (*integer)(REALobjectStruct *, std::intptr_t);
    std::uint64_t (*unsignedInteger)(REALobjectStruct *, std::intptr_t);
    double (*floatingPoint)(REALobjectStruct *, std::intptr_t);
    std::int32_t (*boolean)(REALobjectStruct *, std::intptr_t);
    REALstringStruct *(*string)(REALobjectStruct *, std::intptr_t);
    REALobjectStruct *(*object)(REALobjectStruct *, std::intptr_t);

    constexpr PropertyGetter(std::intptr_t value) : marker(value) {}
    constexpr PropertyGetter(decltype(integer) function) : integer(function) {}
    constexpr PropertyGetter(decltype(unsignedInteger) function) : unsignedInteger(function) {}
    constexpr PropertyGetter(decltype(floatingPoint) function) : floatingPoint(function) {}
    constexpr PropertyGetter(decltype(boolean) function) : boolean(function) {}
    constexpr PropertyGetter(decltype(string) function) : string(function) {}
    constexpr PropertyGetter(decltype(object) function) : object(function) {}
};

union PropertySetter {
    std::intptr_t marker = 0;
    void (*boolean)(REALobjectStruct *, std::intptr_t, std::int8_t);
    void (*string)(REALobjectStruct *, std::intptr_t, REALstringStruct *);

    constexpr PropertySetter() {}
    constexpr PropertySetter(std::intptr_t value) : marker(value) {}
    constexpr PropertySetter(decltype(boolean) function) : boolean(function) {}
    constexpr PropertySetter(decltype(string) function) : string(function) {}
};

union MethodFunction {
    std::intptr_t none = 0;
    void (*procedure)(REALobjectStruct *);
    void (*takingString)(REALobjectStruct *, REALstringStruct *);
    void (*takingObject)(REALobjectStruct *, REALobjectStruct *);
    REALobjectStruct *(*object)(REALobjectStruct *);
    REALobjectStruct *(*objectFromOptions)(REALobjectStruct *, std::int64_t, REALstringStruct *);
    REALstringStruct *(*stringAtIndex)(REALobjectStruct *, std::int64_t);
    REALobjectStruct *(*sharedObject)();
    REALstringStruct *(*sharedString)();

    constexpr MethodFunction() {}
    constexpr MethodFunction(decltype(procedure) function) : procedure(function) {}
    constexpr MethodFunction(decltype(takingString) function) : takingString(function) {}
    constexpr MethodFunction(decltype(takingObject) function) : takingObject(function) {}
    constexpr MethodFunction(decltype(object) function) : object(function) {}
    constexpr MethodFunction(decltype(objectFromOptions) function) : objectFromOptions(function) {}
    constexpr MethodFunction(decltype(stringAtIndex) function) : stringAtIndex(function) {}
    constexpr MethodFunction(decltype(sharedObject) function) : sharedObject(function) {}
    constexpr MethodFunction(decltype(sharedString) function) : sharedString(function) {}
};

struct PluginPropertyRecord {
    const char *group = nullptr;
    const char *name = nullptr;
    const char *type = nullptr; // as the host language names it
    std::int64_t flags = 6;
    PropertyGetter getter;
    PropertySetter setter{};    // zero: read-only
    std::int64_t parameter = 0; // of a field: its offset
    std::array<std::int64_t, 5> unused{};
};

struct PluginMethodRecord {
    MethodFunction function{};
    MethodFunction secondFunction{};
    const char *declaration = nullptr; // without parentheses: no parameters
    std::int64_t flags{};
    std::array<std::int64_t, 2> unused{};
};

struct PluginConstantRecord {
    const char *declaration = nullptr; // "Name = value" in the host language
    std::array<std::int64_t, 4> unused{};
};

struct PluginClassRecord {
    std::int32_t version = 13; // the interface version; stamped just before registration
    const char *name = nullptr;
    const char *superclassName = nullptr;
    std::int64_t dataSize = 0;   // bytes of an instance's data
    std::int64_t dataOffset = 0; // written by the host: where in an instance its data begins
    void (*constructor)(REALobjectStruct *) = nullptr;
    void (*destructor)(REALobjectStruct *) = nullptr;
    const PluginPropertyRecord *properties = nullptr;
    std::int64_t propertyCount = 0;
    const PluginMethodRecord *methods = nullptr;
    std::int64_t methodCount = 0;
    const void *events = nullptr;
    std::int64_t eventCount = 0;
    const void *eventInstances = nullptr;
    std::int64_t eventInstanceCount = 0;
    const char *interfaces = nullptr;
    const void *bindings = nullptr;
    std::int64_t bindingCount = 0;
    const PluginConstantRecord *constants = nullptr;
    std::int64_t constantCount = 0;
    std::int64_t flags = 4;
    const void *sharedProperties = nullptr;
    std::int64_t sharedPropertyCount = 0;
    const PluginMethodRecord *sharedMethods = nullptr;
    std::int64_t sharedMethodCount = 0;
    const void *delegates = nullptr;
    std::int64_t delegateCount = 0;
    const void *enumerations = nullptr;
    std::int64_t enumerationCount = 0;
};

// The host language's types: what getters and setters of a property exchange, and their names.
namespace hostType {

template <class ReadValue, class WrittenValue = ReadValue>
struct HostType {
    const char *name;
};

inline constexpr HostType<std::int64_t> Integer{"Integer"};
inline constexpr HostType<std::uint64_t> UInt64{"UInt64"};
inline constexpr HostType<double> Double{"Double"};
inline constexpr HostType<std::int32_t, std::int8_t> Boolean{"Boolean"};
inline constexpr HostType<REALstringStruct *> String{"String"};
inline constexpr HostType<REALobjectStruct *> Dictionary{"Dictionary"};

} // namespace hostType

// The rows of a class's tables. An accessor of another type than its property's does not compile.

template <class Read, class Written>
consteval PluginPropertyRecord property(const char *name, hostType::HostType<Read, Written> type,
                                        Read (*getter)(REALobjectStruct *, std::intptr_t)) {
    return {.name = name, .type = type.name, .getter = getter};
}

template <class Read, class Written>
consteval PluginPropertyRecord property(const char *name, hostType::HostType<Read, Written> type,
                                        Read (*getter)(REALobjectStruct *, std::intptr_t),
                                        void (*setter)(REALobjectStruct *, std::intptr_t,
                                                       Written)) {
    return {.name = name, .type = type.name, .getter = getter, .setter = setter};
}

/// Without functions: the host itself reads and writes the field at that offset, in bytes, of the
/// instance data, in the width of the type.
template <class Read, class Written>
consteval PluginPropertyRecord field(const char *name, hostType::HostType<Read, Written> type,
                                     std::size_t offset) {
    constexpr std::intptr_t hostAccessesField = -1;
    return {.name = name,
            .type = type.name,
            .getter = hostAccessesField,
            .setter = hostAccessesField,
            .parameter = static_cast<std::int64_t>(offset)};
}

consteval PluginMethodRecord method(const char *declaration, MethodFunction function,
                                    std::int64_t flags = 4) {
    return {.function = function, .declaration = declaration, .flags = flags};
}

/// Nothing but slots of eight bytes, the first with padding, so that the sizes pin every offset.
static_assert(sizeof(void *) == 8 && offsetof(PluginClassRecord, name) == 8);
static_assert(sizeof(PluginPropertyRecord) == 96);
static_assert(sizeof(PluginMethodRecord) == 48);
static_assert(sizeof(PluginConstantRecord) == 40);
static_assert(sizeof(PluginClassRecord) == 232);
