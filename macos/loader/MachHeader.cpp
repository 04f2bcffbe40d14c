#include "macos/loader/MachHeader.h"

#include "llvm/Object/MachO.h"

#include <algorithm>

namespace macho {

namespace format = llvm::MachO;

namespace {

std::string firstBytes(Bytes file) {
    std::string text;
    for (const auto byte : file.first(std::min<std::size_t>(file.size(), 4)))
        text += (text.empty() ? "" : " ") + hex(byte);
    return text;
}

} // namespace

format::mach_header_64 readHeader(Bytes file, const Processor &processor,
                                  const Reporter &reporter) {
    if (file.empty())
        reporter.fail("the file is empty");
    const auto magic = readAt<std::uint32_t>(file, 0).value_or(0);
    if (magic == format::MH_MAGIC || magic == format::MH_CIGAM || magic == format::MH_CIGAM_64)
        reporter.fail("header",
                      "a Mach-O file of 32 bits or of the other byte order; " + processor.wanted());
    if (magic != format::MH_MAGIC_64)
        reporter.fail("not a Mach-O file: it starts with " + firstBytes(file));
    const auto header = readAt<format::mach_header_64>(file, 0);
    if (!header)
        reporter.fail("header", "the file ends at " + hex(file.size()) + ", within the header");
    if (!processor.runs(header->cputype, header->cpusubtype)) {
        const auto name = architectureName(header->cputype, header->cpusubtype);
        const auto subtype = header->cpusubtype & ~format::CPU_SUBTYPE_MASK;
        reporter.fail("header",
                      name == processor.name
                          ? "the image is for " + name + " processors of the unknown subtype " +
                                std::to_string(subtype)
                          : "the image is for " + name +
                                (name == "arm64e" ? ", whose pointers are signed; " : "; ") +
                                processor.wanted());
    }
    if (header->filetype != format::MH_BUNDLE && header->filetype != format::MH_DYLIB)
        reporter.fail("header", header->filetype == format::MH_EXECUTE
                                    ? "a program, not a bundle or library"
                                    : "file type " + std::to_string(header->filetype) +
                                          " is neither a bundle nor a library");
    if (header->flags & format::MH_HAS_TLV_DESCRIPTORS)
        reporter.fail("header", "thread-local variables are not supported");
    if (!rangeFits(sizeof *header, header->sizeofcmds, file.size()))
        reporter.fail("header", "the load commands take " +
                                    byteRange(sizeof *header, header->sizeofcmds) +
                                    " of the file, which ends at " + hex(file.size()));
    return *header;
}

std::string architectureName(std::uint32_t cpuType, std::uint32_t cpuSubtype) {
    // Subtypes 0 and 3 mean any processor of the type, of one type or the other.
    for (const auto subtype : {cpuSubtype, 0U, 3U}) {
        const auto triple = llvm::object::MachOObjectFile::getArchTriple(cpuType, subtype);
        if (triple.getArch() != llvm::Triple::UnknownArch)
            return triple.getArchName().str();
    }
    return "processor type " + hex(cpuType);
}

} // namespace macho
