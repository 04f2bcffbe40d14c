#pragma once

// What is said when the process crashes: who was at work, the signal and its address, and the way
// there through the loaded images, by function, file and line where they are known.
//
//   zkthost: NSProcessInfoZKT.hostName crashed: SIGSEGV at 0x8 (nothing is mapped there)
//     NSProcessInfoZKT.bundle+0x70b0: processinfo::hostName(REALobjectStruct*, long)
//     (Properties.mm:38) NSProcessInfoZKT.bundle is loaded at 0x7f5e3c031000

#include "host/crash/Writer.h"

#include <cstddef>
#include <filesystem>
#include <optional>

namespace crash {

struct Handling {
    const char *program; ///< begins the message; lives as long as the process
    /// Exit status; without one, the process dies of the signal as it would have.
    std::optional<int> status = {};
};

/// From now on a crash (SIGSEGV, SIGBUS, SIGILL, SIGFPE, SIGTRAP, SIGABRT) of this process is told
/// on standard error. Safe on a stack that has overflowed; a second crash meanwhile ends it.
void handleCrashes(const Handling &handling);

/// Memory that holds the code of a plug-in. The way to a crash is shown as far as the last of them.
void addImage(const std::filesystem::path &file, const void *base, std::size_t size);

/// Called in the signal handler: allocates nothing, takes no lock.
using Speaker = void (*)(Writer &);
/// Says who was at work, as the message's subject; says nothing when nobody was.
void setActor(Speaker speaker);
/// Ends what stands unfinished on standard error.
void setPrologue(Speaker speaker);
/// Adds lines at the message's end.
void setEpilogue(Speaker speaker);

} // namespace crash
