#pragma once

#include "System.h"

#include <benchmark/benchmark.h>

// The answer is used here, as a getter uses it: no jump into the method in place of a call.
inline std::uint64_t used(id answer) {
    benchmark::DoNotOptimize(answer);
    return reinterpret_cast<std::uint64_t>(answer);
}

template <id (*send)(id, SEL)>
std::uint64_t sendOnce(const id *field, SEL selector, SEL) {
    return used(send(*field, selector));
}

template <id (*send)(id, SEL)>
std::uint64_t sendTwice(const id *field, SEL first, SEL second) {
    return used(send(send(*field, first), second));
}

/// Senders into which the function is compiled.
template <id (*send)(id, SEL)>
constexpr Sends sendsBy{sendOnce<send>, sendTwice<send>, send};
