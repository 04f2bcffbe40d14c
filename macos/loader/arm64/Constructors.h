#pragma once

#include "macos/loader/BridgeSymbols.h"

#include <vector>

namespace macho::arm64 {

/// The C++ library's constructors and destructors, each behind a function that returns the object,
/// as images take it for granted. Those that the process does not have are left out.
std::vector<BridgeSymbol> constructors();

} // namespace macho::arm64
