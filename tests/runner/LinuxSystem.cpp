#include "System.h"

#include <csignal>
#include <sys/mman.h>
#include <sys/prctl.h>

int anonymousFile(const char *name) {
    return memfd_create(name, MFD_CLOEXEC);
}

void endWithParent() {
    prctl(PR_SET_PDEATHSIG, SIGKILL);
}
