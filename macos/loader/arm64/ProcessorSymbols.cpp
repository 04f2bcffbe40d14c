#include "macos/loader/BridgeSymbols.h"
#include "macos/loader/Processor.h"
#include "macos/loader/arm64/Constructors.h"

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

/// What macOS and Linux pass in different ways on arm64, and this program bridges:
///  - functions with variable arguments, those of the table above;
///  - constructors, which return their object on macOS;
///  - answers of methods below 32 bits, which macOS widens.
/// It does not bridge, so that whoever is on this side has to take care of it:
///  - results of functions below 32 bits: the function widens them;
///  - arguments below 32 bits that go to a function of an image: the caller widens them.
/// It does not bridge, and no image may use:
///  - methods with variable arguments, as +stringWithFormat:, and any other such function, as open;
///  - arguments below 64 bits behind the eight that lie in registers: an image packs them, this
///    system gives each a slot of its own;
///  - long double, which is a double to an image.
std::span<const BridgeSymbol> processorSymbols() {
    static const auto symbols = [] {
        auto all = arm64::constructors();
        for (const auto &[name, function] : variableArguments)
            all.push_back({name, reinterpret_cast<void *>(function)});
        return all;
    }();
    return symbols;
}

} // namespace macho
