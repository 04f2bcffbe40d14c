// On a Mac the system writes a report of every crash, with the way there; nothing is added to it.

#include "host/crash/CrashHandler.h"

namespace crash {

void handleCrashes(const Handling & /*handling*/) {}
void addImage(const std::filesystem::path & /*file*/, const void * /*base*/, std::size_t /*size*/) {
}
void setActor(Speaker /*speaker*/) {}
void setPrologue(Speaker /*speaker*/) {}
void setEpilogue(Speaker /*speaker*/) {}

} // namespace crash
