#include "frame/RaiseException.h"

#include "frame/HeldUntilReset.h"
#include "frame/HostText.h"

#include <cstring>

namespace {

// Building the message can fail, which is reported, with a message. Where that fails every time,
// the report this deep has none; any fewer failures in a row are all told.
constexpr int deepestReport = 16;
constinit int messagesUnderWay = 0;

void countDown(int *count) {
    --*count;
}

REALstringStruct *newMessage(const char *text) {
    if (text == nullptr || messagesUnderWay == deepestReport)
        return nullptr;
    ++messagesUnderWay;
    const HeldUntilReset<int *, countDown> counted{&messagesUnderWay};
    return REALBuildUnicodeString(text, static_cast<std::int64_t>(std::strlen(text)),
                                  HostEncoding::ascii);
}

} // namespace

void RaiseException(const char *className, const char *message, std::uint32_t, std::int64_t) {
    StringReference text{newMessage(message)};
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
