#include "host/crash/Registers.h"

#include <ucontext.h>

namespace crash {

// A call leaves the caller's address in the link register, which is the one behind the frame's.
Registers registersOf(const ucontext_t &context) {
    constexpr std::size_t frame = 29;
    const auto &state = context.uc_mcontext;
    return {.instruction = state.pc, .frame = state.regs[frame], .caller = state.regs[frame + 1]};
}

} // namespace crash
