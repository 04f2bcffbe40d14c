#pragma once

#include "macos/loader/ImagePlan.h"
#include "macos/loader/LoadCommands.h"
#include "macos/loader/Messages.h"

namespace macho {

/// Reads what has to be patched and what is exported: rebase, bind, weak and lazy bind tables or
/// chained fixups, and the export table. Fills rebases, imports, binds and exports of `plan`.
/// `file` ends with a zero byte that is not part of it.
void readFixupTables(Bytes file, const LoadCommands &commands, const Reporter &reporter,
                     ImagePlan &plan);

} // namespace macho
