#pragma once

#include "macos/loader/ByteView.h"
#include "macos/loader/Fixups.h"

namespace macho {

enum class BindTable { regular, lazy, weak };

/// The classic tables of fixups: programs for a machine that walks through the segments. Throw
/// LoadError when a table is damaged or asks for what 64-bit x86 images do not have.
void readRebaseOpcodes(Bytes table, Fixups &fixups);
void readBindOpcodes(Bytes table, BindTable kind, Fixups &fixups);

} // namespace macho
