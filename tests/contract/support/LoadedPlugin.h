#pragma once

#include "ImageUnderTest.h"

#include <cstdint>
#include <utility>

/// What most tests start from: a host with the image under test loaded and an empty trace.
struct LoadedPlugin {
    explicit LoadedPlugin(host::HostOptions options = {},
                          const host::ImageOptions &imageOptions = {})
        : host(std::move(options)), image(host.loadPlugin(imageUnderTest(), imageOptions)) {
        host.clearTrace();
    }

    host::Host host;
    host::Image &image;
};

inline constexpr const char *processInfoClass = "NSProcessInfoZKT";

/// What "Handle" reads: the Cocoa object that an instance holds.
inline const void *handleOf(host::Host &host, host::ObjectHandle instance) {
    return reinterpret_cast<const void *>(host.get(instance, "Handle").integer());
}

inline void setHandle(host::Host &host, host::ObjectHandle instance, const void *cocoaObject) {
    host.set(instance, "Handle", host::Value(reinterpret_cast<std::int64_t>(cocoaObject)));
}

/// An instance that the plug-in has not bound, with an object of the test's own behind "Handle". At
/// the end the object is taken out again: the destructor would release what nobody retained.
class InstanceAround {
public:
    InstanceAround(host::Host &host, const void *cocoaObject)
        : host_(host), instance_(host.newInstance(processInfoClass)) {
        setHandle(host_, instance_, cocoaObject);
    }
    ~InstanceAround() { setHandle(host_, instance_, nullptr); }
    InstanceAround(const InstanceAround &) = delete;
    InstanceAround &operator=(const InstanceAround &) = delete;

    operator host::ObjectHandle() const { return instance_; }

private:
    host::Host &host_;
    host::ObjectRef instance_;
};
