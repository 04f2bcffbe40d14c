#include "macos/loader/Mapping.h"

#include "macos/loader/Messages.h"

#include <cerrno>
#include <string>
#include <system_error>

#include <sys/mman.h>
#include <unistd.h>

namespace macho {
namespace {

[[noreturn]] void failSystem(const ImagePlan &plan, const std::string &what) {
    Reporter(plan.source).fail(what, std::system_category().message(errno));
}

} // namespace

Mapping::Mapping(const ImagePlan &plan) : size_(plan.size) {
    const auto pageSize = static_cast<std::uint64_t>(sysconf(_SC_PAGESIZE));
    if (plan.pageSize % pageSize != 0)
        Reporter(plan.source)
            .fail("its segments begin at multiples of " + std::to_string(plan.pageSize) +
                  " bytes, but this system's pages have " + std::to_string(pageSize));
    // Gaps between segments stay inaccessible.
    void *memory =
        mmap(nullptr, size_, PROT_NONE, MAP_PRIVATE | MAP_ANONYMOUS | MAP_NORESERVE, -1, 0);
    if (memory == MAP_FAILED)
        failSystem(plan, "no room for " + std::to_string(size_) + " bytes of memory");
    memory_ = static_cast<std::byte *>(memory);
    try {
        for (const auto &segment : plan.segments) {
            setAccess(plan, segment, PROT_READ | PROT_WRITE);
            if (!segment.content.empty())
                std::memcpy(memory_ + segment.offset, segment.content.data(),
                            segment.content.size());
        }
    } catch (...) {
        munmap(memory_, size_);
        throw;
    }
}

Mapping::~Mapping() {
    munmap(memory_, size_);
}

void Mapping::rebase(std::span<const Rebase> rebases) {
    for (const auto &[slot, target] : rebases)
        setPointer(slot, base() + target);
}

void Mapping::protect(const ImagePlan &plan) {
    for (const auto &segment : plan.segments) {
        // What was written as data is to be fetched as instructions.
        auto *const begin = reinterpret_cast<char *>(memory_) + segment.offset;
        if (segment.executable)
            __builtin___clear_cache(begin, begin + segment.content.size());
        const int more = segment.writable ? PROT_WRITE : segment.executable ? PROT_EXEC : PROT_NONE;
        setAccess(plan, segment, (segment.readable ? PROT_READ : PROT_NONE) | more);
    }
}

void Mapping::setAccess(const ImagePlan &plan, const Segment &segment, int access) {
    if (segment.size != 0 && mprotect(memory_ + segment.offset, segment.size, access) != 0)
        failSystem(plan, "segment " + segment.name + " cannot be given its access rights");
}

} // namespace macho
