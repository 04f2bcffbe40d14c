#include "frame/HeldUntilReset.h"

#include "frame/CocoaBarrier.h"

void callQuietly(void (*function)(const void *), const void *argument) noexcept {
    try {
        throwsCocoaObject(function, argument);
    } catch (...) { // NOLINT(bugprone-empty-catch): another exception is on its way
    }
}
