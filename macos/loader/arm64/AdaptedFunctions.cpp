#include "macos/loader/arm64/AdaptedFunctions.h"

#include <array>
#include <cstdint>
#include <string>
#include <utility>

#include <dlfcn.h>

namespace macho::arm64 {
namespace {

/// What an image takes for granted of a function's result.
enum class Result : std::uint8_t {
    unsignedByte, // widened to 32 bits by the function that returns it
    signedShort,
    firstArgument // constructors and destructors return their object
};

struct Adapted {
    const char *name;
    Result result;
};

constexpr auto adapted = std::to_array<Adapted>({
    {"CFStringGetCString", Result::unsignedByte},
    {"CFURLGetFSRef", Result::unsignedByte},
    {"FSGetCatalogInfo", Result::signedShort},
    {"_ZNSt9exceptionD1Ev", Result::firstArgument},
    {"_ZNSt9exceptionD2Ev", Result::firstArgument},
    {"_ZNSt9bad_allocC1Ev", Result::firstArgument},
    {"_ZNSt9bad_allocD1Ev", Result::firstArgument},
    {"_ZNSt8bad_castC1Ev", Result::firstArgument},
    {"_ZNSt8bad_castD1Ev", Result::firstArgument},
    {"_ZNSt11logic_errorC1EPKc", Result::firstArgument},
    {"_ZNSt11logic_errorC2EPKc", Result::firstArgument},
    {"_ZNSt11logic_errorD1Ev", Result::firstArgument},
    {"_ZNSt11logic_errorD2Ev", Result::firstArgument},
    {"_ZNSt12domain_errorD1Ev", Result::firstArgument},
    {"_ZNSt12length_errorD1Ev", Result::firstArgument},
    {"_ZNSt12out_of_rangeD1Ev", Result::firstArgument},
    {"_ZNSt16invalid_argumentD1Ev", Result::firstArgument},
    {"_ZNSt13runtime_errorC1EPKc", Result::firstArgument},
    {"_ZNSt13runtime_errorC2EPKc", Result::firstArgument},
    {"_ZNSt13runtime_errorD1Ev", Result::firstArgument},
    {"_ZNSt13runtime_errorD2Ev", Result::firstArgument},
    {"_ZNSt11range_errorD1Ev", Result::firstArgument},
    {"_ZNSt14overflow_errorD1Ev", Result::firstArgument},
    {"_ZNSt15underflow_errorD1Ev", Result::firstArgument},
});

/// All arguments of these functions are integers and pointers, and lie in registers.
template <class Returned>
using Function = Returned(std::uint64_t, std::uint64_t, std::uint64_t, std::uint64_t, std::uint64_t,
                          std::uint64_t, std::uint64_t, std::uint64_t);

std::array<void *, adapted.size()> originals;

template <class Returned, class... Arguments>
Returned callOriginal(std::size_t index, Arguments... arguments) {
    return reinterpret_cast<Function<Returned> *>(originals[index])(arguments...);
}

template <std::size_t index>
std::uint64_t adapter(std::uint64_t a, std::uint64_t b, std::uint64_t c, std::uint64_t d,
                      std::uint64_t e, std::uint64_t f, std::uint64_t g, std::uint64_t h) {
    if constexpr (adapted[index].result == Result::unsignedByte)
        return callOriginal<std::uint8_t>(index, a, b, c, d, e, f, g, h);
    if constexpr (adapted[index].result == Result::signedShort)
        return static_cast<std::uint64_t>(
            callOriginal<std::int16_t>(index, a, b, c, d, e, f, g, h));
    callOriginal<void>(index, a, b, c, d, e, f, g, h);
    return a;
}

template <std::size_t... indices>
constexpr std::array<Function<std::uint64_t> *, adapted.size()>
adapters(std::index_sequence<indices...>) {
    return {adapter<indices>...};
}

} // namespace

std::vector<BridgeSymbol> adaptedFunctions() {
    constexpr auto functions = adapters(std::make_index_sequence<adapted.size()>());
    std::vector<BridgeSymbol> symbols;
    for (std::size_t index = 0; index < adapted.size(); ++index) {
        originals[index] = dlsym(RTLD_DEFAULT, adapted[index].name);
        if (originals[index] != nullptr)
            symbols.push_back({adapted[index].name, reinterpret_cast<void *>(functions[index])});
    }
    return symbols;
}

} // namespace macho::arm64
