#pragma once

#include "macos/loader/ImagePlan.h"

#include <filesystem>
#include <memory>
#include <string>

namespace llvm {
class MemoryBuffer;
}

namespace macho {

/// A Mach-O file that has been read and checked. Nothing of it has been run or mapped.
class MachOFile {
public:
    /// Reads a file. Throws LoadError when it cannot be read or cannot be loaded.
    static MachOFile open(const std::filesystem::path &file);
    /// The same with contents that are in memory already; they are copied. `source` names them in
    /// messages.
    static MachOFile parse(Bytes contents, std::string source);

    MachOFile(MachOFile &&) noexcept;
    MachOFile &operator=(MachOFile &&) noexcept;
    ~MachOFile();

    /// Its views refer to this object's bytes.
    [[nodiscard]] const ImagePlan &plan() const { return plan_; }

private:
    MachOFile(std::unique_ptr<llvm::MemoryBuffer> bytes, std::string source);

    std::unique_ptr<llvm::MemoryBuffer> bytes_;
    ImagePlan plan_;
};

} // namespace macho
