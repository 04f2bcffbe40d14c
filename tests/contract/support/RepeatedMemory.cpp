#include "RepeatedMemory.h"

#include "System.h"

#include <sys/mman.h>
#include <unistd.h>

#include <cerrno>
#include <system_error>

namespace {

template <class Result>
Result checked(Result result, Result failure, const char *what) {
    if (result == failure)
        throw std::system_error(errno, std::generic_category(), what);
    return result;
}

} // namespace

RepeatedMemory::RepeatedMemory(std::size_t size)
    : size_((size + chunkSize - 1) / chunkSize * chunkSize) {
    constexpr int protection = PROT_READ | PROT_WRITE;
    begin_ = static_cast<unsigned char *>(checked(
        mmap(nullptr, size_, protection, MAP_PRIVATE | MAP_ANONYMOUS | MAP_NORESERVE, -1, 0),
        MAP_FAILED, "mmap"));
    const int chunk = checked(anonymousFile("chunk"), -1, "a file for the chunk");
    checked(ftruncate(chunk, chunkSize), -1, "ftruncate");
    for (std::size_t at = 0; at + chunkSize < size_; at += chunkSize)
        checked(mmap(begin_ + at, chunkSize, protection, MAP_SHARED | MAP_FIXED, chunk, 0),
                MAP_FAILED, "mmap");
    close(chunk);
}

RepeatedMemory::~RepeatedMemory() {
    munmap(begin_, size_);
}
