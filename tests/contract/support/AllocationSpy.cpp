#include "AllocationSpy.h"

#include "SystemAllocation.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <new>
#include <span>

// The program's own functions stand before the C library's, for everything loaded into it.

namespace {

struct Block {
    std::size_t size;
    void *address; // null: the allocation failed, or it has been freed
};

struct Watch {
    bool on = false;
    bool failing = false;
    std::size_t failingAllocation = 0;
    const host::Image *image = nullptr;
    std::array<Block, 64> blocks{};
    std::size_t count = 0;

    std::span<Block> kept() { return std::span(blocks).first(std::min(count, blocks.size())); }
};
constinit Watch watch;

template <class Allocate>
void *allocate(const void *caller, std::size_t size, Allocate system) {
    if (!watch.on || !watch.image->contains(caller))
        return system();
    const bool fails = watch.failing || watch.count + 1 == watch.failingAllocation;
    void *const memory = fails ? nullptr : system();
    if (watch.count < watch.blocks.size())
        watch.blocks[watch.count] = {size, memory};
    ++watch.count;
    return memory;
}

void *orThrow(void *memory) {
    if (memory == nullptr)
        throw std::bad_alloc();
    return memory;
}

} // namespace

extern "C" void *malloc(std::size_t size) {
    return allocate(__builtin_return_address(0), size, [=] { return systemMalloc(size); });
}

extern "C" void *calloc(std::size_t count, std::size_t size) {
    return allocate(__builtin_return_address(0), count * size,
                    [=] { return systemCalloc(count, size); });
}

extern "C" void free(void *memory) {
    if (watch.on && memory != nullptr)
        for (Block &block : watch.kept())
            if (block.address == memory)
                block.address = nullptr;
    systemFree(memory);
}

// C++'s are the program's too, for what an image allocates through them to count as its own.

void *operator new(std::size_t size, const std::nothrow_t &) noexcept {
    return allocate(__builtin_return_address(0), size, [=] { return systemMalloc(size); });
}

void *operator new[](std::size_t size, const std::nothrow_t &) noexcept {
    return allocate(__builtin_return_address(0), size, [=] { return systemMalloc(size); });
}

void *operator new(std::size_t size) {
    return orThrow(allocate(__builtin_return_address(0), size, [=] { return systemMalloc(size); }));
}

void *operator new[](std::size_t size) {
    return orThrow(allocate(__builtin_return_address(0), size, [=] { return systemMalloc(size); }));
}

void operator delete(void *memory) noexcept {
    free(memory);
}

void operator delete[](void *memory) noexcept {
    free(memory);
}

void operator delete(void *memory, std::size_t) noexcept {
    free(memory);
}

void operator delete[](void *memory, std::size_t) noexcept {
    free(memory);
}

AllocationSpy::AllocationSpy(const host::Image &image) {
    watch = {.on = true, .image = &image};
}

AllocationSpy::~AllocationSpy() {
    watch = {};
}

std::vector<std::size_t> AllocationSpy::sizes() const {
    std::vector<std::size_t> result;
    for (const Block &block : watch.kept())
        result.push_back(block.size);
    return result;
}

std::size_t AllocationSpy::unfreed() const {
    return static_cast<std::size_t>(
        std::ranges::count_if(watch.kept(), [](const Block &block) { return block.address; }));
}

void AllocationSpy::failAll() {
    watch.failing = true;
}

void AllocationSpy::fail(std::size_t n) {
    watch.failingAllocation = n;
}
