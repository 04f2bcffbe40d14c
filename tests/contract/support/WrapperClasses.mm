#include "WrapperClasses.h"

#include "host/classes/ClassTable.h"
#include "host/core/Core.h"
#include "host/family/Siblings.h"

#include <CoreFoundation/CoreFoundation.h>
#import <Foundation/Foundation.h>

#include <cstring>
#include <span>

static void releaseWrapped(host::ObjectHandle instance) {
    const void *const object = wrappedBy(host::Host::current(), instance);
    if (object == nullptr)
        return;
    if (host::siblings::registered(object) == instance)
        CFDictionaryRemoveValue(static_cast<CFMutableDictionaryRef>(host::siblings::registry()),
                                object);
    [(id)object release];
}

void addWrapperClass(std::string name) {
    host::Core::current().classes.add(host::HostClass{
        .name = std::move(name), .dataSize = sizeof(const void *), .destructor = releaseWrapped});
}

void addCoreFoundationClass(std::string name, const CoreFoundationData &data) {
    const auto bytes = std::as_bytes(std::span(&data, 1));
    host::Core::current().classes.add(host::HostClass{.name = std::move(name),
                                                      .dataSize = bytes.size(),
                                                      .initialData = {bytes.begin(), bytes.end()},
                                                      .destructor = releaseWrapped});
}

const void *wrappedBy(const host::Host &host, host::ObjectHandle instance) {
    const void *object = nullptr;
    if (const void *const data = host.dataOf(instance))
        std::memcpy(static_cast<void *>(&object), data, sizeof object);
    return object;
}
