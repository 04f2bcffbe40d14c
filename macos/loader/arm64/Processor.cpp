#include "macos/loader/Processor.h"

#include "macos/loader/DwarfCode.h"
#include "macos/loader/arm64/Registers.h"

#include "llvm/BinaryFormat/MachO.h"

#include <array>
#include <vector>

namespace macho {
namespace arm64 {
namespace {

enum Mode : std::uint32_t { frameless = 2, dwarfMode = 3, frameMode = 4 };

/// The pairs of registers that a function may save, in the order in which they are saved,
/// downwards, and the bit of an encoding that says so.
struct Pair {
    std::uint32_t bit;
    std::uint8_t first;
};
constexpr std::array<Pair, 9> pairs = {{
    {0x001, x19},
    {0x002, x19 + 2},
    {0x004, x19 + 4},
    {0x008, x19 + 6},
    {0x010, x19 + 8},
    {0x100, d8},
    {0x200, d8 + 2},
    {0x400, d8 + 4},
    {0x800, d8 + 6},
}};
constexpr std::uint32_t pairBits = 0xf1f;

/// Nothing is on the stack; the return address is in its register.
UnwindCommon atEntry() {
    DwarfCode code;
    code.frame(sp, 0);
    UnwindCommon common;
    common.returnAddressRegister = lr;
    common.instructions = std::move(code.bytes);
    return common;
}

/// Says of the pairs that they were saved below the first `words` words of the frame; returns how
/// many words there are then.
std::uint64_t savePairs(const CompactFunction &function, std::uint64_t words, DwarfCode &code) {
    for (const auto &[bit, first] : pairs)
        if (function.encoding() & bit)
            for (const auto reg : {first, static_cast<std::uint8_t>(first + 1)})
                code.saved(reg, ++words);
    return words;
}

/// The frame pointer points to where it and the return address were saved, at the frame's top.
std::vector<std::uint8_t> framePointerInstructions(const CompactFunction &function) {
    if (function.bits(0, 24) & ~pairBits)
        function.fail("does not describe a frame");
    DwarfCode code;
    code.frame(fp, 16);
    code.saved(fp, 2);
    code.saved(lr, 1);
    savePairs(function, 2, code);
    return std::move(code.bytes);
}

/// A function that calls none: the return address stays where it is. The stack is given in units of
/// 16 bytes.
std::vector<std::uint8_t> stackInstructions(const CompactFunction &function) {
    const auto size = std::uint64_t{function.bits(12, 12)} * 16;
    DwarfCode code;
    code.frame(sp, size);
    if (function.bits(0, 12) & ~pairBits || savePairs(function, 0, code) * 8 > size)
        function.fail("does not describe a stack");
    return std::move(code.bytes);
}

std::vector<std::uint8_t> frameInstructions(const CompactFunction &function) {
    switch (function.mode()) {
    case frameless:
        return stackInstructions(function);
    case frameMode:
        return framePointerInstructions(function);
    default:
        function.fail("is of no known mode");
    }
}

} // namespace
} // namespace arm64

// What is called arm64e is another kind: its pointers are signed.
constinit const Processor Processor::arm64 = {
    .name = "arm64",
    .cpuType = llvm::MachO::CPU_TYPE_ARM64,
    .cpuSubtypes = {llvm::MachO::CPU_SUBTYPE_ARM64_ALL, llvm::MachO::CPU_SUBTYPE_ARM64_V8},
    .pageSize = 16384,
    .dwarfMode = arm64::dwarfMode,
    .atEntry = arm64::atEntry,
    .frameInstructions = arm64::frameInstructions,
};

} // namespace macho
