#include "Sending.h"

#include <malloc/malloc.h>
#include <objc/message.h>

static id send(id object, SEL selector) {
    return reinterpret_cast<id (*)(id, SEL)>(objc_msgSend)(object, selector);
}

Sends sendsOf(host::ImageFormat /*format*/) {
    return sendsBy<send>;
}

IMP calledFor(id /*object*/, SEL /*selector*/) {
    return reinterpret_cast<IMP>(objc_msgSend);
}

std::ptrdiff_t allocatedBytes() {
    malloc_statistics_t allZones{};
    malloc_zone_statistics(nullptr, &allZones);
    return static_cast<std::ptrdiff_t>(allZones.size_in_use);
}
