#include "host/crash/Registers.h"

#include <ucontext.h>

namespace crash {

// A call leaves the caller's address on top of the stack.
Registers registersOf(const ucontext_t &context) {
    const auto &registers = context.uc_mcontext.gregs;
    return {.instruction = static_cast<std::uintptr_t>(registers[REG_RIP]),
            .frame = static_cast<std::uintptr_t>(registers[REG_RBP]),
            .caller = wordAt(static_cast<std::uintptr_t>(registers[REG_RSP]))};
}

} // namespace crash
