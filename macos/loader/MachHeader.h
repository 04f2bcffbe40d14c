#pragma once

#include "macos/loader/ByteView.h"
#include "macos/loader/Messages.h"
#include "macos/loader/Processor.h"

#include "llvm/BinaryFormat/MachO.h"

#include <cstdint>
#include <string>

namespace macho {

/// The header of a single-architecture file; the load commands that it announces lie within the
/// file. Throws LoadError when it is not that of a bundle or library for `processor`.
llvm::MachO::mach_header_64 readHeader(Bytes file, const Processor &processor,
                                       const Reporter &reporter);

/// The name of a processor in the words of compilers: "arm64".
std::string architectureName(std::uint32_t cpuType, std::uint32_t cpuSubtype);

} // namespace macho
