#pragma once

// What the tests use to act as a plug-in: services called by name, and class records whose rows
// are functions of the test.

#include "host/GoogleTest.h"
#include "host/Host.h"
#include "host/core/PluginRecords.h"

#include <gmock/gmock.h>

#include <cstdint>
#include <string>
#include <vector>

/// The entry point of a service. Not counted or traced as a look-up.
template <typename Signature>
Signature *service(const char *name) {
    return reinterpret_cast<Signature *>(host::Host::current().services().entry(name));
}

inline host::ObjectHandle pluginNewInstance(const char *className) {
    return service<host::ObjectHandle(const char *)>("PluginNewInstance")(className);
}
inline void lockObject(host::ObjectHandle object) {
    service<void(host::ObjectHandle)>("REALLockObject")(object);
}
inline void unlockObject(host::ObjectHandle object) {
    service<void(host::ObjectHandle)>("REALUnlockObject")(object);
}
inline void lockString(host::StringHandle string) {
    service<void(host::StringHandle)>("REALLockString")(string);
}
inline void unlockString(host::StringHandle string) {
    service<void(host::StringHandle)>("REALUnlockString")(string);
}
inline host::StringHandle buildString(const std::string &bytes) {
    return service<host::StringHandle(const char *, std::int32_t)>("REALBuildString")(
        bytes.data(), static_cast<std::int32_t>(bytes.size()));
}
inline void raiseException(host::ObjectHandle exception) {
    service<void(host::ObjectHandle)>("RuntimeRaiseException")(exception);
}
inline void *loadObjectMethod(host::ObjectHandle object, const char *declaration) {
    return service<void *(host::ObjectHandle, const char *)>("REALLoadObjectMethod")(object,
                                                                                     declaration);
}
inline host::ObjectHandle integerVariant(std::int64_t number) {
    return service<host::ObjectHandle(std::int64_t)>("IntegerToVariant")(number);
}

/// Row builders. A function is any function pointer, or fieldAccess.
inline void *const fieldAccess = reinterpret_cast<void *>(std::intptr_t{-1});

template <typename Function>
void *pointer(Function *function) {
    return reinterpret_cast<void *>(function);
}

inline host::PluginPropertyRecord property(const char *name, const char *type, void *getter,
                                           void *setter = nullptr, std::int64_t parameter = 0) {
    return {.group = 0,
            .name = name,
            .type = type,
            .flags = 6,
            .getter = getter,
            .setter = setter,
            .parameter = parameter,
            .reserved = {}};
}

inline host::PluginPropertyRecord field(const char *name, const char *type, std::int64_t offset) {
    return property(name, type, fieldAccess, fieldAccess, offset);
}

inline host::PluginMethodRecord method(const char *declaration, void *function) {
    return {.function = function,
            .secondFunction = nullptr,
            .declaration = declaration,
            .flags = 4,
            .reserved = {}};
}

inline host::PluginConstantRecord constantRow(const char *declaration) {
    return {.declaration = declaration, .reserved = {}};
}

/// A class as a plug-in describes it. Must outlive the host that it is registered with.
struct FakeClass {
    explicit FakeClass(const char *name, std::uint64_t dataSize = 32) {
        record.version = 13;
        record.name = name;
        record.dataSize = dataSize;
        record.flags = 4;
    }
    FakeClass(const FakeClass &) = delete;
    FakeClass &operator=(const FakeClass &) = delete;

    /// Points the record at the tables.
    void fill() {
        record.properties = properties.empty() ? nullptr : properties.data();
        record.propertyCount = properties.size();
        record.methods = methods.empty() ? nullptr : methods.data();
        record.methodCount = methods.size();
        record.constants = constants.empty() ? nullptr : constants.data();
        record.constantCount = constants.size();
        record.sharedMethods = sharedMethods.empty() ? nullptr : sharedMethods.data();
        record.sharedMethodCount = sharedMethods.size();
    }
    /// Tells the host interface version 13 and registers the record as it stands.
    void registerRecord() {
        service<void(std::int32_t)>("RegisterPluginVersion")(13);
        service<void(host::PluginClassRecord *)>("PluginRegisterClass")(&record);
    }
    void registerClass() {
        fill();
        registerRecord();
    }

    host::PluginClassRecord record{};
    std::vector<host::PluginPropertyRecord> properties;
    std::vector<host::PluginMethodRecord> methods;
    std::vector<host::PluginConstantRecord> constants;
    std::vector<host::PluginMethodRecord> sharedMethods;
};
