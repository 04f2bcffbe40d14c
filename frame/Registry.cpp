#include "frame/Registry.h"

#include "frame/HostServices.h"

namespace registry {

REALobjectStruct *wrapperOf(const void *cocoaObject) {
    if (instances == nullptr)
        return nullptr;
    auto *known = static_cast<REALobjectStruct *>(
        const_cast<void *>(CFDictionaryGetValue(instances, cocoaObject)));
    if (known != nullptr)
        REALLockObject(known);
    return known;
}

void enter(const void *cocoaObject, REALobjectStruct *instance) {
    if (instances != nullptr)
        CFDictionarySetValue(instances, cocoaObject, instance);
}

void remove(const void *cocoaObject) {
    if (instances != nullptr)
        CFDictionaryRemoveValue(instances, cocoaObject);
}

} // namespace registry
