#include "macos/loader/BridgeSymbols.h"
#include "macos/loader/Processor.h"
#include "macos/loader/arm64/AdaptedFunctions.h"

#include <vector>

extern "C" {
void machoNSLog();
void machoNSLogv();
void machoPrintf();
void machoVprintf();
void machoSprintf();
void machoVsprintf();
void machoSnprintf();
void machoVsnprintf();
void machoAsprintf();
void machoVasprintf();
}

namespace macho {
namespace {

struct Function {
    std::string_view name;
    void (*address)();
};

constexpr std::array<Function, 10> variableArguments = {{
    {"NSLog", machoNSLog},
    {"NSLogv", machoNSLogv},
    {"printf", machoPrintf},
    {"vprintf", machoVprintf},
    {"sprintf", machoSprintf},
    {"vsprintf", machoVsprintf},
    {"snprintf", machoSnprintf},
    {"vsnprintf", machoVsnprintf},
    {"asprintf", machoAsprintf},
    {"vasprintf", machoVasprintf},
}};

} // namespace

const Processor &Processor::ofThisProgram() {
    return arm64;
}

std::span<const BridgeSymbol> processorSymbols() {
    static const auto symbols = [] {
        auto all = arm64::adaptedFunctions();
        for (const auto &[name, function] : variableArguments)
            all.push_back({name, reinterpret_cast<void *>(function)});
        return all;
    }();
    return symbols;
}

} // namespace macho
