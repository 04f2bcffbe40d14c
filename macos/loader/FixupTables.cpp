#include "macos/loader/FixupTables.h"

#include "llvm/BinaryFormat/MachO.h"
#include "llvm/Object/MachO.h"

#include <algorithm>
#include <map>
#include <tuple>

namespace macho {
namespace {

namespace format = llvm::MachO;
using llvm::object::MachOBindEntry;
using llvm::object::MachOObjectFile;

class TableReader {
public:
    TableReader(MachOObjectFile &object, const LoadCommands &commands, const Reporter &reporter,
                ImagePlan &plan)
        : object_(object), commands_(commands), reporter_(reporter), plan_(plan) {}

    void read() {
        readExports();
        readRebases();
        // Lazy binding is done at once; weak definitions have the last word.
        readBinds("bind table", object_.getDyldInfoBindOpcodes(), MachOBindEntry::Kind::Regular);
        readBinds("lazy bind table", object_.getDyldInfoLazyBindOpcodes(),
                  MachOBindEntry::Kind::Lazy);
        readBinds("weak bind table", object_.getDyldInfoWeakBindOpcodes(),
                  MachOBindEntry::Kind::Weak);
        readChainedFixups();
    }

private:
    void readExports() {
        const auto limit =
            object_.getDyldInfoExportsTrie().size() + object_.getDyldExportsTrie().size();
        forEach(
            "export table", limit, [](auto &object, auto &error) { return object.exports(error); },
            [&](const auto &entry) {
                const auto kind = entry.flags() & format::EXPORT_SYMBOL_FLAGS_KIND_MASK;
                const auto name = publicName(entry.name());
                if (kind != format::EXPORT_SYMBOL_FLAGS_KIND_REGULAR ||
                    entry.flags() & (format::EXPORT_SYMBOL_FLAGS_REEXPORT |
                                     format::EXPORT_SYMBOL_FLAGS_STUB_AND_RESOLVER))
                    fail(name + ": only exports of the regular kind are supported");
                if (entry.address() >= plan_.size)
                    fail(name + " is at " + hex(entry.address()) + ", outside the image");
                plan_.exports.push_back({name, entry.address()});
            });
        std::ranges::sort(plan_.exports, {}, &NamedOffset::name);
    }

    void readRebases() {
        forEach(
            "rebase table", slotLimit(),
            [](auto &object, auto &error) { return object.rebaseTable(error); },
            [&](const auto &entry) {
                requirePointer(entry.typeName());
                const auto index = entry.segmentIndex();
                const auto slot = slotAt(index, entry.segmentOffset());
                const auto &segment = commands_.segments[static_cast<std::size_t>(index)];
                const auto target = readAt<std::uint64_t>(segment.content, entry.segmentOffset());
                plan_.rebases.push_back({slot, target.value_or(0) - commands_.baseAddress});
            });
    }

    void readBinds(const char *table, llvm::ArrayRef<std::uint8_t> opcodes,
                   MachOBindEntry::Kind kind) {
        forEach(
            table, slotLimit(),
            [&](auto &object, auto &error) {
                return object.bindTable(error, &object, opcodes, true, kind);
            },
            [&](const auto &entry) {
                // A definition that overrides weak ones: it is about other images' slots.
                if (entry.flags() & format::BIND_SYMBOL_FLAGS_NON_WEAK_DEFINITION)
                    return;
                if (kind != MachOBindEntry::Kind::Lazy) // which says no kind
                    requirePointer(entry.typeName());
                const auto ordinal = kind == MachOBindEntry::Kind::Weak
                                         ? int{format::BIND_SPECIAL_DYLIB_WEAK_LOOKUP}
                                         : entry.ordinal();
                addBind(slotAt(entry.segmentIndex(), entry.segmentOffset()), entry.symbolName(),
                        ordinal,
                        kind == MachOBindEntry::Kind::Weak ? Missing::isIgnored
                                                           : whenMissing(entry.flags()),
                        entry.addend());
            });
    }

    void readChainedFixups() {
        forEach(
            "chained fixups", slotLimit(),
            [](auto &object, auto &error) { return object.fixupTable(error); },
            [&](const auto &entry) {
                const auto slot = slotAt(entry.segmentIndex(), entry.segmentOffset());
                if (entry.isRebase())
                    plan_.rebases.push_back({slot, entry.pointerValue() - commands_.baseAddress});
                else
                    addBind(slot, entry.symbolName(), entry.ordinal(), whenMissing(entry.flags()),
                            entry.addend());
            });
    }

    /// Calls `use` for every entry of a table. No honest table has more than `limit` entries; a
    /// damaged one may describe the same few again and again.
    void forEach(const char *table, std::uint64_t limit, auto &&open, auto &&use) {
        table_ = table;
        llvm::Error error = llvm::Error::success();
        try {
            for (const auto &entry : open(object_, error)) {
                if (limit-- == 0)
                    fail("more entries than the image has room for");
                use(entry);
            }
        } catch (...) {
            llvm::consumeError(std::move(error));
            throw;
        }
        if (error)
            fail(llvm::toString(std::move(error)));
    }

    /// How many pointers there can be at most.
    std::uint64_t slotLimit() const {
        std::uint64_t bytes = 0;
        for (const auto &segment : commands_.segments)
            bytes += segment.takesFixups ? segment.content.size() : 0;
        return bytes / sizeof(void *);
    }

    void requirePointer(llvm::StringRef type) const {
        if (type != "pointer")
            fail("fixups of kind " + type.str() + " are not supported");
    }

    /// The image offset of a pointer-sized place that may be written while loading.
    std::uint64_t slotAt(std::int32_t segmentIndex, std::uint64_t offset) const {
        const auto index = static_cast<std::size_t>(segmentIndex);
        if (segmentIndex < 0 || index >= commands_.segments.size())
            fail("there is no segment " + std::to_string(segmentIndex));
        const auto &segment = commands_.segments[index];
        if (!rangeFits(offset, sizeof(void *), segment.content.size()))
            fail("a pointer at " + hex(offset) + " of segment " + segment.name + ", which has " +
                 hex(segment.content.size()) + " bytes in the file");
        if (!segment.takesFixups)
            fail("a pointer at " + hex(offset) + " of segment " + segment.name +
                 ", which is not writable");
        return segment.offset + offset;
    }

    void addBind(std::uint64_t slot, llvm::StringRef symbol, int ordinal, Missing missing,
                 std::int64_t addend) {
        const auto key = std::make_tuple(symbol.str(), ordinal, missing);
        auto found = imports_.find(key);
        if (found == imports_.end()) {
            plan_.imports.push_back(import(symbol, ordinal, missing));
            found = imports_.emplace(key, plan_.imports.size() - 1).first;
        }
        plan_.binds.push_back({slot, found->second, addend});
    }

    static Missing whenMissing(std::uint32_t flags) {
        return flags & format::BIND_SYMBOL_FLAGS_WEAK_IMPORT ? Missing::isNull : Missing::isError;
    }

    Import import(llvm::StringRef symbol, int ordinal, Missing missing) const {
        Import result{publicName(symbol), {}, Scope::library, missing};
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
        const auto index = static_cast<std::size_t>(ordinal) - 1;
        if (ordinal < 0 || index >= commands_.libraries.size())
            fail(result.name + " comes from library " + std::to_string(ordinal) + ", but only " +
                 std::to_string(commands_.libraries.size()) + " are named");
        result.library = commands_.libraries[index].name;
        if (commands_.libraries[index].weak)
            result.missing = Missing::isNull;
        return result;
    }

    /// C symbols carry a leading underscore that no source has.
    static std::string publicName(llvm::StringRef symbol) {
        symbol.consume_front("_");
        return symbol.str();
    }

    [[noreturn]] void fail(const std::string &what) const { reporter_.fail(table_, what); }

    MachOObjectFile &object_;
    const LoadCommands &commands_;
    const Reporter &reporter_;
    ImagePlan &plan_;
    const char *table_ = "";
    std::map<std::tuple<std::string, int, Missing>, std::size_t>
        imports_; // places in plan_.imports
};

} // namespace

void readFixupTables(Bytes file, const LoadCommands &commands, const Reporter &reporter,
                     ImagePlan &plan) {
    const llvm::StringRef text(reinterpret_cast<const char *>(file.data()), file.size());
    auto object = MachOObjectFile::create({text, reporter.source()}, /*IsLittleEndian=*/true,
                                          /*Is64Bits=*/true);
    if (!object)
        reporter.fail(llvm::toString(object.takeError()));
    TableReader(**object, commands, reporter, plan).read();
}

} // namespace macho
