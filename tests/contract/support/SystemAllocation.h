#pragma once

// The system's own allocation, past the functions of the same names that a program defines.

#include <cstddef>

#if defined(__APPLE__)

#include <malloc/malloc.h>

inline void *systemMalloc(std::size_t size) {
    return malloc_zone_malloc(malloc_default_zone(), size);
}
inline void *systemCalloc(std::size_t count, std::size_t size) {
    return malloc_zone_calloc(malloc_default_zone(), count, size);
}
inline void systemFree(void *memory) {
    if (memory != nullptr)
        malloc_zone_free(malloc_zone_from_ptr(memory), memory);
}

#elif __has_feature(address_sanitizer)

// A sanitizer's, under the names that it gives its interceptors.
extern "C" void *systemMalloc(std::size_t) asm("__interceptor_malloc");
extern "C" void *systemCalloc(std::size_t, std::size_t) asm("__interceptor_calloc");
extern "C" void systemFree(void *) asm("__interceptor_free");

#else

extern "C" void *systemMalloc(std::size_t) asm("__libc_malloc");
extern "C" void *systemCalloc(std::size_t, std::size_t) asm("__libc_calloc");
extern "C" void systemFree(void *) asm("__libc_free");

#endif
