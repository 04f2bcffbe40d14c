// Images on macOS: the system loads them. What the loader does elsewhere while it binds an image,
// to withhold imports and to let the program's own functions take the place of the platform's, is
// done to the bound image here.

#include "host/image/ImageFiles.h"

#include <dlfcn.h>
#include <mach-o/loader.h>
#include <mach-o/nlist.h>
#include <mach/mach.h>

#include <algorithm>
#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace host {

namespace {

namespace fs = std::filesystem;

struct Range {
    std::uintptr_t begin, end;
    [[nodiscard]] bool contains(std::uintptr_t address) const {
        return address >= begin && address < end;
    }
};

/// Pointers that dyld has filled, and the numbers of the symbols that they are for.
struct ImportSlots {
    std::span<void *> slots;
    std::span<const std::uint32_t> symbols;
};

/// A loaded file's headers and tables, where dyld has mapped them.
class LoadedFile {
public:
    explicit LoadedFile(const mach_header_64 &header);

    [[nodiscard]] bool contains(const void *address) const {
        return std::ranges::any_of(segments_, [&](const Range &segment) {
            return segment.contains(reinterpret_cast<std::uintptr_t>(address));
        });
    }
    [[nodiscard]] std::span<const std::byte> memory() const {
        const std::uintptr_t begin = std::ranges::min(segments_, {}, &Range::begin).begin;
        const std::uintptr_t end = std::ranges::max(segments_, {}, &Range::end).end;
        return {reinterpret_cast<const std::byte *>(begin), end - begin};
    }
    /// Every defined symbol.
    [[nodiscard]] std::vector<ImageSymbol> symbols() const;

    /// Calls found(name, isWeak, slot) for every import that goes through a pointer of its own.
    template <typename Found>
    void forEachImport(Found found) const;

private:
    template <typename Type>
    [[nodiscard]] std::span<Type> table(std::uint32_t fileOffset, std::size_t count) const {
        return {reinterpret_cast<Type *>(linkEdit_ + fileOffset), count};
    }
    void readSegment(const segment_command_64 &segment);
    void readImportSlots(const segment_command_64 &segment,
                         std::span<const std::uint32_t> indirect);
    [[nodiscard]] std::string_view nameOf(const nlist_64 &symbol) const {
        const std::string_view name = strings_ + symbol.n_un.n_strx;
        return name.starts_with('_') ? name.substr(1) : name;
    }

    std::uintptr_t slide_ = 0;
    std::uintptr_t linkEdit_ = 0; ///< where the file's first byte would be
    std::vector<Range> segments_;
    std::vector<ImportSlots> imports_;
    std::span<const nlist_64> symbols_;
    const char *strings_ = "";
};

template <typename Command>
const Command &as(const load_command &command) {
    return reinterpret_cast<const Command &>(command);
}

template <typename Visit>
void forEachCommand(const mach_header_64 &header, Visit visit) {
    const auto *place = reinterpret_cast<const std::byte *>(&header + 1);
    for (std::uint32_t i = 0; i < header.ncmds; ++i) {
        const auto &command = *reinterpret_cast<const load_command *>(place);
        visit(command);
        place += command.cmdsize;
    }
}

LoadedFile::LoadedFile(const mach_header_64 &header) {
    forEachCommand(header, [&](const load_command &command) {
        const auto &segment = as<segment_command_64>(command);
        if (command.cmd == LC_SEGMENT_64 && std::string_view(segment.segname) == SEG_TEXT)
            slide_ = reinterpret_cast<std::uintptr_t>(&header) - segment.vmaddr;
    });
    forEachCommand(header, [&](const load_command &command) {
        if (command.cmd == LC_SEGMENT_64)
            readSegment(as<segment_command_64>(command));
    });
    std::span<const std::uint32_t> indirect;
    forEachCommand(header, [&](const load_command &command) {
        if (command.cmd == LC_SYMTAB) {
            const auto &tables = as<symtab_command>(command);
            symbols_ = table<const nlist_64>(tables.symoff, tables.nsyms);
            strings_ = table<const char>(tables.stroff, tables.strsize).data();
        } else if (command.cmd == LC_DYSYMTAB) {
            const auto &tables = as<dysymtab_command>(command);
            indirect = table<const std::uint32_t>(tables.indirectsymoff, tables.nindirectsyms);
        }
    });
    forEachCommand(header, [&](const load_command &command) {
        if (command.cmd == LC_SEGMENT_64)
            readImportSlots(as<segment_command_64>(command), indirect);
    });
}

void LoadedFile::readSegment(const segment_command_64 &segment) {
    const std::uintptr_t begin = slide_ + segment.vmaddr;
    segments_.push_back({begin, begin + segment.vmsize});
    if (std::string_view(segment.segname) == SEG_LINKEDIT)
        linkEdit_ = begin - segment.fileoff;
}

void LoadedFile::readImportSlots(const segment_command_64 &segment,
                                 std::span<const std::uint32_t> indirect) {
    const std::span sections(reinterpret_cast<const section_64 *>(&segment + 1), segment.nsects);
    for (const section_64 &section : sections) {
        const std::uint32_t type = section.flags & SECTION_TYPE;
        if (type != S_LAZY_SYMBOL_POINTERS && type != S_NON_LAZY_SYMBOL_POINTERS)
            continue;
        const std::size_t count = section.size / sizeof(void *);
        imports_.push_back({{reinterpret_cast<void **>(slide_ + section.addr), count},
                            indirect.subspan(section.reserved1, count)});
    }
}

std::vector<ImageSymbol> LoadedFile::symbols() const {
    std::vector<ImageSymbol> result;
    for (const nlist_64 &symbol : symbols_)
        if ((symbol.n_type & N_STAB) == 0 && (symbol.n_type & N_TYPE) == N_SECT)
            result.push_back(
                {std::string(nameOf(symbol)), reinterpret_cast<void *>(slide_ + symbol.n_value)});
    return result;
}

template <typename Found>
void LoadedFile::forEachImport(Found found) const {
    for (const ImportSlots &import : imports_)
        for (std::size_t i = 0; i < import.slots.size(); ++i) {
            const std::uint32_t index = import.symbols[i];
            if ((index & (INDIRECT_SYMBOL_LOCAL | INDIRECT_SYMBOL_ABS)) != 0)
                continue;
            const nlist_64 &symbol = symbols_[index];
            found(nameOf(symbol), (symbol.n_desc & N_WEAK_REF) != 0, import.slots[i]);
        }
}

/// Writes to a pointer that may lie in memory which dyld has sealed.
void rebind(void *&slot, void *value) {
    const auto address = reinterpret_cast<vm_address_t>(&slot);
    const kern_return_t status = vm_protect(mach_task_self(), address, sizeof slot, 0,
                                            VM_PROT_READ | VM_PROT_WRITE | VM_PROT_COPY);
    if (status != KERN_SUCCESS)
        throw ImageError("an import's pointer cannot be written: " +
                         std::string(mach_error_string(status)));
    slot = value;
}

void rebindImports(const LoadedFile &loaded, const fs::path &file, const ImageOptions &options) {
    std::string missing;
    loaded.forEachImport([&](std::string_view name, bool isWeak, void *&slot) {
        if (options.withheldImports.contains(name)) {
            if (isWeak)
                rebind(slot, nullptr);
            else
                missing += (missing.empty() ? " " : ", ") + std::string(name);
        } else if (void *own = dlsym(RTLD_MAIN_ONLY, std::string(name).c_str())) {
            rebind(slot, own);
        }
    });
    if (!missing.empty())
        throw ImageError(file, "imports that this system does not have:" + missing);
}

class DyldImage final : public Image {
public:
    DyldImage(fs::path path, LoadedFile loaded, EntryPoint entry)
        : path_(std::move(path)), loaded_(std::move(loaded)), entry_(entry),
          symbols_(loaded_.symbols()) {}

    [[nodiscard]] ImageFormat format() const override { return ImageFormat::machO; }
    [[nodiscard]] const fs::path &file() const override { return path_; }
    [[nodiscard]] const std::vector<ImageSymbol> &symbols() const override { return symbols_; }
    [[nodiscard]] EntryPoint entryPoint() const override { return entry_; }
    [[nodiscard]] std::span<const std::byte> memory() const override { return loaded_.memory(); }
    bool contains(const void *address) const override { return loaded_.contains(address); }

private:
    fs::path path_;
    LoadedFile loaded_;
    EntryPoint entry_;
    std::vector<ImageSymbol> symbols_;
};

} // namespace

std::unique_ptr<Image> openMachOImage(const fs::path &file, const ImageOptions &options) {
    void *const handle = dlopen(file.c_str(), RTLD_NOW | RTLD_LOCAL);
    if (handle == nullptr)
        throw ImageError(file, std::string("cannot be loaded: ") + dlerror());
    void *const entry = dlsym(handle, entryPointName);
    Dl_info place{};
    if (entry == nullptr || dladdr(entry, &place) == 0)
        throw ImageError(file, std::string("no plug-in: it does not export ") + entryPointName);
    LoadedFile loaded(*static_cast<const mach_header_64 *>(place.dli_fbase));
    rebindImports(loaded, file, options);
    return std::make_unique<DyldImage>(file, std::move(loaded),
                                       reinterpret_cast<EntryPoint>(entry));
}

std::unique_ptr<Image> openElfImage(const fs::path &file, const ImageOptions & /*options*/) {
    throw ImageError(file, "an ELF file, which macOS does not load");
}

} // namespace host
