#pragma once

#include "macos/loader/ImagePlan.h"
#include "macos/loader/Messages.h"
#include "macos/loader/Processor.h"

#include <cstdint>
#include <string>
#include <vector>

namespace macho {

struct Library {
    std::string name; // the install name
    bool weak = false;
};

/// What the header and the load commands say, each range of them checked against the file and the
/// image. Views refer to the file's bytes.
struct LoadCommands {
    std::uint64_t baseAddress = 0;  // where the header was linked to be
    std::uint64_t imageSize = 0;    // whole pages
    std::vector<Segment> segments;  // in the file's order, which fixup tables count in
    std::vector<Section> sections;  // in the file's order, which the symbol table counts in
    std::vector<Library> libraries; // import ordinal 1 is the first
    Bytes rebaseTable;
    Bytes bindTable;
    Bytes lazyBindTable;
    Bytes weakBindTable;
    bool hasChainedFixups = false; // instead of the four
    Bytes exportTable;
    Bytes symbolTable;
    Bytes stringTable;
};

/// Reads the header and load commands of a single-architecture file. Throws LoadError when the file
/// is not a bundle or library for `processor`, is damaged, or asks for what this loader does not
/// do.
LoadCommands readLoadCommands(Bytes file, const Processor &processor, const Reporter &reporter);

} // namespace macho
