#pragma once

#include "macos/loader/ByteView.h"
#include "macos/loader/DwarfFrames.h"
#include "macos/loader/Messages.h"
#include "macos/loader/UnwindTable.h"

#include <cstdint>

namespace macho {

/// The image as the unwind tables need it: its bytes in the file and where they will stand.
struct UnwindSource {
    std::uint64_t imageSize = 0;
    Bytes table;                  // the section __unwind_info
    std::uint64_t textOffset = 0; // of the segment that holds the functions
    Bytes text;
};

/// Translates __TEXT,__unwind_info into DWARF records. Functions that it leaves to DWARF are taken
/// from `frames`. Throws LoadError when a table leads outside itself or the image.
UnwindTable translateCompactUnwind(const UnwindSource &source, const DwarfFrames &frames,
                                   const Reporter &reporter);

} // namespace macho
