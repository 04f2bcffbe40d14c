#include "frame/PluginMain.h"

#include "frame/HostServices.h"
#include "frame/HostVersion.h"

#include <pthread.h>

namespace {

// Two services that are needed once, at start-up, and so have no slot.
using VersionService = double();
using InterfaceVersionService = void(std::int32_t);

template <class Service>
Service *find(const char *name) {
    return reinterpret_cast<Service *>(hostResolver(name));
}

std::int64_t interfaceVersionFor(double version) {
    // A NaN compares false with everything and gets the oldest.
    if (version >= 2013.04)
        return 13;
    if (version >= 2013.03)
        return 12;
    if (version >= 2013.0)
        return 11;
    if (version >= 2012.0)
        return 10;
    return 9;
}

void registerClass(PluginClassRecord &record) {
    record.dataSize = (record.dataSize + 15) / 16 * 16;
    record.version = static_cast<std::int32_t>(CurrentREALControlVersion);
    REALRegisterClass(&record);
}

} // namespace

// The only export. Called once by the host, before anything else of the plug-in.
extern "C" __attribute__((visibility("default"))) void REALPluginMain(HostResolver resolver);

void REALPluginMain(HostResolver resolver) {
    hostResolver = resolver;
    if (auto *tellVersion = find<VersionService>("REALGetRBVersion"))
        hostVersion = tellVersion();
    CurrentREALControlVersion = interfaceVersionFor(hostVersion);

    // Every host has this service: without it there is nobody to register with.
    find<InterfaceVersionService>("RegisterPluginVersion")(
        static_cast<std::int32_t>(CurrentREALControlVersion));

    // Whoever watches the system's calls sees it asked for here, in every plug-in of the family.
    static_cast<void>(pthread_self());

    for (PluginClassRecord *record : pluginClasses)
        registerClass(*record);
}
