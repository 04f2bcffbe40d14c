#pragma once

#include "LoadedPlugin.h"
#include "WrapperClasses.h"

#include "host/family/Siblings.h"

#import <Foundation/Foundation.h>

#include <CoreFoundation/CoreFoundation.h>

#include <string>
#include <utility>
#include <vector>

/// A host with the image under test loaded, the family's registry found, and an empty trace.
struct DispatchScene : LoadedPlugin {
    explicit DispatchScene(host::HostOptions options = {}) : LoadedPlugin(options) {
        // Finds the registry, and touches no instance.
        host.registeredRecords().front()->constructor(nullptr);
        host.clearTrace();
    }

    using Conversion = host::ObjectHandle(NSObject *);
    using Walk = host::ObjectHandle(NSObject *, Class);
    Conversion *const convertRaw =
        imageFunction<Conversion>(image, "NewVariantFromNSObject(NSObject*)");
    Walk *const walkRaw = imageFunction<Walk>(image, "NewNSObjectZKT(NSObject*, objc_class*)");

    host::ObjectRef convert(id object) { return host::ObjectRef::adopt(convertRaw(object)); }
    host::ObjectRef walk(id object, Class required) {
        return host::ObjectRef::adopt(walkRaw(object, required));
    }

    void know(std::string hostClass) { addWrapperClass(std::move(hostClass)); }
    void knowCoreFoundation(std::string hostClass, const CoreFoundationData &data = {}) {
        addCoreFoundationClass(std::move(hostClass), data);
    }
    /// The trace's requests for instances.
    [[nodiscard]] std::vector<std::string> requests() const {
        std::vector<std::string> lines = host.calls();
        std::erase_if(
            lines, [](const std::string &line) { return !line.starts_with("PluginNewInstance("); });
        return lines;
    }
    [[nodiscard]] const void *wrapped(host::ObjectHandle instance) const {
        return wrappedBy(host, instance);
    }
};

/// Enters an object into the registry while this lives.
class RegistryEntry {
public:
    RegistryEntry(const void *object, const void *instance) : object_(object) {
        CFDictionarySetValue(registry(), object, instance);
    }
    ~RegistryEntry() { CFDictionaryRemoveValue(registry(), object_); }
    RegistryEntry(const RegistryEntry &) = delete;
    RegistryEntry &operator=(const RegistryEntry &) = delete;

private:
    static CFMutableDictionaryRef registry() {
        return static_cast<CFMutableDictionaryRef>(host::siblings::registry());
    }
    const void *object_;
};

/// The trace's line of a request for an instance. Without an instance the answer is nil.
inline std::string asks(const std::string &hostClass, int number = 0) {
    return "PluginNewInstance(\"" + hostClass +
           "\") = " + (number == 0 ? std::string("nil") : hostClass + '#' + std::to_string(number));
}
