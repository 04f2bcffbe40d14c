// Makes the command line and the environment UTF-8 before anything reads them: GNUstep gives up on
// other bytes while libraries start, long before main could catch that.

#include "host/zkthost/Surroundings.h"

#include <unicode/utf8.h>

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <sys/mman.h>
#include <sys/syscall.h>
#include <unistd.h>

namespace zkthost {

namespace {

char **original = nullptr;

/// In place: libraries have not started, so nothing can be allocated, and the process's own copy is
/// what the system shows of it.
void makeUtf8(char *text) {
    for (std::int32_t place = 0; text[place] != 0;) {
        const std::int32_t start = place;
        UChar32 character = 0;
        // NOLINTNEXTLINE(bugprone-inc-dec-in-conditions): ICU's macro
        U8_NEXT(text, place, -1, character);
        if (character < 0)
            std::memset(text + start, '?', static_cast<std::size_t>(place - start));
    }
}

/// The system's own mmap: a sanitizer's is not ready.
void *pages(std::size_t size) {
    const long address = syscall(SYS_mmap, nullptr, size, PROT_READ | PROT_WRITE,
                                 MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
    return address == -1 ? nullptr : reinterpret_cast<void *>(address);
}

void keepOriginal(int argc, char **argv) {
    const auto count = static_cast<std::size_t>(argc);
    std::size_t size = (count + 1) * sizeof(char *);
    for (std::size_t i = 0; i < count; ++i)
        size += std::strlen(argv[i]) + 1;
    auto *const list = static_cast<char **>(pages(size));
    if (list == nullptr)
        return;
    auto *next = reinterpret_cast<char *>(list + count + 1);
    for (std::size_t i = 0; i < count; ++i) {
        const std::size_t length = std::strlen(argv[i]) + 1;
        list[i] = static_cast<char *>(std::memcpy(next, argv[i], length));
        next += length;
    }
    original = list;
}

void prepare(int argc, char **argv, char **environment) {
    occupyStandardStreams();
    keepOriginal(argc, argv);
    for (; *argv != nullptr; ++argv)
        makeUtf8(*argv);
    for (; *environment != nullptr; ++environment)
        makeUtf8(*environment);
}

// Run by the dynamic linker before any library's own start.
[[gnu::section(".preinit_array"), gnu::used]] void (*const beforeLibraries)(int, char **,
                                                                            char **) = prepare;

} // namespace

const char *const *originalArguments() {
    return original;
}

std::filesystem::path programFile() {
    std::error_code error;
    return std::filesystem::read_symlink("/proc/self/exe", error);
}

} // namespace zkthost
