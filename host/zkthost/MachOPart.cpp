#include "host/zkthost/ImageParts.h"

#include <llvm/ADT/StringExtras.h>
#include <llvm/BinaryFormat/MachO.h>
#include <llvm/Support/Endian.h>

#include <algorithm>
#include <map>

namespace zkthost {

namespace {

namespace macho = llvm::MachO;
using llvm::StringRef;
using LoadCommand = llvm::object::MachOObjectFile::LoadCommandInfo;

struct Kind {
    std::uint32_t type;
    const char *name;
};
constexpr Kind kinds[] = {
    {macho::MH_EXECUTE, "program"},        {macho::MH_DYLIB, "library"},
    {macho::MH_BUNDLE, "bundle"},          {macho::MH_OBJECT, "object file"},
    {macho::MH_DSYM, "debug information"},
};

std::string kindOf(std::uint32_t type) {
    for (const Kind &kind : kinds)
        if (kind.type == type)
            return kind.name;
    return "file type " + std::to_string(type);
}

/// 0x000A0904 is 10.9.4.
std::string version(std::uint32_t packed) {
    std::string text = std::to_string(packed >> 16) + '.' + std::to_string((packed >> 8) & 0xFF);
    return (packed & 0xFF) == 0 ? text : text + '.' + std::to_string(packed & 0xFF);
}

std::string uuidOf(const llvm::object::MachOObjectFile &file) {
    std::string text;
    for (const std::uint8_t byte : file.getUuid()) {
        if (text.size() == 8 || text.size() == 13 || text.size() == 18 || text.size() == 23)
            text += '-';
        text += llvm::toHex(byte);
    }
    return text;
}

bool isLibrary(std::uint32_t command) {
    switch (command) {
    case macho::LC_LOAD_DYLIB:
    case macho::LC_LOAD_WEAK_DYLIB:
    case macho::LC_REEXPORT_DYLIB:
    case macho::LC_LAZY_LOAD_DYLIB:
    case macho::LC_LOAD_UPWARD_DYLIB:
        return true;
    default:
        return false;
    }
}

/// A number of four bytes in the byte order of signatures; 0 beyond the end.
std::uint32_t numberAt(StringRef bytes, std::uint64_t offset) {
    return offset + 4 <= bytes.size() ? llvm::support::endian::read32be(bytes.data() + offset) : 0;
}

StringRef textAt(StringRef bytes, std::uint64_t offset) {
    return bytes.substr(offset).take_until([](char c) { return c == '\0'; });
}

/// A signature is a table of blobs; which of them is what, is told by the slot that it lies in.
SignatureFact signatureOf(StringRef bytes) {
    constexpr std::uint64_t tableStart = 12;
    constexpr std::uint64_t entrySize = 8;
    constexpr std::uint64_t smallestBlob = 8;
    constexpr std::uint64_t flagsOffset = 12;
    constexpr std::uint64_t identifierOffset = 20;
    SignatureFact fact{.isAdHoc = true, .identifier = {}};
    const std::uint64_t count =
        std::min<std::uint64_t>(numberAt(bytes, 8), bytes.size() / entrySize);
    for (std::uint64_t i = 0; i < count; ++i) {
        const std::uint32_t slot = numberAt(bytes, tableStart + i * entrySize);
        const StringRef blob = bytes.substr(numberAt(bytes, tableStart + i * entrySize + 4));
        if (slot == macho::CSSLOT_CODEDIRECTORY) {
            fact.isAdHoc = (numberAt(blob, flagsOffset) & macho::CS_ADHOC) != 0;
            fact.identifier = textAt(blob, numberAt(blob, identifierOffset)).str();
        } else if (slot == macho::CSSLOT_SIGNATURESLOT && numberAt(blob, 4) > smallestBlob) {
            fact.isAdHoc = false;
        }
    }
    return fact;
}

void readCommand(const llvm::object::MachOObjectFile &file, const LoadCommand &command,
                 ImagePart &part) {
    if (isLibrary(command.C.cmd)) {
        const macho::dylib_command library = file.getDylibIDLoadCommand(command);
        part.libraries.push_back({.name = command.Ptr + library.dylib.name,
                                  .isWeak = command.C.cmd == macho::LC_LOAD_WEAK_DYLIB});
    } else if (command.C.cmd == macho::LC_VERSION_MIN_MACOSX) {
        const macho::version_min_command least = file.getVersionMinLoadCommand(command);
        part.leastSystem = version(least.version);
        part.builtFor = version(least.sdk);
    } else if (command.C.cmd == macho::LC_BUILD_VERSION) {
        const macho::build_version_command build = file.getBuildVersionLoadCommand(command);
        part.leastSystem = version(build.minos);
        part.builtFor = version(build.sdk);
    } else if (command.C.cmd == macho::LC_CODE_SIGNATURE) {
        const macho::linkedit_data_command place = file.getLinkeditDataLoadCommand(command);
        part.signature = signatureOf(file.getData().substr(place.dataoff, place.datasize));
    }
}

/// Undefined symbols, under the libraries that they are bound to. Those that are looked up
/// everywhere go under one without a name.
void readImports(const llvm::object::MachOObjectFile &file, ImagePart &part) {
    std::vector<ImportFact> elsewhere;
    for (const llvm::object::SymbolRef &symbol : file.symbols()) {
        const macho::nlist_64 entry = file.getSymbol64TableEntry(symbol.getRawDataRefImpl());
        if ((entry.n_type & macho::N_STAB) != 0 || (entry.n_type & macho::N_TYPE) != macho::N_UNDF)
            continue;
        auto name = symbol.getName();
        if (!name) {
            llvm::consumeError(name.takeError());
            continue;
        }
        name->consume_front("_");
        const std::size_t ordinal = macho::GET_LIBRARY_ORDINAL(entry.n_desc);
        const bool isNumbered = ordinal >= 1 && ordinal <= part.libraries.size();
        (isNumbered ? part.libraries[ordinal - 1].imports : elsewhere)
            .push_back({.name = name->str(), .isWeak = (entry.n_desc & macho::N_WEAK_REF) != 0});
    }
    if (!elsewhere.empty())
        part.libraries.push_back({.name = "", .imports = std::move(elsewhere)});
}

} // namespace

ImagePart partOf(const llvm::object::MachOObjectFile &file) {
    const char *processor = nullptr;
    const char *arch = nullptr;
    const bool is64Bit = file.is64Bit();
    const std::uint32_t type = is64Bit ? file.getHeader64().cputype : file.getHeader().cputype;
    const std::uint32_t subtype =
        is64Bit ? file.getHeader64().cpusubtype : file.getHeader().cpusubtype;
    llvm::object::MachOObjectFile::getArchTriple(type, subtype, &processor, &arch);
    ImagePart part{.processor = arch != nullptr ? arch : "processor " + std::to_string(type),
                   .kind = kindOf(file.getHeader().filetype)};
    if (file.getUuid().size() == 16)
        part.identity = uuidOf(file);
    for (const LoadCommand &command : file.load_commands())
        readCommand(file, command, part);
    if (is64Bit)
        readImports(file, part);
    return part;
}

std::string embeddedPropertyList(const llvm::object::MachOObjectFile &file) {
    for (const llvm::object::SectionRef &section : file.sections()) {
        auto name = section.getName();
        if (!name) {
            llvm::consumeError(name.takeError());
            continue;
        }
        if (*name != "__info_plist")
            continue;
        auto contents = section.getContents();
        if (contents)
            return contents->str();
        llvm::consumeError(contents.takeError());
    }
    return "";
}

} // namespace zkthost
