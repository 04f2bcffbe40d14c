#include "Sending.h"

#include <malloc.h>
#include <objc/message.h>

extern "C" void machoMessageSend(); // the loader's objc_msgSend

static id sendFromMachO(id object, SEL selector) {
    return reinterpret_cast<id (*)(id, SEL)>(machoMessageSend)(object, selector);
}

static id sendFromElf(id object, SEL selector) {
    return reinterpret_cast<id (*)(id, SEL)>(objc_msg_lookup(object, selector))(object, selector);
}

Sends sendsOf(host::ImageFormat format) {
    return format == host::ImageFormat::machO ? sendsBy<sendFromMachO> : sendsBy<sendFromElf>;
}

IMP calledFor(id object, SEL selector) {
    return objc_msg_lookup(object, selector);
}

std::ptrdiff_t allocatedBytes() {
    return static_cast<std::ptrdiff_t>(mallinfo2().uordblks);
}
