#include "macos/loader/BridgeSymbols.h"
#include "macos/loader/Processor.h"

#include <array>

extern "C" {
void machoMessageSendStructure();
void machoMessageSendLongDouble();
void machoMessageSendTwoLongDoubles();
}

namespace macho {

const Processor &Processor::ofThisProgram() {
    return x86_64;
}

/// The message sends whose answers come in memory or on the floating-point unit's stack.
std::span<const BridgeSymbol> processorSymbols() {
    static const auto symbols = std::to_array<BridgeSymbol>({
        {"objc_msgSend_stret", reinterpret_cast<void *>(machoMessageSendStructure)},
        {"objc_msgSend_fpret", reinterpret_cast<void *>(machoMessageSendLongDouble)},
        {"objc_msgSend_fp2ret", reinterpret_cast<void *>(machoMessageSendTwoLongDoubles)},
    });
    return symbols;
}

} // namespace macho
