#include "macos/loader/MachOFile.h"

#include "macos/loader/CompactUnwind.h"
#include "macos/loader/ExportTrie.h"
#include "macos/loader/Fixups.h"
#include "macos/loader/LoadCommands.h"
#include "macos/loader/MachHeader.h"
#include "macos/loader/Messages.h"

#include "llvm/BinaryFormat/MachO.h"
#include "llvm/Object/MachOUniversal.h"
#include "llvm/Support/MemoryBuffer.h"

#include <algorithm>
#include <array>
#include <cstring>

namespace macho {
namespace {

namespace format = llvm::MachO;

Bytes bytesOf(const llvm::MemoryBuffer &buffer) {
    return {reinterpret_cast<const std::uint8_t *>(buffer.getBufferStart()),
            buffer.getBufferSize()};
}

bool isUniversal(Bytes file) {
    const auto magic = readAt<std::uint32_t>(file, 0).value_or(0);
    return magic == format::FAT_CIGAM || magic == format::FAT_CIGAM_64;
}

/// Replaces a universal file by its part for `processor`.
void selectArchitecture(std::unique_ptr<llvm::MemoryBuffer> &file, const Processor &processor,
                        const Reporter &reporter) {
    auto universal = llvm::object::MachOUniversalBinary::create(file->getMemBufferRef());
    if (!universal)
        reporter.fail("universal header", llvm::toString(universal.takeError()));
    std::string others;
    for (const auto &part : (*universal)->objects()) {
        const Bytes whole = bytesOf(*file);
        if (!rangeFits(part.getOffset(), part.getSize(), whole.size()))
            reporter.fail("universal header",
                          "a part takes " + byteRange(part.getOffset(), part.getSize()) +
                              " of the file, which ends at " + hex(whole.size()));
        if (processor.runs(part.getCPUType(), part.getCPUSubType())) {
            file = llvm::MemoryBuffer::getMemBufferCopy(
                file->getBuffer().substr(part.getOffset(), part.getSize()));
            return;
        }
        others += (others.empty() ? "" : ", ") +
                  architectureName(part.getCPUType(), part.getCPUSubType());
    }
    reporter.fail("universal header", "the file is for " + (others.empty() ? "nothing" : others) +
                                          "; " + processor.wanted());
}

/// What only images with classes, thread-local variables and the like have.
void rejectUnsupportedSections(const ImagePlan &plan, const Reporter &reporter) {
    struct Unsupported {
        std::string_view section, what;
    };
    static constexpr std::array<Unsupported, 8> unsupported = {{
        {"__objc_classlist", "Objective-C classes"},
        {"__objc_nlclslist", "Objective-C classes with +load"},
        {"__objc_catlist", "Objective-C categories"},
        {"__objc_nlcatlist", "Objective-C categories with +load"},
        {"__objc_protolist", "Objective-C protocols"},
        {"__objc_protorefs", "references to Objective-C protocols"},
        {"__objc_superrefs", "sends to super"},
        {"__interpose", "interposed functions"},
    }};
    for (const auto &section : plan.sections) {
        if (section.size == 0)
            continue;
        if (section.type >= format::S_THREAD_LOCAL_REGULAR &&
            section.type <= format::S_THREAD_LOCAL_INIT_FUNCTION_POINTERS)
            reporter.fail("section " + section.name, "thread-local variables are not supported");
        const auto name = std::string_view(section.name).substr(section.name.find(',') + 1);
        for (const auto &[rejected, what] : unsupported)
            if (name == rejected)
                reporter.fail("section " + section.name,
                              std::string(what) + " in the image are not supported");
    }
}

void readSymbols(const LoadCommands &commands, const Reporter &reporter, ImagePlan &plan) {
    const auto &strings = commands.stringTable;
    const std::string_view text(reinterpret_cast<const char *>(strings.data()), strings.size());
    const auto count = commands.symbolTable.size() / sizeof(format::nlist_64);
    for (std::size_t index = 0; index < count; ++index) {
        const auto symbol =
            recordAt<format::nlist_64>(commands.symbolTable, index * sizeof(format::nlist_64));
        if (symbol.n_type & format::N_STAB || (symbol.n_type & format::N_TYPE) != format::N_SECT)
            continue;
        const auto where = "symbol " + std::to_string(index);
        const auto end = text.find('\0', symbol.n_strx);
        if (end == text.npos)
            reporter.fail(where, "its name at " + hex(symbol.n_strx) +
                                     " of the string table does not end within it");
        const auto name = publicName(text.substr(symbol.n_strx, end - symbol.n_strx));
        const auto offset = symbol.n_value - commands.baseAddress;
        if (offset > plan.size)
            reporter.fail(where, std::string(name) + " is at " + hex(symbol.n_value) +
                                     ", outside the image");
        plan.symbols.push_back({std::string(name), offset});
    }
}

/// Notes the pointers of `section` as image offsets.
void readSlots(const Section &section, std::vector<std::uint64_t> &slots) {
    for (std::uint64_t at = 0; at + sizeof(void *) <= section.size; at += sizeof(void *))
        slots.push_back(section.offset + at);
}

void readSections(const Reporter &reporter, ImagePlan &plan) {
    for (const auto &section : plan.sections) {
        if (section.type == format::S_MOD_INIT_FUNC_POINTERS)
            readSlots(section, plan.initialisers);
        if (section.name.ends_with(",__objc_selrefs"))
            readSlots(section, plan.selectorSlots);
        if (section.type != format::S_INIT_FUNC_OFFSETS)
            continue;
        for (std::uint64_t at = 0; at + sizeof(std::uint32_t) <= section.size;
             at += sizeof(std::uint32_t))
            plan.initialiserOffsets.push_back(recordAt<std::uint32_t>(section.content, at));
    }
    for (const auto offset : plan.initialiserOffsets)
        if (!plan.isCode(offset))
            reporter.fail("initialisers", "there is no code at " + hex(offset));
}

/// What is read when an exception passes must be there by then.
void checkUnwindTable(const ImagePlan &plan, const Reporter &reporter) {
    for (const auto &record : plan.unwind.records) {
        const auto where = "the unwind record of the function at " + hex(record.start);
        if (record.personalitySlot != 0 && !plan.isReadable(record.personalitySlot, sizeof(void *)))
            reporter.fail(where, "the pointer to its personality at " +
                                     hex(record.personalitySlot) + " lies in no readable segment");
        if (record.languageData != 0 && !plan.isReadable(record.languageData, 1))
            reporter.fail(where, "its handler table at " + hex(record.languageData) +
                                     " lies in no readable segment");
    }
}

void readUnwindTable(const LoadCommands &commands, const Processor &processor,
                     const Reporter &reporter, ImagePlan &plan) {
    DwarfFrames frames;
    if (const auto *section = plan.section("__TEXT,__eh_frame"))
        frames = readDwarfFrames(section->content, section->offset, commands.baseAddress, plan.size,
                                 reporter);
    if (const auto *section = plan.section("__TEXT,__unwind_info")) {
        const auto text = std::ranges::find(plan.segments, "__TEXT", &Segment::name);
        const UnwindSource source{plan.size, section->content, text->offset, text->content};
        plan.unwind = translateCompactUnwind(source, processor, frames, reporter);
        return;
    }
    plan.unwind.commons = std::move(frames.commons);
    for (auto &[start, record] : frames.records)
        plan.unwind.records.push_back(std::move(record));
}

ImagePlan planImage(Bytes file, std::string source, const Processor &processor) {
    const Reporter reporter(source);
    const auto commands = readLoadCommands(file, processor, reporter);
    ImagePlan plan;
    plan.source = std::move(source);
    plan.size = commands.imageSize;
    plan.pageSize = processor.pageSize;
    plan.segments = commands.segments;
    plan.sections = commands.sections;
    rejectUnsupportedSections(plan, reporter);
    readSections(reporter, plan);
    plan.exports = readExportTrie(commands.exportTable, plan.size, reporter);
    readFixups(file, commands, reporter, plan);
    readSymbols(commands, reporter, plan);
    readUnwindTable(commands, processor, reporter, plan);
    checkUnwindTable(plan, reporter);
    return plan;
}

} // namespace

const Section *ImagePlan::section(std::string_view name) const {
    const auto found = std::ranges::find(sections, name, &Section::name);
    return found == sections.end() ? nullptr : &*found;
}

bool ImagePlan::isReadable(std::uint64_t offset, std::uint64_t length) const {
    return std::ranges::any_of(segments, [&](const Segment &segment) {
        return segment.readable && offset >= segment.offset &&
               rangeFits(offset - segment.offset, length, segment.size);
    });
}

bool ImagePlan::isCode(std::uint64_t offset) const {
    return std::ranges::any_of(segments, [&](const Segment &segment) {
        return segment.executable && offset >= segment.offset &&
               offset - segment.offset < segment.content.size();
    });
}

bool ImagePlan::isText(std::uint64_t offset) const {
    return std::ranges::any_of(segments, [&](const Segment &segment) {
        return !segment.takesFixups && offset >= segment.offset &&
               offset - segment.offset < segment.content.size() &&
               std::memchr(segment.content.data() + (offset - segment.offset), 0,
                           segment.content.size() - (offset - segment.offset)) != nullptr;
    });
}

MachOFile MachOFile::open(const std::filesystem::path &file, const Processor &processor) {
    const Reporter reporter(file.string());
    std::error_code error;
    const auto status = std::filesystem::status(file, error);
    if (!std::filesystem::exists(status))
        reporter.fail("there is no such file");
    if (std::filesystem::is_directory(status))
        reporter.fail("a folder, not a file; a bundle's image is the file in its Contents/MacOS");
    if (!std::filesystem::is_regular_file(status))
        reporter.fail("not a regular file");
    // Volatile: read at once, so that a file that shrinks meanwhile is no trap.
    auto bytes = llvm::MemoryBuffer::getFile(file.string(), /*IsText=*/false,
                                             /*RequiresNullTerminator=*/true, /*IsVolatile=*/true);
    if (!bytes)
        reporter.fail("cannot be read: " + bytes.getError().message());
    return {std::move(*bytes), file.string(), processor};
}

MachOFile MachOFile::parse(Bytes contents, std::string source, const Processor &processor) {
    const llvm::StringRef text(reinterpret_cast<const char *>(contents.data()), contents.size());
    return {llvm::MemoryBuffer::getMemBufferCopy(text), std::move(source), processor};
}

MachOFile::MachOFile(std::unique_ptr<llvm::MemoryBuffer> bytes, std::string source,
                     const Processor &processor)
    : bytes_(std::move(bytes)) {
    if (isUniversal(bytesOf(*bytes_)))
        selectArchitecture(bytes_, processor, Reporter(source));
    plan_ = planImage(bytesOf(*bytes_), std::move(source), processor);
}

MachOFile::MachOFile(MachOFile &&) noexcept = default;
MachOFile &MachOFile::operator=(MachOFile &&) noexcept = default;
MachOFile::~MachOFile() = default;

} // namespace macho
