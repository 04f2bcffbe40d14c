#include "macos/loader/BridgeSymbols.h"

#include <array>
#include <cerrno>
#include <cstdio>
#include <cstdlib>

#include <sys/random.h>

namespace macho {
namespace {

int *errorNumber() {
    return &errno;
}

/// Every symbol is bound when the image is loaded, so nothing ever asks for it later.
void bindLazily() {
    std::fputs("a symbol was to be bound lazily, but all were bound at load time\n", stderr);
    std::abort();
}

/// What functions with buffers put behind them to notice overruns. The zero byte stops strings.
std::uintptr_t randomGuard() {
    std::uintptr_t value = 0;
    if (getrandom(&value, sizeof value, GRND_NONBLOCK) != sizeof value)
        value = 0x5a17c0de9b3e6d00;
    return value & ~std::uintptr_t{0xff};
}

} // namespace

std::span<const BridgeSymbol> systemSymbols() {
    static std::uintptr_t stackGuard = randomGuard();
    static const auto symbols = std::to_array<BridgeSymbol>({
        {"__error", reinterpret_cast<void *>(errorNumber)},
        {"__stack_chk_guard", &stackGuard},
        {"dyld_stub_binder", reinterpret_cast<void *>(bindLazily)},
    });
    return symbols;
}

} // namespace macho
