#pragma once

#include "macos/loader/ImagePlan.h"
#include "macos/loader/Processor.h"

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
    /// Reads a file; of a universal one, the part for `processor`. Throws LoadError when it cannot
    /// be read, is for another processor, or cannot be loaded.
    static MachOFile open(const std::filesystem::path &file,
                          const Processor &processor = Processor::ofThisProgram());
    /// The same with contents that are in memory already; they are copied. `source` names them in
    /// messages.
    static MachOFile parse(Bytes contents, std::string source,
                           const Processor &processor = Processor::ofThisProgram());

    MachOFile(MachOFile &&) noexcept;
    MachOFile &operator=(MachOFile &&) noexcept;
    ~MachOFile();

    /// Its views refer to this object's bytes.
    [[nodiscard]] const ImagePlan &plan() const { return plan_; }

private:
    MachOFile(std::unique_ptr<llvm::MemoryBuffer> bytes, std::string source,
              const Processor &processor);

    std::unique_ptr<llvm::MemoryBuffer> bytes_;
    ImagePlan plan_;
};

} // namespace macho
