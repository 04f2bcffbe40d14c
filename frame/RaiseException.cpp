#include "frame/RaiseException.h"

#include "frame/HostServices.h"
#include "frame/HostText.h"

#include <cstring>

void RaiseException(const char *className, const char *message, std::uint32_t, std::int64_t) {
    REALstringStruct *text = nullptr;
    if (message != nullptr)
        text = REALBuildUnicodeString(message, static_cast<std::int64_t>(std::strlen(message)),
                                      HostEncoding::ascii);

    REALobjectStruct *exception = REALnewInstance(className);
    if (exception == nullptr)
        exception = REALnewInstance("RuntimeException");
    if (exception != nullptr) {
        REALSetPropValueString(exception, "Message", text);
        REALSetPropValueInteger(exception, "ErrorNumber", 0);
        REALRaiseException(exception);
        REALUnlockObject(exception);
    }

    if (text != nullptr)
        REALUnlockString(text);
}
