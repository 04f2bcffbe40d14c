#include "processinfo/Handlers.h"

#include "frame/CocoaTrap.h"
#include "processinfo/WrappedObject.h"

namespace processinfo {

std::int64_t argumentsCount(REALobjectStruct *instance, std::intptr_t) {
    NSProcessInfo *wrapped = wrappedObject(instance);
    if (wrapped == nil)
        return 0;
    return trapCocoaExceptions<std::int64_t>(
        0, [&] { return static_cast<std::int64_t>([[wrapped arguments] count]); });
}

REALstringStruct *argument(REALobjectStruct *, std::int64_t) {
    return nullptr;
}

REALobjectStruct *arguments(REALobjectStruct *) {
    return nullptr;
}

} // namespace processinfo
