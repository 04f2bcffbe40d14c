// Mach-O files by their headers and tables, the same way on every system. Where a record has what,
// is told by its offset: the records differ in width and byte order from file to file.

#include "host/core/Text.h"
#include "host/zkthost/ImageParts.h"
#include "host/zkthost/MachOBytes.h"
#include "host/zkthost/MachOSignature.h"

#include <algorithm>
#include <array>

namespace zkthost {

namespace {

template <std::size_t Count>
using Names = std::array<std::pair<std::uint32_t, const char *>, Count>;

template <std::size_t Count>
std::string nameOf(std::uint32_t number, const Names<Count> &names, const char *otherwise) {
    for (const auto &[each, name] : names)
        if (each == number)
            return name;
    return std::string(otherwise) + ' ' + std::to_string(number);
}

constexpr Names<5> kinds{
    {{1, "object file"}, {2, "program"}, {6, "library"}, {8, "bundle"}, {10, "debug information"}}};

struct Processor {
    std::uint32_t type, subtype;
    const char *name;
};
constexpr std::array<Processor, 6> processors{{{0x01000007, 3, "x86_64"},
                                               {0x01000007, 8, "x86_64h"},
                                               {0x0100000C, 0, "arm64"},
                                               {0x0100000C, 2, "arm64e"},
                                               {7, 3, "i386"},
                                               {18, 0, "ppc"}}};

/// The subtype's highest byte has capabilities, which are no part of the name.
std::string processorName(std::uint32_t type, std::uint32_t subtype) {
    for (const Processor &each : processors)
        if (each.type == type && each.subtype == (subtype & 0x00FFFFFF))
            return each.name;
    return "processor " + std::to_string(type);
}

/// Where files of one width keep what is read of them.
struct Layout {
    std::uint32_t segmentCommand;
    std::uint64_t headerSize;
    std::uint64_t sectionCount, firstSection; ///< in a segment's command
    std::uint64_t sectionSize, size, offset;  ///< of and in a section
};
constexpr Layout of32Bits{.segmentCommand = 0x01,
                          .headerSize = 28,
                          .sectionCount = 48,
                          .firstSection = 56,
                          .sectionSize = 68,
                          .size = 36,
                          .offset = 40};
constexpr Layout of64Bits{.segmentCommand = 0x19,
                          .headerSize = 32,
                          .sectionCount = 64,
                          .firstSection = 72,
                          .sectionSize = 80,
                          .size = 40,
                          .offset = 48};

enum Command : std::uint32_t {
    symbolTable = 0x02,
    loadLibrary = 0x0C,
    uuid = 0x1B,
    codeSignature = 0x1D,
    loadLibraryLazily = 0x20,
    leastMacOS = 0x24,
    buildVersion = 0x32,
    loadLibraryWeakly = 0x80000018,
    exportLibraryAgain = 0x8000001F,
    loadLibraryAbove = 0x80000023,
};

/// 0x000A0904 is 10.9.4.
std::string version(std::uint32_t packed) {
    const std::string text =
        std::to_string(packed >> 16) + '.' + std::to_string((packed >> 8) & 0xFF);
    return (packed & 0xFF) == 0 ? text : text + '.' + std::to_string(packed & 0xFF);
}

std::string uuidAt(const MachOBytes &command) {
    std::string text;
    for (std::uint64_t i = 0; i < 16; ++i) {
        if (i == 4 || i == 6 || i == 8 || i == 10)
            text += '-';
        text += host::hexadecimal(command.byte(8 + i), 2);
    }
    return text;
}

class Reader {
public:
    explicit Reader(const MachOBytes &file)
        : file_(file), is64Bit_((file.word(0) & 1) != 0), layout_(is64Bit_ ? of64Bits : of32Bits) {}

    MachOPart read() {
        part_.facts = {.processor = processorName(file_.word(4), file_.word(8)),
                       .kind = nameOf(file_.word(12), kinds, "file type")};
        std::uint64_t place = layout_.headerSize;
        for (std::uint32_t left = file_.word(16); left > 0; --left) {
            const std::uint32_t size = file_.word(place + 4);
            readCommand(file_.word(place), file_.range(place, size));
            place += size;
        }
        if (is64Bit_)
            readImports();
        return std::move(part_);
    }

private:
    void readCommand(std::uint32_t kind, const MachOBytes &command) {
        ImagePart &facts = part_.facts;
        switch (kind) {
        case loadLibrary:
        case loadLibraryLazily:
        case loadLibraryWeakly:
        case loadLibraryAbove:
        case exportLibraryAgain:
            facts.libraries.push_back(
                {.name = command.text(command.word(8)), .isWeak = kind == loadLibraryWeakly});
            break;
        case leastMacOS:
            facts.leastSystem = version(command.word(8));
            facts.builtFor = version(command.word(12));
            break;
        case buildVersion:
            facts.leastSystem = version(command.word(12));
            facts.builtFor = version(command.word(16));
            break;
        case uuid:
            facts.identity = uuidAt(command);
            break;
        case codeSignature:
            facts.signature = signatureOf(file_.range(command.word(8), command.word(12)).all());
            break;
        case symbolTable:
            symbols_ = command.word(8);
            symbolCount_ = command.word(12);
            names_ = command.word(16);
            break;
        default:
            if (kind == layout_.segmentCommand)
                readSections(command);
        }
    }

    void readSections(const MachOBytes &segment) {
        for (std::uint32_t i = 0; i < segment.word(layout_.sectionCount); ++i) {
            const MachOBytes section =
                segment.range(layout_.firstSection + i * layout_.sectionSize, layout_.sectionSize);
            if (section.shortName(0) != "__info_plist")
                continue;
            const std::uint64_t size =
                is64Bit_ ? section.doubleWord(layout_.size) : section.word(layout_.size);
            part_.propertyList = file_.range(section.word(layout_.offset), size).all();
        }
    }

    /// Undefined symbols, under the libraries that they are bound to. Those that are looked up
    /// everywhere go under one without a name.
    void readImports() {
        constexpr std::uint64_t symbolSize = 16;
        constexpr std::uint8_t debugging = 0xE0;
        constexpr std::uint8_t kind = 0x0E;
        constexpr std::uint16_t weakReference = 0x40;
        std::vector<LibraryFact> &libraries = part_.facts.libraries;
        std::vector<ImportFact> elsewhere;
        for (std::uint32_t i = 0; i < symbolCount_; ++i) {
            const MachOBytes symbol = file_.range(symbols_ + i * symbolSize, symbolSize);
            if ((symbol.byte(4) & (debugging | kind)) != 0)
                continue;
            const std::string name = file_.text(names_ + std::uint64_t{symbol.word(0)});
            const std::uint16_t description = symbol.half(6);
            const std::size_t ordinal = description >> 8;
            const bool isNumbered = ordinal >= 1 && ordinal <= libraries.size();
            (isNumbered ? libraries[ordinal - 1].imports : elsewhere)
                .push_back({.name = name.starts_with('_') ? name.substr(1) : name,
                            .isWeak = (description & weakReference) != 0});
        }
        if (!elsewhere.empty())
            libraries.push_back({.name = "", .imports = std::move(elsewhere)});
    }

    MachOBytes file_;
    bool is64Bit_;
    Layout layout_;
    MachOPart part_;
    std::uint64_t symbols_ = 0;
    std::uint32_t symbolCount_ = 0;
    std::uint64_t names_ = 0;
};

/// A file for one processor. Its magic says the byte order, and with its last bit the width.
MachOPart partOf(std::string_view bytes) {
    const std::uint32_t magic = MachOBytes(bytes, true).word(0);
    if (magic == 0xFEEDFACE || magic == 0xFEEDFACF)
        return Reader({bytes, true}).read();
    if (magic == 0xCEFAEDFE || magic == 0xCFFAEDFE)
        return Reader({bytes, false}).read();
    throw InputError("not a Mach-O file");
}

} // namespace

std::vector<MachOPart> machOParts(std::string_view bytes) {
    const MachOBytes file(bytes, true);
    const std::uint32_t magic = file.word(0);
    const bool isWide = magic == 0xCAFEBABF;
    if (magic != 0xCAFEBABE && !isWide)
        return {partOf(bytes)};
    std::vector<MachOPart> parts;
    for (std::uint64_t i = 0; i < file.word(4); ++i) {
        const MachOBytes entry = file.from(8 + i * (isWide ? 32 : 20));
        const std::uint64_t offset = isWide ? entry.doubleWord(8) : entry.word(8);
        const std::uint64_t size = isWide ? entry.doubleWord(16) : entry.word(12);
        parts.push_back(partOf(file.range(offset, size).all()));
    }
    return parts;
}

} // namespace zkthost
