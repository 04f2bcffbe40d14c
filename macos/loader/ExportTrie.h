#pragma once

#include "macos/loader/ImagePlan.h"
#include "macos/loader/Messages.h"

#include <vector>

namespace macho {

/// Reads an export table: a tree in which the edges to a node spell an exported name. Gives the
/// exports by name. Throws LoadError when it is damaged, leads out of an image of `imageSize`
/// bytes, or exports what is not simply a place in the image.
std::vector<NamedOffset> readExportTrie(Bytes table, std::uint64_t imageSize,
                                        const Reporter &reporter);

} // namespace macho
