#include "host/image/ImageFiles.h"

#include "host/processor/Processor.h"

#include <llvm/Object/ELFObjectFile.h>

#include <dlfcn.h>
#include <link.h>
#include <sys/mman.h>
#include <unistd.h>

#include <algorithm>
#include <cstdint>
#include <cstring>

namespace host {

namespace {

using ElfFile = llvm::object::ELF64LEObjectFile;

template <typename Result>
Result must(llvm::Expected<Result> result, const std::filesystem::path &file) {
    if (!result)
        throw ImageError(file, "damaged: " + llvm::toString(result.takeError()));
    return std::move(*result);
}

struct Range {
    std::uint64_t begin, end;
    [[nodiscard]] bool contains(std::uint64_t address) const {
        return address >= begin && address < end;
    }
};

/// What is read from the file before any of its code may run.
class ElfPlan {
public:
    explicit ElfPlan(const std::filesystem::path &file) : file_(file) {
        binary_ = must(llvm::object::ObjectFile::createObjectFile(file.string()), file);
        elf_ = llvm::dyn_cast<ElfFile>(binary_.getBinary());
        if (elf_ == nullptr || elf_->getELFFile().getHeader().e_machine != processor::elfMachine ||
            elf_->getELFFile().getHeader().e_type != ET_DYN)
            throw ImageError(file, "no shared object for " + std::string(processor::name));
        for (const auto &header : must(elf_->getELFFile().program_headers(), file)) {
            const Range range{header.p_vaddr, header.p_vaddr + header.p_memsz};
            if (header.p_type == PT_LOAD) {
                // A page past the end of the file would end the process, not the loading.
                const std::uint64_t size = elf_->getELFFile().getBufSize();
                if (header.p_filesz > size || header.p_offset > size - header.p_filesz)
                    throw ImageError(file, "damaged: a segment passes the end of the file");
                segments.push_back(range);
            }
            if (header.p_type == PT_GNU_RELRO)
                readOnlyAfterRelocation.push_back(range);
        }
        for (const auto symbol : elf_->getDynamicSymbolIterators())
            readDynamicSymbol(symbol);
    }

    struct Import {
        std::string name;
        bool weak;
    };
    std::vector<Import> imports;
    bool hasEntryPoint = false;
    std::vector<Range> segments;
    std::vector<Range> readOnlyAfterRelocation;

    /// Offsets of the words that the dynamic linker fills with a symbol's address.
    [[nodiscard]] std::vector<std::uint64_t> slotsOf(const std::string &name) const;
    /// Every symbol defined here, at its address once the image is loaded.
    [[nodiscard]] std::vector<ImageSymbol> symbolsAt(std::uint64_t base) const;

private:
    void readDynamicSymbol(const llvm::object::ELFSymbolRef &symbol) {
        const std::string name = must(symbol.getName(), file_).str();
        const std::uint32_t flags = must(symbol.getFlags(), file_);
        if ((flags & llvm::object::SymbolRef::SF_Undefined) != 0) {
            if (!name.empty())
                imports.push_back({name, symbol.getBinding() == STB_WEAK});
        } else if (name == entryPointName) {
            hasEntryPoint = true;
        }
    }

    std::filesystem::path file_;
    llvm::object::OwningBinary<llvm::object::ObjectFile> binary_;
    const ElfFile *elf_ = nullptr;
};

std::vector<std::uint64_t> ElfPlan::slotsOf(const std::string &name) const {
    std::vector<std::uint64_t> slots;
    for (const auto section : binary_.getBinary()->dynamic_relocation_sections())
        for (const llvm::object::ELFRelocationRef relocation : section.relocations()) {
            if (std::ranges::find(processor::elfAddresses, relocation.getType()) ==
                processor::elfAddresses.end())
                continue;
            const auto symbol = relocation.getSymbol();
            if (symbol != elf_->symbol_end() && must(symbol->getName(), file_) == name)
                slots.push_back(relocation.getOffset());
        }
    return slots;
}

std::vector<ImageSymbol> ElfPlan::symbolsAt(std::uint64_t base) const {
    std::vector<ImageSymbol> result;
    const auto add = [&](const llvm::object::ELFSymbolRef &symbol) {
        const std::uint32_t flags = must(symbol.getFlags(), file_);
        const std::uint8_t type = symbol.getELFType();
        if ((flags & llvm::object::SymbolRef::SF_Undefined) != 0 || type == STT_SECTION ||
            type == STT_FILE || type == STT_TLS)
            return;
        std::string name = must(symbol.getName(), file_).str();
        if (!name.empty())
            result.push_back({std::move(name),
                              reinterpret_cast<void *>(base + must(symbol.getAddress(), file_))});
    };
    const llvm::object::ELFObjectFileBase &file = *elf_;
    for (const llvm::object::ELFSymbolRef symbol : file.symbols())
        add(symbol);
    // A stripped file still has the symbols that the dynamic linker needs.
    if (result.empty())
        for (const llvm::object::ELFSymbolRef symbol : file.getDynamicSymbolIterators())
            add(symbol);
    return result;
}

/// Makes a weak import look absent, as if the dynamic linker had found nothing.
void withhold(const ElfPlan &plan, std::uint64_t base, std::uint64_t slot) {
    const auto pageSize = static_cast<std::uint64_t>(sysconf(_SC_PAGESIZE));
    auto *const word = reinterpret_cast<void *>(base + slot);
    auto *const page = reinterpret_cast<void *>((base + slot) & ~(pageSize - 1));
    const bool isSealed = std::ranges::any_of(
        plan.readOnlyAfterRelocation, [&](const Range &range) { return range.contains(slot); });
    if (isSealed)
        mprotect(page, pageSize, PROT_READ | PROT_WRITE);
    const std::uintptr_t nothing = 0;
    std::memcpy(word, &nothing, sizeof nothing);
    if (isSealed)
        mprotect(page, pageSize, PROT_READ);
}

class ElfImage final : public Image {
public:
    ElfImage(std::filesystem::path path, const ElfPlan &plan, std::uint64_t base, EntryPoint entry)
        : path_(std::move(path)), base_(base), segments_(plan.segments), entry_(entry),
          symbols_(plan.symbolsAt(base)) {}

    [[nodiscard]] ImageFormat format() const override { return ImageFormat::elf; }
    [[nodiscard]] const std::filesystem::path &file() const override { return path_; }
    [[nodiscard]] const std::vector<ImageSymbol> &symbols() const override { return symbols_; }
    [[nodiscard]] EntryPoint entryPoint() const override { return entry_; }
    [[nodiscard]] std::span<const std::byte> memory() const override {
        const std::uint64_t end = std::ranges::max(segments_, {}, &Range::end).end;
        return {reinterpret_cast<const std::byte *>(base_), end};
    }
    bool contains(const void *address) const override {
        const std::uint64_t offset = reinterpret_cast<std::uint64_t>(address) - base_;
        return std::ranges::any_of(segments_,
                                   [&](const Range &range) { return range.contains(offset); });
    }

private:
    std::filesystem::path path_;
    std::uint64_t base_;
    std::vector<Range> segments_;
    EntryPoint entry_;
    std::vector<ImageSymbol> symbols_;
};

} // namespace

std::unique_ptr<Image> openElfImage(const std::filesystem::path &file,
                                    const ImageOptions &options) {
    const ElfPlan plan(file);
    if (!plan.hasEntryPoint)
        throw ImageError(file, std::string("no plug-in: it does not export ") + entryPointName);
    for (const ElfPlan::Import &import : plan.imports)
        if (!import.weak && options.withheldImports.contains(import.name))
            throw ImageError(file, "imports that this system does not have: " + import.name);

    void *handle = dlopen(file.c_str(), RTLD_NOW | RTLD_LOCAL);
    if (handle == nullptr)
        throw ImageError(file, std::string("cannot be loaded: ") + dlerror());
    const link_map *map = nullptr;
    dlinfo(handle, RTLD_DI_LINKMAP, static_cast<void *>(&map));
    const auto base = static_cast<std::uint64_t>(map->l_addr);
    for (const std::string &name : options.withheldImports)
        for (const std::uint64_t slot : plan.slotsOf(name))
            withhold(plan, base, slot);
    const auto entry = reinterpret_cast<EntryPoint>(dlsym(handle, entryPointName));
    return std::make_unique<ElfImage>(file, plan, base, entry);
}

} // namespace host
