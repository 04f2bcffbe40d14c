#include "macos/loader/Processor.h"

#include "macos/loader/DwarfCode.h"
#include "macos/loader/x86_64/Registers.h"

#include "llvm/BinaryFormat/MachO.h"

#include <array>
#include <vector>

namespace macho {
namespace x86_64 {
namespace {

enum Mode : std::uint32_t { frameMode = 1, fixedStack = 2, stackInCode = 3, dwarfMode = 4 };

/// Compact encodings number the registers that a function saves from 1 to 6.
constexpr std::array<std::uint8_t, 7> savedRegisters = {0, rbx, r12, r13, r14, r15, rbp};

/// Only the return address is pushed.
UnwindCommon atEntry() {
    DwarfCode code;
    code.frame(rsp, 8);
    code.saved(rip, 1);
    UnwindCommon common;
    common.returnAddressRegister = rip;
    common.instructions = std::move(code.bytes);
    return common;
}

/// rbp is pushed and points to where it was saved; up to five registers are saved further down,
/// upwards from 8 * offset bytes below rbp.
std::vector<std::uint8_t> framePointerInstructions(const CompactFunction &function) {
    DwarfCode code;
    code.frame(rbp, 16);
    code.saved(rbp, 2);
    const auto offset = function.bits(16, 8);
    for (std::uint32_t slot = 0; slot < 5; ++slot) {
        const auto number = function.bits(3 * slot, 3);
        if (number == 0)
            continue;
        if (number > 5 || offset <= slot)
            function.fail("does not describe a frame");
        code.saved(savedRegisters[number], 2 + offset - slot);
    }
    return std::move(code.bytes);
}

/// The registers in the order in which they were pushed. The number is written in the mixed radix
/// of permutations: each digit says which of the registers that are left comes next.
std::array<std::uint8_t, 6> permutation(const CompactFunction &function, std::uint32_t count,
                                        std::uint32_t number) {
    std::vector<std::uint8_t> left(savedRegisters.begin() + 1, savedRegisters.end());
    std::array<std::uint8_t, 6> order = {};
    for (std::uint32_t i = 0; i < count; ++i) {
        std::uint32_t weight = 1;
        for (std::uint32_t j = i + 1; j < count; ++j)
            weight *= 6 - j;
        const auto digit = number / weight;
        number %= weight;
        if (digit >= left.size())
            function.fail("does not describe saved registers");
        order[i] = left[digit];
        left.erase(left.begin() + digit);
    }
    return order;
}

/// The frame address is rsp plus `size`; registers are saved right below the return address.
std::vector<std::uint8_t> stackInstructions(const CompactFunction &function, std::uint64_t size) {
    const auto count = function.bits(10, 3);
    if (count > 6 || size < 8 * (std::uint64_t{count} + 1))
        function.fail("does not describe a stack");
    DwarfCode code;
    code.frame(rsp, size);
    const auto registers = permutation(function, count, function.bits(0, 10));
    for (std::uint32_t i = 0; i < count; ++i)
        code.saved(registers[i], 1 + count - i);
    return std::move(code.bytes);
}

/// Large stacks: the encoding says where in the function the instruction "sub rsp, size" has its
/// operand.
std::uint64_t stackSizeInCode(const CompactFunction &function) {
    const auto size = function.wordAt(function.bits(16, 8));
    if (!size)
        function.fail("refers to an instruction outside the code");
    return std::uint64_t{*size} + std::uint64_t{8} * function.bits(13, 3);
}

std::vector<std::uint8_t> frameInstructions(const CompactFunction &function) {
    switch (function.mode()) {
    case frameMode:
        return framePointerInstructions(function);
    case fixedStack:
        return stackInstructions(function, std::uint64_t{function.bits(16, 8)} * 8);
    case stackInCode:
        return stackInstructions(function, stackSizeInCode(function));
    default:
        function.fail("is of no known mode");
    }
}

} // namespace
} // namespace x86_64

constinit const Processor Processor::x86_64 = {
    .name = "x86_64",
    .cpuType = llvm::MachO::CPU_TYPE_X86_64,
    .cpuSubtypes = {llvm::MachO::CPU_SUBTYPE_X86_64_ALL, llvm::MachO::CPU_SUBTYPE_X86_64_H},
    .pageSize = 4096,
    .dwarfMode = x86_64::dwarfMode,
    .atEntry = x86_64::atEntry,
    .frameInstructions = x86_64::frameInstructions,
};

} // namespace macho
