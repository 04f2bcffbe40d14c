#pragma once

#include "macos/loader/BridgeSymbols.h"

#include <vector>

namespace macho::arm64 {

/// The functions of this process whose results lack something that images take for granted, each
/// behind one that adds it. Those that the process does not have are left out.
std::vector<BridgeSymbol> adaptedFunctions();

} // namespace macho::arm64
