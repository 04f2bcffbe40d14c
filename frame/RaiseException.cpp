#include "frame/RaiseException.h"

#include "frame/HeldUntilReset.h"
#include "frame/HostText.h"

#include <cstring>

void RaiseException(const char *className, const char *message, std::uint32_t, std::int64_t) {
    StringReference text{
        message != nullptr
            ? REALBuildUnicodeString(message, static_cast<std::int64_t>(std::strlen(message)),
                                     HostEncoding::ascii)
            : nullptr};

    REALobjectStruct *made = REALnewInstance(className);
    if (made == nullptr)
        made = REALnewInstance("RuntimeException");
    ObjectReference exception{made};
    if (exception) {
        REALSetPropValueString(exception.get(), "Message", text.get());
        REALSetPropValueInteger(exception.get(), "ErrorNumber", 0);
        REALRaiseException(exception.get());
        exception.reset();
    }
    text.reset();
}
