#pragma once

#include "host/Host.h"

#include <cstdint>
#include <string>

// Classes of the current host, as other plug-ins of the family register them. An instance that dies
// gives back what its data holds, and removes the registry's entry for it.

/// The data of a Core Foundation wrapper.
struct CoreFoundationData {
    const void *object = nullptr;
    std::uint64_t untouched = 0x5A5A5A5AA5A5A5A5;
    std::uint64_t tag = 0x52424346;
};

/// Data of 8 bytes: the Cocoa object, retained.
void addWrapperClass(std::string name);
/// Each instance starts with this data.
void addCoreFoundationClass(std::string name, const CoreFoundationData &data = {});

/// The first field of an instance's data, borrowed.
const void *wrappedBy(const host::Host &host, host::ObjectHandle instance);
