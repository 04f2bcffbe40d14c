#include "macos/loader/LoadCommands.h"

#include "macos/loader/MachHeader.h"

#include "llvm/BinaryFormat/MachO.h"

#include <algorithm>
#include <string_view>

namespace macho {
namespace {

namespace format = llvm::MachO;

constexpr std::uint64_t largestImage = 1ULL << 30; // far beyond any bundle; a bound for damage

struct Command {
    std::uint32_t index = 0;
    std::uint32_t type = 0;
    std::uint64_t offset = 0;
    Bytes bytes;
};

std::string commandName(std::uint32_t type) {
    switch (type) {
#define HANDLE_LOAD_COMMAND(name, value, structure)                                                \
    case format::name:                                                                             \
        return #name;
#include "llvm/BinaryFormat/MachO.def"
    default:
        return "unknown type " + hex(type);
    }
}

/// The text of a name field that is 16 bytes long, or fills them without a terminator.
std::string fixedName(const char (&name)[16]) {
    return {name, strnlen(name, sizeof name)};
}

/// Reads one file's commands in the order in which they stand.
class CommandReader {
public:
    CommandReader(Bytes file, const Processor &processor, const Reporter &reporter)
        : file_(file), processor_(processor), reporter_(reporter) {}

    LoadCommands read() {
        const auto header = readHeader(file_, processor_, reporter_);
        std::uint64_t offset = sizeof header;
        const std::uint64_t end = offset + header.sizeofcmds;
        for (std::uint32_t index = 0; index < header.ncmds; ++index) {
            command_ = {index, 0, offset, {}};
            const auto head = readAt<format::load_command>(file_.first(end), offset);
            if (!head)
                fail("the header announces " + std::to_string(header.ncmds) +
                     " load commands, but they end at " + hex(end));
            command_.type = head->cmd;
            if (head->cmdsize < sizeof *head || head->cmdsize % 8 != 0)
                fail("its size is " + std::to_string(head->cmdsize) +
                     ", which is not a multiple of 8 that holds a load command");
            if (!rangeFits(offset, head->cmdsize, end))
                fail("it takes " + byteRange(offset, head->cmdsize) +
                     ", but the load commands end at " + hex(end));
            command_.bytes = file_.subspan(offset, head->cmdsize);
            readCommand();
            offset += head->cmdsize;
        }
        if (offset != end)
            reporter_.fail("header", "its " + std::to_string(header.ncmds) +
                                         " load commands end at " + hex(offset) + ", but it says " +
                                         hex(end));
        layOut();
        return std::move(result_);
    }

private:
    void readCommand();
    void readSegment();
    void readSection(const Segment &segment, std::uint64_t address, std::uint64_t offset);
    void readLibrary(bool weak);
    void readSymbolTable();
    void readDynamicSymbolTable() const;
    void readDyldInfo();
    void setExportTable(Bytes table);
    [[nodiscard]] Bytes linkEditData() const;
    void checkLinkEditData() const { static_cast<void>(linkEditData()); }
    void readPlatform() const;
    void layOut();

    template <class Record>
    [[nodiscard]] Record record() const {
        const auto found = readAt<Record>(command_.bytes, 0);
        if (!found)
            fail("its size is " + std::to_string(command_.bytes.size()) +
                 ", too small for its kind");
        return *found;
    }

    /// The bytes of the file in [offset, offset + size).
    [[nodiscard]] Bytes content(std::string_view what, std::uint64_t offset,
                                std::uint64_t size) const {
        checkContent(what, offset, size);
        return file_.subspan(offset, size);
    }

    void checkContent(std::string_view what, std::uint64_t offset, std::uint64_t size) const {
        if (!rangeFits(offset, size, file_.size()))
            fail(std::string(what) + " takes " + byteRange(offset, size) +
                 " of the file, which ends at " + hex(file_.size()));
    }

    [[noreturn]] void fail(std::string_view what) const {
        const auto name = command_.type == 0 ? "" : " (" + commandName(command_.type) + ")";
        reporter_.fail("load command " + std::to_string(command_.index) + name + " at " +
                           hex(command_.offset),
                       what);
    }

    Bytes file_;
    const Processor &processor_;
    const Reporter &reporter_;
    Command command_;
    LoadCommands result_;
    std::vector<std::uint64_t> addresses_; // of the segments, as linked
};

void CommandReader::readCommand() {
    switch (command_.type) {
    case format::LC_SEGMENT_64:
        return readSegment();
    case format::LC_LOAD_DYLIB:
    case format::LC_REEXPORT_DYLIB:
    case format::LC_LOAD_UPWARD_DYLIB:
    case format::LC_LAZY_LOAD_DYLIB:
        return readLibrary(false);
    case format::LC_LOAD_WEAK_DYLIB:
        return readLibrary(true);
    case format::LC_SYMTAB:
        return readSymbolTable();
    case format::LC_DYSYMTAB:
        return readDynamicSymbolTable();
    case format::LC_DYLD_INFO:
    case format::LC_DYLD_INFO_ONLY:
        return readDyldInfo();
    case format::LC_DYLD_CHAINED_FIXUPS:
        result_.hasChainedFixups = true;
        return checkLinkEditData();
    case format::LC_CODE_SIGNATURE:
    case format::LC_SEGMENT_SPLIT_INFO:
    case format::LC_FUNCTION_STARTS:
    case format::LC_DATA_IN_CODE:
    case format::LC_DYLIB_CODE_SIGN_DRS:
    case format::LC_LINKER_OPTIMIZATION_HINT:
    case format::LC_ATOM_INFO:
        return checkLinkEditData();
    case format::LC_DYLD_EXPORTS_TRIE:
        return setExportTable(linkEditData());
    case format::LC_BUILD_VERSION:
        return readPlatform();
    case format::LC_ENCRYPTION_INFO_64:
        if (record<format::encryption_info_command_64>().cryptid != 0)
            fail("the image is encrypted");
        return;
    case format::LC_VERSION_MIN_IPHONEOS:
    case format::LC_VERSION_MIN_TVOS:
    case format::LC_VERSION_MIN_WATCHOS:
        fail("the image is for another system than macOS");
    case format::LC_ID_DYLIB:
    case format::LC_RPATH:
        return; // needed by who links against or looks for the image
    case format::LC_SEGMENT:
    case format::LC_UNIXTHREAD:
    case format::LC_MAIN:
    case format::LC_ROUTINES:
    case format::LC_ROUTINES_64:
    case format::LC_FVMFILE:
    case format::LC_LOADFVMLIB:
    case format::LC_ENCRYPTION_INFO:
    case format::LC_FILESET_ENTRY:
        fail("not supported in a 64-bit bundle");
    default:
        if (command_.type & format::LC_REQ_DYLD)
            fail("not supported, and marked as needed to load the image");
    }
}

void CommandReader::readSegment() {
    const auto command = record<format::segment_command_64>();
    Segment segment;
    segment.name = fixedName(command.segname);
    if (!rangeFits(sizeof command, std::uint64_t{command.nsects} * sizeof(format::section_64),
                   command_.bytes.size()))
        fail("segment " + segment.name + ": " + std::to_string(command.nsects) +
             " sections do not fit into its " + std::to_string(command_.bytes.size()) + " bytes");
    segment.content = content("segment " + segment.name, command.fileoff, command.filesize);
    segment.size = command.vmsize;
    if (command.vmaddr % processor_.pageSize != 0)
        fail("segment " + segment.name + ": its address " + hex(command.vmaddr) +
             " is not the start of a page");
    if (command.filesize > command.vmsize)
        fail("segment " + segment.name + ": " + hex(command.filesize) + " bytes of the file for " +
             hex(command.vmsize) + " bytes of memory");
    if (!rangeFits(command.vmaddr, command.vmsize, UINT64_MAX - processor_.pageSize))
        fail("segment " + segment.name + " takes " + byteRange(command.vmaddr, command.vmsize) +
             " of memory, beyond what there is");

    const auto wants = [&](std::uint32_t protection) {
        return (command.initprot & protection) != 0;
    };
    segment.readable = wants(format::VM_PROT_READ);
    segment.executable = wants(format::VM_PROT_EXECUTE);
    segment.takesFixups = wants(format::VM_PROT_WRITE);
    segment.writable = segment.takesFixups && !(command.flags & format::SG_READ_ONLY);
    if (segment.takesFixups && segment.executable)
        fail("segment " + segment.name + " would be writable and executable");
    // The header is at the start of the file and tells where the image begins.
    if (command.fileoff == 0 && command.filesize != 0) {
        if (result_.baseAddress != 0 || !result_.segments.empty())
            fail("segment " + segment.name + " holds the header, but is not the first");
        result_.baseAddress = command.vmaddr;
    }
    for (std::uint32_t index = 0; index < command.nsects; ++index)
        readSection(segment, command.vmaddr, sizeof command + index * sizeof(format::section_64));
    addresses_.push_back(command.vmaddr);
    result_.segments.push_back(std::move(segment));
}

bool isZeroFilled(std::uint32_t type) {
    return type == format::S_ZEROFILL || type == format::S_GB_ZEROFILL ||
           type == format::S_THREAD_LOCAL_ZEROFILL;
}

void CommandReader::readSection(const Segment &segment, std::uint64_t address,
                                std::uint64_t offset) {
    const auto record = recordAt<format::section_64>(command_.bytes, offset);
    Section section;
    section.name = segment.name + "," + fixedName(record.sectname);
    section.type = record.flags & format::SECTION_TYPE;
    section.size = record.size;
    if (record.addr < address || !rangeFits(record.addr - address, record.size, segment.size))
        fail("section " + section.name + " takes " + byteRange(record.addr, record.size) +
             " of memory, outside its segment");
    if (!isZeroFilled(section.type)) {
        // Its place in the file follows from its place in memory; two stories would be one lie.
        const auto inSegment = record.addr - address;
        if (!rangeFits(inSegment, record.size, segment.content.size()))
            fail("section " + section.name + " takes " + byteRange(inSegment, record.size) +
                 " of its segment, which has " + hex(segment.content.size()) +
                 " bytes in the file");
        section.content = segment.content.subspan(inSegment, record.size);
        const auto inFile = static_cast<std::uint64_t>(section.content.data() - file_.data());
        if (record.size != 0 && inFile != record.offset)
            fail("section " + section.name + " is at " + hex(record.offset) +
                 " of the file, which is not where its address is mapped from");
    }
    section.offset = record.addr; // made relative once the base is known
    result_.sections.push_back(std::move(section));
}

void CommandReader::readLibrary(bool weak) {
    const auto command = record<format::dylib_command>();
    const auto start = command.dylib.name;
    if (start < sizeof command || start >= command_.bytes.size())
        fail("the library's name is at " + std::to_string(start) + ", outside the command");
    const auto *name = reinterpret_cast<const char *>(command_.bytes.data()) + start;
    const auto room = command_.bytes.size() - start;
    const auto length = strnlen(name, room);
    if (length == room)
        fail("the library's name does not end within the command");
    result_.libraries.push_back({{name, length}, weak});
}

void CommandReader::readSymbolTable() {
    const auto command = record<format::symtab_command>();
    result_.symbolTable = content("the symbol table", command.symoff,
                                  std::uint64_t{command.nsyms} * sizeof(format::nlist_64));
    result_.stringTable = content("the string table", command.stroff, command.strsize);
}

void CommandReader::readDynamicSymbolTable() const {
    const auto command = record<format::dysymtab_command>();
    if (command.nextrel != 0 || command.nlocrel != 0)
        fail("relocation entries of the old form are not supported");
    checkContent("the indirect symbol table", command.indirectsymoff,
                 std::uint64_t{command.nindirectsyms} * sizeof(std::uint32_t));
}

void CommandReader::readDyldInfo() {
    const auto command = record<format::dyld_info_command>();
    result_.rebaseTable = content("the rebase table", command.rebase_off, command.rebase_size);
    result_.bindTable = content("the bind table", command.bind_off, command.bind_size);
    result_.weakBindTable =
        content("the weak bind table", command.weak_bind_off, command.weak_bind_size);
    result_.lazyBindTable =
        content("the lazy bind table", command.lazy_bind_off, command.lazy_bind_size);
    setExportTable(content("the export table", command.export_off, command.export_size));
}

void CommandReader::setExportTable(Bytes table) {
    if (!result_.exportTable.empty() && !table.empty())
        fail("a second export table");
    if (!table.empty())
        result_.exportTable = table;
}

Bytes CommandReader::linkEditData() const {
    const auto command = record<format::linkedit_data_command>();
    return content("its data", command.dataoff, command.datasize);
}

void CommandReader::readPlatform() const {
    if (record<format::build_version_command>().platform != format::PLATFORM_MACOS)
        fail("the image is for another system than macOS");
}

/// Makes addresses relative to the header and checks that nothing overlaps.
void CommandReader::layOut() {
    auto &segments = result_.segments;
    const auto pageSize = processor_.pageSize;
    if (segments.empty() || segments.front().content.data() != file_.data() ||
        segments.front().content.size() < sizeof(format::mach_header_64))
        reporter_.fail("load commands", "no first segment that holds the header");
    std::vector<std::pair<std::uint64_t, std::uint64_t>> ranges;
    for (std::size_t index = 0; index < segments.size(); ++index) {
        auto &segment = segments[index];
        if (addresses_[index] < result_.baseAddress)
            reporter_.fail("load commands", "segment " + segment.name + " lies before the header");
        segment.offset = addresses_[index] - result_.baseAddress;
        if (!rangeFits(segment.offset, segment.size, largestImage))
            reporter_.fail("load commands", "segment " + segment.name + " takes " +
                                                byteRange(segment.offset, segment.size) +
                                                " of the image; no image is larger than " +
                                                hex(largestImage));
        const auto end = (segment.offset + segment.size + pageSize - 1) / pageSize * pageSize;
        if (end != segment.offset)
            ranges.emplace_back(segment.offset, end);
        result_.imageSize = std::max(result_.imageSize, end);
    }
    std::ranges::sort(ranges);
    for (std::size_t index = 1; index < ranges.size(); ++index)
        if (ranges[index].first < ranges[index - 1].second)
            reporter_.fail("load commands",
                           "two segments share the page at " + hex(ranges[index].first));
    for (auto &section : result_.sections)
        section.offset -= result_.baseAddress;
}

} // namespace

LoadCommands readLoadCommands(Bytes file, const Processor &processor, const Reporter &reporter) {
    return CommandReader(file, processor, reporter).read();
}

} // namespace macho
