#include "macos/loader/Processor.h"

#include "llvm/BinaryFormat/MachO.h"

#include <algorithm>

namespace macho {

bool Processor::runs(std::uint32_t type, std::uint32_t subtype) const {
    // The upper bits are capabilities, not a kind.
    return type == cpuType &&
           std::ranges::find(cpuSubtypes, subtype & ~llvm::MachO::CPU_SUBTYPE_MASK) !=
               cpuSubtypes.end();
}

std::string Processor::wanted() const {
    return this == &ofThisProgram() ? "only " + std::string(name) + " images run here"
                                    : "one for " + std::string(name) + " was asked for";
}

} // namespace macho
