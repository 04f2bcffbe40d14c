// Functions with every shape of stack frame, each of which calls back, so that exceptions pass.
#include <cstdint>
#include <cstring>

namespace {

using Callback = void (*)();

struct CleanUp {
    int *count;
    ~CleanUp() { ++*count; }
};

__attribute__((noinline)) void use(void *place) {
    asm volatile("" : : "r"(place) : "memory");
}

} // namespace

extern "C" {

int simple(Callback callback, int *count) {
    const CleanUp cleanUp{count};
    callback();
    return 1;
}

int withoutCleanUp(Callback callback, int *count) {
    callback();
    return ++*count;
}

// Many values live across the call: they are in the registers that a function has to save.
int manyRegisters(Callback callback, int *count) {
    std::uint64_t a = 1, b = 2, c = 3, d = 4, e = 5, f = 6;
    asm volatile("" : "+r"(a), "+r"(b), "+r"(c), "+r"(d), "+r"(e), "+r"(f));
    const CleanUp cleanUp{count};
    callback();
    asm volatile("" : "+r"(a), "+r"(b), "+r"(c), "+r"(d), "+r"(e), "+r"(f));
    return static_cast<int>(a + 2 * b + 3 * c + 4 * d + 5 * e + 6 * f);
}

// The same with numbers of floating point; arm64 has registers for these, too.
int manyVectorRegisters(Callback callback, int *count) {
    volatile double source = 0.5;
    const double a = source, b = source, c = source, d = source, e = source, f = source, g = source,
                 h = source;
    const CleanUp cleanUp{count};
    callback();
    return static_cast<int>(a + 2 * b + 3 * c + 4 * d + 5 * e + 6 * f + 7 * g + 8 * h);
}

int largeStack(Callback callback, int *count) {
    char buffer[70000];
    std::memset(buffer, *count, sizeof buffer);
    use(buffer);
    const CleanUp cleanUp{count};
    callback();
    use(buffer);
    return buffer[6000];
}

int largeStackManyRegisters(Callback callback, int *count) {
    char buffer[5000];
    use(buffer);
    std::uint64_t a = 1, b = 2, c = 3, d = 4, e = 5;
    asm volatile("" : "+r"(a), "+r"(b), "+r"(c), "+r"(d), "+r"(e));
    const CleanUp cleanUp{count};
    callback();
    asm volatile("" : "+r"(a), "+r"(b), "+r"(c), "+r"(d), "+r"(e));
    use(buffer);
    return static_cast<int>(a + b + c + d + e);
}

int variableStack(Callback callback, int *count) {
    auto *buffer = static_cast<char *>(__builtin_alloca(static_cast<unsigned>(*count) + 100));
    use(buffer);
    const CleanUp cleanUp{count};
    callback();
    use(buffer);
    return 1;
}

int alignedStack(Callback callback, int *count) {
    alignas(64) char buffer[128];
    use(buffer);
    const CleanUp cleanUp{count};
    callback();
    use(buffer);
    return reinterpret_cast<std::uintptr_t>(buffer) % 64 == 0 ? 1 : 0;
}

__attribute__((noinline)) int manyArguments(int a, int b, int c, int d, int e, int f, int g, int h,
                                            Callback callback, int *count) {
    const CleanUp cleanUp{count};
    callback();
    return a + b + c + d + e + f + g + h;
}

int pushesArguments(Callback callback, int *count) {
    const CleanUp cleanUp{count};
    return manyArguments(1, 2, 3, 4, 5, 6, 7, 8, callback, count);
}

// A call frame instruction that does nothing, but that compact unwind information cannot express:
// the function keeps its DWARF record.
int describedByDwarf(Callback callback, int *count) {
    asm volatile(".cfi_escape 0x00");
    std::uint64_t a = 1, b = 2, c = 3, d = 4, e = 5, f = 6;
    asm volatile("" : "+r"(a), "+r"(b), "+r"(c), "+r"(d), "+r"(e), "+r"(f));
    const CleanUp cleanUp{count};
    callback();
    asm volatile("" : "+r"(a), "+r"(b), "+r"(c), "+r"(d), "+r"(e), "+r"(f));
    return static_cast<int>(a + 2 * b + 3 * c + 4 * d + 5 * e + 6 * f);
}

int nested(Callback callback, int *count) {
    const CleanUp cleanUp{count};
    return simple(callback, count) + manyRegisters(callback, count) +
           largeStackManyRegisters(callback, count);
}

// Catches with values in registers, which the landing pad needs again.
int catchesWithRegisters(Callback callback, int *count) {
    std::uint64_t a = 1, b = 2, c = 3, d = 4, e = 5, f = 6;
    asm volatile("" : "+r"(a), "+r"(b), "+r"(c), "+r"(d), "+r"(e), "+r"(f));
    try {
        largeStackManyRegisters(callback, count);
    } catch (...) {
        *count += 10;
    }
    asm volatile("" : "+r"(a), "+r"(b), "+r"(c), "+r"(d), "+r"(e), "+r"(f));
    return static_cast<int>(a + 2 * b + 3 * c + 4 * d + 5 * e + 6 * f);
}

int leaf(int value) {
    return value + 1;
}
}
