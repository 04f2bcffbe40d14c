// Class records that the host cannot take, and services asked for what they do not do.

#include "Plugin.h"

namespace {

void unreadableDeclaration(Plugin &plugin) {
    plugin.methods[0].declaration = "act(text as";
}

void unknownType(Plugin &plugin) {
    plugin.methods[0].declaration = "act as Strin";
}

void methodWithoutFunction(Plugin &plugin) {
    plugin.methods[0].function = nullptr;
}

void unknownClassFlags(Plugin &plugin) {
    plugin.type.flags = 5;
}

void unknownPropertyFlags(Plugin &plugin) {
    plugin.properties[1].flags = 0;
}

void unknownMethodFlags(Plugin &plugin) {
    plugin.methods[0].flags = 0x104;
}

void oddDataSize(Plugin &plugin) {
    plugin.type.dataSize = 24;
}

void fieldPastData(Plugin &plugin) {
    plugin.properties[1].parameter = 9;
}

void tableWithoutCount(Plugin &plugin) {
    plugin.type.propertyCount = 0;
}

void otherVersion(Plugin &plugin) {
    plugin.type.version = 12;
}

void versionOfNoHost(Plugin &plugin) {
    service<void(std::int32_t)>("RegisterPluginVersion")(14);
    plugin.type.version = 14;
}

void registeredTwice(Plugin &plugin) {
    service<void(host::PluginClassRecord *)>("PluginRegisterClass")(&plugin.type);
    plugin.type.dataOffset = 0;
}

void nameOfAHostClass(Plugin &plugin) {
    plugin.type.name = "Date";
}

void namelessService(Plugin &) {
    resolver(nullptr);
}

void negativeLength(Plugin &plugin) {
    plugin.setMethod("act", [](ObjectHandle) {
        service<StringHandle(const char *, std::int32_t)>("REALBuildString")("text", -1);
    });
}

void unknownEncoding(Plugin &plugin) {
    plugin.setMethod("act(text as String)", [](ObjectHandle, StringHandle text) {
        service<void(StringHandle, std::uint32_t)>("REALSetStringEncoding")(text, 0x12345);
    });
}

void unreadableLookup(Plugin &plugin) {
    plugin.setMethod("act", [](ObjectHandle self) {
        service<void *(ObjectHandle, const char *)>("REALLoadObjectMethod")(self, "act(");
    });
}

constexpr Fault faults[] = {
    {"unreadableDeclaration", unreadableDeclaration},
    {"unknownType", unknownType},
    {"methodWithoutFunction", methodWithoutFunction},
    {"unknownClassFlags", unknownClassFlags},
    {"unknownPropertyFlags", unknownPropertyFlags},
    {"unknownMethodFlags", unknownMethodFlags},
    {"oddDataSize", oddDataSize},
    {"fieldPastData", fieldPastData},
    {"tableWithoutCount", tableWithoutCount},
    {"otherVersion", otherVersion},
    {"versionOfNoHost", versionOfNoHost},
    {"registeredTwice", registeredTwice},
    {"nameOfAHostClass", nameOfAHostClass},
    {"namelessService", namelessService},
    {"negativeLength", negativeLength},
    {"unknownEncoding", unknownEncoding},
    {"unreadableLookup", unreadableLookup},
};

} // namespace

std::span<const Fault> recordFaults() {
    return faults;
}
