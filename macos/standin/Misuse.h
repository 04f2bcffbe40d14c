// Ends a process that breaks a rule which Core Foundation only states: on a Mac such a call crashes
// or corrupts memory, here it says so.

#pragma once

#include <cstdio>
#include <cstdlib>

namespace standin {

[[noreturn]] inline void misuse(const char *function, const char *rule) {
    std::fprintf(stderr, "%s: %s\n", function, rule);
    std::abort();
}

inline void requireObject(const void *object, const char *function) {
    if (object == nullptr) {
        misuse(function, "the object is null");
    }
}

} // namespace standin
