#include "WatchedInstance.h"

#include <csignal>
#include <cstring>
#include <stdexcept>
#include <sys/mman.h>
#include <unistd.h>

namespace {

// Two pages: the watched part of the data begins with the second one.
struct Watch {
    std::byte *pages = nullptr;
    std::size_t pageSize = 0;
    std::byte *instance = nullptr;
    volatile std::sig_atomic_t written = 0;
    struct sigaction before = {};
};
Watch watch;

std::byte *watchedPage() {
    return watch.pages + watch.pageSize;
}

// Lets the write happen, once noted. Any other fault is for the handler before.
void onFault(int, siginfo_t *fault, void *) {
    const auto *address = static_cast<std::byte *>(fault->si_addr);
    if (address >= watchedPage() && address < watchedPage() + watch.pageSize && !watch.written) {
        watch.written = 1;
        mprotect(watchedPage(), watch.pageSize, PROT_READ | PROT_WRITE);
    } else {
        sigaction(SIGSEGV, &watch.before, nullptr);
    }
}

} // namespace

WatchedInstance::WatchedInstance(std::size_t firstWatched, const void *data, std::size_t size) {
    watch.pageSize = static_cast<std::size_t>(sysconf(_SC_PAGESIZE));
    void *const pages = mmap(nullptr, 2 * watch.pageSize, PROT_READ | PROT_WRITE,
                             MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
    if (pages == MAP_FAILED)
        throw std::runtime_error("no memory to watch");
    watch.pages = static_cast<std::byte *>(pages);
    watch.instance = watchedPage() - firstWatched - host::objectHeaderSize;
    watch.written = 0;
    std::memcpy(watchedPage() - firstWatched, data, size);
    mprotect(watchedPage(), watch.pageSize, PROT_READ);

    struct sigaction action = {};
    action.sa_sigaction = onFault;
    action.sa_flags = SA_SIGINFO;
    sigaction(SIGSEGV, &action, &watch.before);
}

WatchedInstance::~WatchedInstance() {
    sigaction(SIGSEGV, &watch.before, nullptr);
    munmap(watch.pages, 2 * watch.pageSize);
    watch.instance = nullptr;
}

host::ObjectHandle WatchedInstance::handle() const {
    return reinterpret_cast<host::ObjectHandle>(watch.instance);
}

bool WatchedInstance::wasWritten() const {
    return watch.written != 0;
}

host::ObjectHandle WatchedInstance::answer(const char *) {
    return reinterpret_cast<host::ObjectHandle>(watch.instance);
}
