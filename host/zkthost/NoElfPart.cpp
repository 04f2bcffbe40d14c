// macOS loads no ELF files, and has nothing that reads them.

#include "host/zkthost/ImageParts.h"
#include "host/zkthost/Options.h"

namespace zkthost {

ImagePart elfPart(const std::filesystem::path & /*file*/) {
    throw InputError("an ELF file, which is not read on macOS");
}

} // namespace zkthost
