#pragma once

// The two kinds of files behind factsOf.

#include "host/zkthost/ImageFacts.h"

#include <llvm/Object/ELFObjectFile.h>
#include <llvm/Object/MachO.h>

namespace zkthost {

ImagePart partOf(const llvm::object::MachOObjectFile &file);
ImagePart partOf(const llvm::object::ELF64LEObjectFile &file);

/// The property list that the file has in itself; "" when it has none.
std::string embeddedPropertyList(const llvm::object::MachOObjectFile &file);

} // namespace zkthost
