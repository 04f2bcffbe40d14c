#pragma once

// The two kinds of files behind factsOf.

#include "host/zkthost/ImageFacts.h"

#include <string_view>

namespace zkthost {

/// What a Mach-O file has for one processor.
struct MachOPart {
    ImagePart facts;
    std::string propertyList; ///< the one inside; "" when there is none
};

/// Of a Mach-O file's bytes. Throws InputError, which says what is wrong with the file.
std::vector<MachOPart> machOParts(std::string_view bytes);

/// Of an ELF file. Throws InputError when it cannot be read here.
ImagePart elfPart(const std::filesystem::path &file);

} // namespace zkthost
