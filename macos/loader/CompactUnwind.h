#pragma once

#include "macos/loader/CompactFunction.h"
#include "macos/loader/DwarfFrames.h"
#include "macos/loader/Messages.h"
#include "macos/loader/Processor.h"
#include "macos/loader/UnwindTable.h"

namespace macho {

/// Translates __TEXT,__unwind_info into DWARF records. Functions that it leaves to DWARF are taken
/// from `frames`. Throws LoadError when a table leads outside itself or the image.
UnwindTable translateCompactUnwind(const UnwindSource &source, const Processor &processor,
                                   const DwarfFrames &frames, const Reporter &reporter);

} // namespace macho
