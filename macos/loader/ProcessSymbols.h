#pragma once

#include "macos/loader/Imports.h"

#include <set>
#include <string>

namespace macho {

/// Finds imports in this process: the bridge's own symbols, the runtime's classes, then whatever
/// the program and its libraries export. `withheld` names are not found; it must outlive the
/// result.
ImportFinder processSymbols(const std::set<std::string, std::less<>> &withheld);

} // namespace macho
