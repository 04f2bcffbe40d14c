#pragma once

#include "macos/loader/ByteView.h"
#include "macos/loader/Messages.h"
#include "macos/loader/UnwindTable.h"

#include <cstdint>
#include <map>

namespace macho {

/// The records of an image's __TEXT,__eh_frame section, by the start of the code they describe.
struct DwarfFrames {
    std::vector<UnwindCommon> commons;
    std::map<std::uint64_t, UnwindRecord> records;

    /// The record that describes the code at `offset`; null when there is none.
    [[nodiscard]] const UnwindRecord *find(std::uint64_t offset) const;
};

/// Reads an __eh_frame section that stands at `sectionOffset` of an image linked at `baseAddress`.
/// Throws LoadError when it is damaged or leads out of the image.
DwarfFrames readDwarfFrames(Bytes section, std::uint64_t sectionOffset, std::uint64_t baseAddress,
                            std::uint64_t imageSize, const Reporter &reporter);

} // namespace macho
