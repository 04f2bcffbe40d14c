#include "macos/loader/arm64/Constructors.h"

#include <array>
#include <utility>

#include <dlfcn.h>

namespace macho::arm64 {
namespace {

/// Those that compilers call for exceptions of these classes and of classes made from them.
constexpr auto names = std::to_array<const char *>({
    "_ZNSt9exceptionD1Ev",        "_ZNSt9exceptionD2Ev",         "_ZNSt9bad_allocC1Ev",
    "_ZNSt9bad_allocD1Ev",        "_ZNSt8bad_castC1Ev",          "_ZNSt8bad_castD1Ev",
    "_ZNSt11logic_errorC1EPKc",   "_ZNSt11logic_errorC2EPKc",    "_ZNSt11logic_errorD1Ev",
    "_ZNSt11logic_errorD2Ev",     "_ZNSt12domain_errorD1Ev",     "_ZNSt12length_errorD1Ev",
    "_ZNSt12out_of_rangeD1Ev",    "_ZNSt16invalid_argumentD1Ev", "_ZNSt13runtime_errorC1EPKc",
    "_ZNSt13runtime_errorC2EPKc", "_ZNSt13runtime_errorD1Ev",    "_ZNSt13runtime_errorD2Ev",
    "_ZNSt11range_errorD1Ev",     "_ZNSt14overflow_errorD1Ev",   "_ZNSt15underflow_errorD1Ev",
});

using Original = void(void *object, const char *text);
using Adapter = void *(void *object, const char *text);

std::array<Original *, names.size()> originals;

/// `text` means nothing to those that take none.
template <std::size_t index>
void *returnObject(void *object, const char *text) {
    originals[index](object, text);
    return object;
}

template <std::size_t... indices>
constexpr std::array<Adapter *, names.size()> adapters(std::index_sequence<indices...>) {
    return {returnObject<indices>...};
}

} // namespace

std::vector<BridgeSymbol> constructors() {
    constexpr auto functions = adapters(std::make_index_sequence<names.size()>());
    std::vector<BridgeSymbol> symbols;
    for (std::size_t index = 0; index < names.size(); ++index) {
        void *const original = dlsym(RTLD_DEFAULT, names[index]);
        originals[index] = reinterpret_cast<Original *>(original);
        if (original != nullptr)
            symbols.push_back({names[index], reinterpret_cast<void *>(functions[index])});
    }
    return symbols;
}

} // namespace macho::arm64
