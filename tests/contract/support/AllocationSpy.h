#pragma once

#include "Alone.h"

#include "host/image/Image.h"

#include <cstddef>
#include <vector>

/// Watches the allocations that code of one image asks for itself, by the address that malloc,
/// calloc or operator new was called from. One at a time; counts while it lives.
class AllocationSpy {
public:
    explicit AllocationSpy(const host::Image &image);
    ~AllocationSpy();
    AllocationSpy(const AllocationSpy &) = delete;
    AllocationSpy &operator=(const AllocationSpy &) = delete;

    /// Sizes in bytes, in order; failed ones too. At most the first 64 are kept.
    [[nodiscard]] std::vector<std::size_t> sizes() const;
    /// How many of those kept are not freed yet, whoever has to free them.
    [[nodiscard]] std::size_t unfreed() const;

    /// From now on the image's allocations fail.
    void failAll();
    /// The n-th allocation fails, counted from 1.
    void fail(std::size_t n);

private:
    Alone<AllocationSpy> alone_;
};
