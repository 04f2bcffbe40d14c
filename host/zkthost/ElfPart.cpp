#include "host/zkthost/ImageParts.h"
#include "host/zkthost/Options.h"

#include <llvm/ADT/StringExtras.h>
#include <llvm/Object/BuildID.h>
#include <llvm/Object/ELFObjectFile.h>

namespace zkthost {

namespace {

using llvm::object::ELF64LE;
using File = llvm::object::ELFFile<ELF64LE>;

/// The value behind a tag of the dynamic table; 0 when it has none.
std::uint64_t dynamicValue(ELF64LE::DynRange entries, std::int64_t tag) {
    for (const auto &entry : entries)
        if (entry.d_tag == tag)
            return entry.d_un.d_val;
    return 0;
}

void readLibraries(const File &file, ImagePart &part) {
    auto entries = file.dynamicEntries();
    if (!entries) {
        llvm::consumeError(entries.takeError());
        return;
    }
    auto names = file.toMappedAddr(dynamicValue(*entries, llvm::ELF::DT_STRTAB));
    if (!names) {
        llvm::consumeError(names.takeError());
        return;
    }
    const std::uint64_t size = dynamicValue(*entries, llvm::ELF::DT_STRSZ);
    const auto *const end = file.base() + file.getBufSize();
    const llvm::StringRef table(reinterpret_cast<const char *>(*names),
                                std::min(size, static_cast<std::uint64_t>(end - *names)));
    for (const auto &entry : *entries)
        if (entry.d_tag == llvm::ELF::DT_NEEDED)
            part.libraries.push_back({.name = table.substr(entry.d_un.d_val)
                                                  .take_until([](char c) { return c == '\0'; })
                                                  .str()});
}

/// ELF binds by name alone.
void readImports(const llvm::object::ELF64LEObjectFile &file, ImagePart &part) {
    std::vector<ImportFact> imports;
    for (const llvm::object::ELFSymbolRef symbol : file.getDynamicSymbolIterators()) {
        auto flags = symbol.getFlags();
        auto name = symbol.getName();
        if (!flags || !name) {
            llvm::consumeError(flags.takeError());
            llvm::consumeError(name.takeError());
            continue;
        }
        if ((*flags & llvm::object::SymbolRef::SF_Undefined) != 0 && !name->empty())
            imports.push_back(
                {.name = name->str(), .isWeak = (*flags & llvm::object::SymbolRef::SF_Weak) != 0});
    }
    if (!imports.empty())
        part.libraries.push_back({.name = "", .imports = std::move(imports)});
}

/// In the words of Apple's compilers, which differ for one.
std::string processorOf(const llvm::object::ELF64LEObjectFile &file) {
    return file.getArch() == llvm::Triple::aarch64
               ? "arm64"
               : llvm::Triple::getArchTypeName(file.getArch()).str();
}

ImagePart partOf(const llvm::object::ELF64LEObjectFile &file) {
    const bool isShared = file.getELFFile().getHeader().e_type == llvm::ELF::ET_DYN;
    ImagePart part{.processor = processorOf(file), .kind = isShared ? "shared object" : "program"};
    if (const auto identity = llvm::object::getBuildID(&file); !identity.empty())
        part.identity = llvm::toHex(identity, true);
    readLibraries(file.getELFFile(), part);
    readImports(file, part);
    return part;
}

} // namespace

ImagePart elfPart(const std::filesystem::path &file) {
    auto opened = llvm::object::createBinary(file.string());
    if (!opened)
        throw InputError(llvm::toString(opened.takeError()));
    const auto *elf = llvm::dyn_cast<llvm::object::ELF64LEObjectFile>(opened->getBinary());
    if (elf == nullptr)
        throw InputError("an ELF file of 32 bits or of the other byte order");
    return partOf(*elf);
}

} // namespace zkthost
