#include "System.h"

#include <csignal>
#include <cstdio>
#include <iostream>
#include <sys/mman.h>
#include <sys/prctl.h>
#include <unistd.h>

// LeakSanitizer's, where the program has it.
// NOLINTNEXTLINE(bugprone-reserved-identifier)
extern "C" [[gnu::weak]] void __lsan_do_leak_check();

int anonymousFile(const char *name) {
    return memfd_create(name, MFD_CLOEXEC);
}

void endWithParent() {
    prctl(PR_SET_PDEATHSIG, SIGKILL);
}

void endNow(int status) {
    std::fflush(nullptr);
    std::cout.flush();
    if (__lsan_do_leak_check != nullptr)
        __lsan_do_leak_check(); // where it finds a leak it ends the process
    _exit(status);
}
