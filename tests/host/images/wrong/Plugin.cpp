#include "Plugin.h"

#include <cstdlib>
#include <iterator>

host::Resolver resolver = nullptr;

namespace {

constexpr std::int32_t interfaceVersion = 13;

std::int64_t size(ObjectHandle, std::int64_t) {
    return 16;
}
void setSize(ObjectHandle, std::int64_t, std::int64_t) {}

void *const fieldAccess = reinterpret_cast<void *>(std::intptr_t{-1});

Plugin plugin{};

void describe() {
    plugin.properties[0] = {.group = 0,
                            .name = "size",
                            .type = "Integer",
                            .flags = 6,
                            .getter = reinterpret_cast<void *>(size),
                            .setter = reinterpret_cast<void *>(setSize),
                            .parameter = 0,
                            .reserved = {}};
    plugin.properties[1] = {.group = 0,
                            .name = "Handle",
                            .type = "Integer",
                            .flags = 6,
                            .getter = fieldAccess,
                            .setter = fieldAccess,
                            .parameter = 0,
                            .reserved = {}};
    plugin.methods[0].flags = 4;
    plugin.setMethod("act", [](ObjectHandle) {});
    plugin.constants[0].declaration = "One = 1";
    plugin.type.version = interfaceVersion;
    plugin.type.name = "WrongZKT";
    plugin.type.dataSize = 16;
    plugin.type.flags = 4;
    plugin.type.properties = plugin.properties;
    plugin.type.propertyCount = std::size(plugin.properties);
    plugin.type.methods = plugin.methods;
    plugin.type.methodCount = std::size(plugin.methods);
    plugin.type.constants = plugin.constants;
    plugin.type.constantCount = std::size(plugin.constants);
}

void spoil() {
    const char *const wanted = std::getenv("WRONG_PLUGIN_FAULT");
    for (const auto faults : {crashFaults(), declarationFaults(), exceptionFaults(), memoryFaults(),
                              recordFaults(), referenceFaults()})
        for (const Fault &fault : faults)
            if (wanted != nullptr && std::strcmp(fault.name, wanted) == 0)
                return fault.apply(plugin);
    std::abort(); // a test that names no fault shows nothing
}

} // namespace

extern "C" __attribute__((visibility("default"))) void REALPluginMain(host::Resolver its) {
    resolver = its;
    service<void(std::int32_t)>("RegisterPluginVersion")(interfaceVersion);
    describe();
    spoil();
    service<void(host::PluginClassRecord *)>("PluginRegisterClass")(&plugin.type);
}
