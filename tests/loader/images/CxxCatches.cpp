// C++ exceptions, caught and thrown.
#include <exception>
#include <new>
#include <stdexcept>

namespace {

using Callback = void (*)();

struct CleanUp {
    int *count;
    ~CleanUp() { ++*count; }
};

struct OwnError : std::runtime_error {
    explicit OwnError(int number) : std::runtime_error("own error"), code(number) {}
    int code;
};

struct Unrelated {
    int value;
};

/// Copying it is the image's code, which runs while the exception is being caught.
struct Copied {
    int value;
    explicit Copied(int number) : value(number) {}
    Copied(const Copied &other) : value(other.value + 1) {}
};

} // namespace

/// Unlike those above, of every image that has it, and compared by name. In a hidden one on arm64
/// the highest bit of the name's address says so.
struct Shared {
    int value;
};
struct __attribute__((visibility("hidden"))) Hidden {
    int value;
};

extern "C" {

int catchesByBase(Callback callback, int *count) {
    try {
        const CleanUp cleanUp{count};
        callback();
        return 0;
    } catch (const std::logic_error &) {
        return 1;
    } catch (const std::exception &) {
        return 2;
    }
}

const char *messageOf(Callback callback) {
    static char text[64];
    try {
        callback();
        return nullptr;
    } catch (const std::exception &error) {
        const char *from = error.what();
        char *to = text;
        while (*from != '\0' && to < text + sizeof text - 1)
            *to++ = *from++;
        *to = '\0';
        return text;
    }
}

int catchesInteger(Callback callback) {
    try {
        callback();
        return 0;
    } catch (int value) {
        return value;
    }
}

int catchesEverything(Callback callback, int *count) {
    try {
        const CleanUp cleanUp{count};
        callback();
        return 0;
    } catch (...) {
        return 1;
    }
}

int catchesUnrelated(Callback callback, int *count) {
    const CleanUp cleanUp{count};
    try {
        const CleanUp inner{count};
        callback();
        return 0;
    } catch (const Unrelated &) {
        return 1;
    }
}

int rethrows(Callback callback, int *count) {
    const CleanUp outer{count};
    try {
        const CleanUp cleanUp{count};
        callback();
        return 0;
    } catch (...) {
        *count += 10;
        throw;
    }
}

// Rethrown to a handler around, which sees it again, twice.
int rethrowsWithin(Callback callback, int *count) {
    try {
        try {
            callback();
        } catch (...) {
            *count += 1;
            try {
                throw;
            } catch (...) {
                *count += 10;
            }
            throw;
        }
    } catch (...) {
        *count += 100;
    }
    return *count;
}

// Rethrown out of two handlers at once.
int rethrowsOutOfBoth(Callback callback, int *count) {
    try {
        try {
            callback();
        } catch (...) {
            const CleanUp outer{count};
            try {
                throw;
            } catch (...) {
                const CleanUp inner{count};
                throw;
            }
        }
    } catch (...) {
        *count += 100;
    }
    return *count;
}

int throwsOwn(int code) {
    throw OwnError(code);
}

int throwsInteger(int value) {
    throw value;
}

int catchesOwn(int code) {
    try {
        return throwsOwn(code);
    } catch (const OwnError &error) {
        return error.code;
    }
}

void throwsShared(int value) {
    throw Shared{value};
}

void throwsHidden(int value) {
    throw Hidden{value};
}

int catchesSharedOrHidden(void (*callback)(int), int value) {
    try {
        callback(value);
    } catch (const Shared &shared) {
        return shared.value;
    } catch (const Hidden &hidden) {
        return -hidden.value;
    }
    return 0;
}

int catchesCopy(int value) {
    try {
        throw Copied(value);
    } catch (Copied copy) {
        return copy.value;
    }
}

// While one is handled, others come and go.
int catchesWithin(Callback first, Callback second) {
    int seen = 0;
    try {
        first();
    } catch (...) {
        seen += 1;
        try {
            second();
        } catch (...) {
            seen += 10;
        }
        try {
            throw;
        } catch (...) {
            seen += 100;
        }
    }
    return seen;
}

// The first is replaced by another from within its handler.
void replaces(Callback first, Callback second, int *count) {
    const CleanUp cleanUp{count};
    try {
        first();
    } catch (...) {
        const CleanUp inner{count};
        second();
    }
}

void throwsFromNoexcept(Callback callback) noexcept {
    callback();
}

// Rethrows what its caller is handling.
void rethrowsForCaller() {
    throw;
}

int handlesWhileCalling(Callback first, Callback second) {
    try {
        first();
        return 0;
    } catch (...) {
        second();
        return 1;
    }
}
}
