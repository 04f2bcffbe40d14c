#include "host/core/Cocoa.h"

namespace host {

/// Foundation finds the arguments by itself there.
void startFoundation(int /*argc*/, char ** /*argv*/, char ** /*environment*/) {}

const char *foundationName() {
    return "Apple";
}

} // namespace host
