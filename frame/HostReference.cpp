#include "frame/HostReference.h"

namespace {

template <class Handle>
void unlockQuietly(Handle *handle) noexcept {
    try {
        unlock(handle);
    } catch (...) { // NOLINT(bugprone-empty-catch): another exception is on its way
    }
}

} // namespace

void unlockWhileUnwinding(REALobjectStruct *object) noexcept {
    unlockQuietly(object);
}

void unlockWhileUnwinding(REALstringStruct *string) noexcept {
    unlockQuietly(string);
}
