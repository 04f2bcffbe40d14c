#include "FuzzedPlugin.h"

#include "host/core/Cocoa.h"

#include <cstdio>
#include <cstdlib>

extern "C" int LLVMFuzzerInitialize(int *count, char ***arguments);

int LLVMFuzzerInitialize(int *count, char ***arguments) {
    host::startFoundation(*count, *arguments, environ);
    plugin();
    return 0;
}

FuzzedPlugin::FuzzedPlugin() : image(host.loadPlugin(PLUGIN_IMAGE)) {}

void *FuzzedPlugin::find(std::string_view name) {
    void *const found = image.symbolDemangled(name);
    require(found != nullptr, "the image has no " + std::string(name));
    return found;
}

void FuzzedPlugin::requireCleanHost(std::size_t liveObjects) {
    for (const std::string &violation : host.violations())
        require(false, violation);
    const host::Account account = host.account();
    require(account.liveObjects == liveObjects && account.liveStrings == 0,
            "left alive: " + describe(account));
}

FuzzedPlugin &plugin() {
    // Never destroyed: leaving the process ends it.
    static auto *const instance = new FuzzedPlugin;
    return *instance;
}

void require(bool condition, const std::string &message) {
    if (condition)
        return;
    std::fprintf(stderr, "\n%s\n", message.c_str());
    std::abort();
}
