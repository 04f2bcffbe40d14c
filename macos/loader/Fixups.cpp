#include "macos/loader/Fixups.h"

#include "macos/loader/ChainedFixups.h"
#include "macos/loader/FixupOpcodes.h"

#include "llvm/BinaryFormat/MachO.h"

namespace macho {

namespace format = llvm::MachO;

Fixups::Fixups(const LoadCommands &commands, const Reporter &reporter, ImagePlan &plan)
    : commands_(commands), reporter_(reporter), plan_(plan) {}

void Fixups::beginTable(const char *name) {
    table_ = name;
    // No honest table has more entries than there is room for pointers; a damaged one may describe
    // the same few again and again.
    std::uint64_t bytes = 0;
    for (const auto &segment : commands_.segments)
        bytes += segment.takesFixups ? segment.content.size() : 0;
    slotsLeft_ = bytes / sizeof(void *);
}

void Fixups::fail(const std::string &what) const {
    reporter_.fail(table_, what);
}

void Fixups::rebase(std::uint64_t segment, std::uint64_t offset) {
    const auto slot = slotAt(segment, offset);
    const auto target = recordAt<std::uint64_t>(commands_.segments[segment].content, offset);
    plan_.rebases.push_back({slot, target - commands_.baseAddress});
}

void Fixups::rebase(std::uint64_t segment, std::uint64_t offset, std::uint64_t target) {
    plan_.rebases.push_back({slotAt(segment, offset), target - commands_.baseAddress});
}

void Fixups::bind(std::uint64_t segment, std::uint64_t offset, std::string_view symbol,
                  std::int64_t ordinal, Missing missing, std::int64_t addend) {
    const auto slot = slotAt(segment, offset);
    const auto key = std::make_tuple(std::string(symbol), ordinal, missing);
    auto found = imports_.find(key);
    if (found == imports_.end()) {
        plan_.imports.push_back(import(symbol, ordinal, missing));
        found = imports_.emplace(key, plan_.imports.size() - 1).first;
    }
    plan_.binds.push_back({slot, found->second, addend});
}

/// The image offset of a place that can hold a pointer and may be written while loading.
std::uint64_t Fixups::slotAt(std::uint64_t index, std::uint64_t offset) {
    if (index >= commands_.segments.size())
        fail("there is no segment " + std::to_string(index));
    const auto &segment = commands_.segments[index];
    if (!rangeFits(offset, sizeof(void *), segment.content.size()))
        fail("a pointer at " + hex(offset) + " of segment " + segment.name + ", which has " +
             hex(segment.content.size()) + " bytes in the file");
    if (!segment.takesFixups)
        fail("a pointer at " + hex(offset) + " of segment " + segment.name +
             ", which is not writable");
    if (slotsLeft_-- == 0)
        fail("more entries than the image has room for");
    return segment.offset + offset;
}

Import Fixups::import(std::string_view symbol, std::int64_t ordinal, Missing missing) const {
    Import result{std::string(publicName(symbol)), {}, Scope::library, missing};
    switch (ordinal) {
    case format::BIND_SPECIAL_DYLIB_SELF:
        result.library = "the image itself";
        result.scope = Scope::ownImage;
        return result;
    case format::BIND_SPECIAL_DYLIB_MAIN_EXECUTABLE:
        result.library = "the program";
        return result;
    case format::BIND_SPECIAL_DYLIB_FLAT_LOOKUP:
        result.library = "any library";
        return result;
    case format::BIND_SPECIAL_DYLIB_WEAK_LOOKUP:
        result.library = "any library";
        result.scope = Scope::coalesced;
        return result;
    default:
        break;
    }
    const auto &libraries = commands_.libraries;
    if (ordinal < 0 || static_cast<std::uint64_t>(ordinal) > libraries.size())
        fail(result.name + " comes from library " + std::to_string(ordinal) + ", but only " +
             std::to_string(libraries.size()) + " are named");
    const auto &library = libraries[static_cast<std::size_t>(ordinal) - 1];
    result.library = library.name;
    if (library.weak)
        result.missing = Missing::isNull;
    return result;
}

void readFixups(Bytes file, const LoadCommands &commands, const Reporter &reporter,
                ImagePlan &plan) {
    Fixups fixups(commands, reporter, plan);
    readRebaseOpcodes(commands.rebaseTable, fixups);
    // Lazy binding is done at once; weak definitions have the last word.
    readBindOpcodes(commands.bindTable, BindTable::regular, fixups);
    readBindOpcodes(commands.lazyBindTable, BindTable::lazy, fixups);
    readBindOpcodes(commands.weakBindTable, BindTable::weak, fixups);
    if (commands.hasChainedFixups)
        readChainedFixups(file, reporter, fixups);
}

} // namespace macho
