#include "host/zkthost/LiveTrace.h"

#include "host/crash/CrashHandler.h"
#include "host/zkthost/Output.h"

#include <optional>

namespace zkthost {

namespace {

/// The call whose line is not yet at its end.
std::optional<std::size_t> open;

void closeLine() {
    if (open)
        printError("\n");
    open.reset();
}

// In a signal handler.
void closeLineOfCrash(crash::Writer &writer) {
    if (open)
        writer << "\n";
}

} // namespace

void traceLive(host::Trace &trace) {
    crash::setPrologue(closeLineOfCrash);
    trace.setListener({.stood =
                           [](const std::string &line) {
                               closeLine();
                               printError(line + '\n');
                           },
                       .begun =
                           [](std::size_t place, const std::string &line) {
                               closeLine();
                               printError(line);
                               open = place;
                           },
                       .ended =
                           [](std::size_t place, const std::string &line, std::string_view added) {
                               if (open == place) {
                                   printError(std::string(added) + '\n');
                                   open.reset();
                               } else if (!added.empty()) {
                                   closeLine();
                                   printError(line + '\n');
                               }
                           }});
}

} // namespace zkthost
