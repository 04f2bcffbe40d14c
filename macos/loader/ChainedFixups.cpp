#include "macos/loader/ChainedFixups.h"

#include "llvm/BinaryFormat/MachO.h"
#include "llvm/Object/MachO.h"

namespace macho {

namespace format = llvm::MachO;
using llvm::object::MachOObjectFile;

namespace {

/// What the reader of object files passes over.
void checkForm(const MachOObjectFile &object, const Fixups &fixups) {
    auto header = object.getChainedFixupsHeader();
    if (!header)
        fixups.fail(llvm::toString(header.takeError()));
    if (const auto &found = *header; found && found->symbols_format != 0)
        fixups.fail("compressed symbol names are not supported");
    auto segments = object.getChainedFixupsSegments();
    if (!segments)
        fixups.fail(llvm::toString(segments.takeError()));
    for (const auto &segment : segments->second) {
        const auto form = segment.Header.pointer_format;
        if (form != format::DYLD_CHAINED_PTR_64 && form != format::DYLD_CHAINED_PTR_64_OFFSET)
            fixups.fail("pointers of form " + std::to_string(form) +
                        " are not supported; those of arm64e are signed");
        for (const auto start : segment.PageStarts)
            if (start != format::DYLD_CHAINED_PTR_START_NONE && start >= segment.Header.page_size)
                fixups.fail("a chain starts at " + hex(start) + " of a page of " +
                            hex(segment.Header.page_size) + " bytes");
    }
}

} // namespace

void readChainedFixups(Bytes file, const Reporter &reporter, Fixups &fixups) {
    fixups.beginTable("chained fixups");
    const llvm::StringRef text(reinterpret_cast<const char *>(file.data()), file.size());
    auto object = MachOObjectFile::create({text, reporter.source()},
                                          /*IsLittleEndian=*/true, /*Is64Bits=*/true);
    if (!object)
        fixups.fail(llvm::toString(object.takeError()));
    checkForm(**object, fixups);
    llvm::Error error = llvm::Error::success();
    try {
        for (const auto &entry : (*object)->fixupTable(error)) {
            const auto segment = static_cast<std::uint64_t>(entry.segmentIndex());
            if (entry.isRebase())
                fixups.rebase(segment, entry.segmentOffset(), entry.pointerValue());
            else
                fixups.bind(segment, entry.segmentOffset(), entry.symbolName(), entry.ordinal(),
                            entry.flags() & format::BIND_SYMBOL_FLAGS_WEAK_IMPORT
                                ? Missing::isNull
                                : Missing::isError,
                            entry.addend());
        }
    } catch (...) {
        llvm::consumeError(std::move(error));
        throw;
    }
    if (error)
        fixups.fail(llvm::toString(std::move(error)));
}

} // namespace macho
