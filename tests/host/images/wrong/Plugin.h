#pragma once

// A small complete plug-in with one class, WrongZKT, that is right in everything but the one fault
// that the environment names.

#include "host/core/PluginRecords.h"

#include <cstdint>
#include <cstring>
#include <span>

using host::ObjectHandle;
using host::StringHandle;

/// Asked anew each time; a plug-in that is fast is no aim here.
template <typename Signature>
Signature *service(const char *name);

inline ObjectHandle newInstance(const char *className) {
    return service<ObjectHandle(const char *)>("PluginNewInstance")(className);
}
inline void lockObject(ObjectHandle object) {
    service<void(ObjectHandle)>("REALLockObject")(object);
}
inline void unlockObject(ObjectHandle object) {
    service<void(ObjectHandle)>("REALUnlockObject")(object);
}
inline void unlockString(StringHandle string) {
    service<void(StringHandle)>("REALUnlockString")(string);
}
inline StringHandle buildString(const char *text) {
    return service<StringHandle(const char *, std::int32_t)>("REALBuildString")(
        text, static_cast<std::int32_t>(std::strlen(text)));
}

/// The tables as they are registered after the fault.
struct Plugin {
    host::PluginClassRecord type;
    host::PluginPropertyRecord properties[2]; ///< "size" with accessors, the field "Handle"
    host::PluginMethodRecord methods[1];      ///< "act"
    host::PluginConstantRecord constants[1];  ///< "One = 1"

    /// Puts a method in the place of "act". A lambda without captures is a function too.
    template <typename Function>
    void setMethod(const char *declaration, Function function) {
        methods[0].declaration = declaration;
        methods[0].function = reinterpret_cast<void *>(+function);
    }
};

extern host::Resolver resolver;

template <typename Signature>
Signature *service(const char *name) {
    return reinterpret_cast<Signature *>(resolver(name));
}

/// Where the instance data begins.
inline char *dataOf(ObjectHandle object) {
    return reinterpret_cast<char *>(object) + host::objectHeaderSize;
}

/// Spoils one thing of the plug-in before it is registered.
struct Fault {
    const char *name;
    void (*apply)(Plugin &plugin);
};

std::span<const Fault> crashFaults();
std::span<const Fault> declarationFaults();
std::span<const Fault> exceptionFaults();
std::span<const Fault> memoryFaults();
std::span<const Fault> recordFaults();
std::span<const Fault> referenceFaults();
