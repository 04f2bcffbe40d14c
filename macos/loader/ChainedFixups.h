#pragma once

#include "macos/loader/ByteView.h"
#include "macos/loader/Fixups.h"

namespace macho {

/// The newer form of fixups: every pointer that has to be patched says where the next one is.
/// `file` is followed by a zero byte that is not part of it. Throws LoadError when the chains are
/// damaged or of a kind that 64-bit x86 images do not have.
void readChainedFixups(Bytes file, const Reporter &reporter, Fixups &fixups);

} // namespace macho
