#include "frame/Registry.h"

namespace registry {

void enter(const void *cocoaObject, REALobjectStruct *instance) {
    if (instances != nullptr)
        CFDictionarySetValue(instances, cocoaObject, instance);
}

void remove(const void *cocoaObject) {
    if (instances != nullptr)
        CFDictionaryRemoveValue(instances, cocoaObject);
}

} // namespace registry
