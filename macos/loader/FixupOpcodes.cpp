#include "macos/loader/FixupOpcodes.h"

#include "llvm/BinaryFormat/MachO.h"
#include "llvm/Support/DataExtractor.h"

#include <limits>
#include <string>

namespace macho {
namespace {

namespace format = llvm::MachO;

constexpr std::uint64_t pointerSize = sizeof(void *);

/// What both machines have in common: the table, and a place in a segment. Offsets wrap; where they
/// lead is checked when a pointer is patched there.
class Machine {
public:
    Machine(Bytes table, Fixups &fixups)
        : fixups_(fixups), data_(llvm::ArrayRef(table.data(), table.size()), true, 8), cursor_(0) {}

protected:
    bool atEnd() { return cursor_.tell() >= data_.size(); }

    std::uint8_t opcode() {
        start_ = cursor_.tell();
        return checked(data_.getU8(cursor_));
    }
    std::uint64_t number() { return checked(data_.getULEB128(cursor_)); }
    std::int64_t signedNumber() { return checked(data_.getSLEB128(cursor_)); }
    std::string string() { return checked(data_.getCStrRef(cursor_)).str(); }

    void setPlace(std::uint8_t segment) {
        segment_ = segment;
        offset_ = number();
    }

    [[noreturn]] void fail(const std::string &what) const {
        fixups_.fail("opcode at " + hex(start_) + ": " + what);
    }

    [[noreturn]] void failUnknown(std::uint8_t opcode) const {
        fail("opcode " + hex(opcode) + " is not supported");
    }

    Fixups &fixups_;
    std::uint64_t segment_ = std::numeric_limits<std::uint64_t>::max();
    std::uint64_t offset_ = 0;

private:
    template <class Value>
    Value checked(Value value) {
        if (auto error = cursor_.takeError())
            fail(llvm::toString(std::move(error)));
        return value;
    }

    llvm::DataExtractor data_;
    llvm::DataExtractor::Cursor cursor_;
    std::uint64_t start_ = 0;
};

class RebaseMachine : Machine {
public:
    using Machine::Machine;

    void run() {
        while (!atEnd()) {
            const auto byte = opcode();
            const auto immediate = static_cast<std::uint8_t>(byte & format::REBASE_IMMEDIATE_MASK);
            switch (byte & format::REBASE_OPCODE_MASK) {
            case format::REBASE_OPCODE_DONE:
                return;
            case format::REBASE_OPCODE_SET_TYPE_IMM:
                if (immediate != format::REBASE_TYPE_POINTER)
                    fail("rebases of kind " + std::to_string(immediate) + " are not supported");
                break;
            case format::REBASE_OPCODE_SET_SEGMENT_AND_OFFSET_ULEB:
                setPlace(immediate);
                break;
            case format::REBASE_OPCODE_ADD_ADDR_ULEB:
                offset_ += number();
                break;
            case format::REBASE_OPCODE_ADD_ADDR_IMM_SCALED:
                offset_ += immediate * pointerSize;
                break;
            case format::REBASE_OPCODE_DO_REBASE_IMM_TIMES:
                rebase(immediate, 0);
                break;
            case format::REBASE_OPCODE_DO_REBASE_ULEB_TIMES:
                rebase(number(), 0);
                break;
            case format::REBASE_OPCODE_DO_REBASE_ADD_ADDR_ULEB:
                rebase(1, number());
                break;
            case format::REBASE_OPCODE_DO_REBASE_ULEB_TIMES_SKIPPING_ULEB: {
                const auto times = number();
                rebase(times, number());
                break;
            }
            default:
                failUnknown(byte);
            }
        }
    }

private:
    void rebase(std::uint64_t times, std::uint64_t skip) {
        for (; times != 0; --times) {
            fixups_.rebase(segment_, offset_);
            offset_ += pointerSize + skip;
        }
    }
};

class BindMachine : Machine {
public:
    BindMachine(Bytes table, BindTable kind, Fixups &fixups) : Machine(table, fixups), kind_(kind) {
        if (kind == BindTable::weak)
            ordinal_ = format::BIND_SPECIAL_DYLIB_WEAK_LOOKUP;
    }

    void run() {
        while (!atEnd()) {
            const auto byte = opcode();
            const auto immediate = static_cast<std::uint8_t>(byte & format::BIND_IMMEDIATE_MASK);
            switch (byte & format::BIND_OPCODE_MASK) {
            case format::BIND_OPCODE_DONE:
                // In the lazy table it ends one entry only.
                if (kind_ != BindTable::lazy)
                    return;
                break;
            case format::BIND_OPCODE_SET_DYLIB_ORDINAL_IMM:
                setLibrary(immediate);
                break;
            case format::BIND_OPCODE_SET_DYLIB_ORDINAL_ULEB:
                setLibrary(static_cast<std::int64_t>(number()));
                break;
            case format::BIND_OPCODE_SET_DYLIB_SPECIAL_IMM:
                // A negative number of four bits.
                setLibrary(immediate == 0 ? 0 : immediate - 16);
                break;
            case format::BIND_OPCODE_SET_SYMBOL_TRAILING_FLAGS_IMM:
                flags_ = immediate;
                symbol_ = string();
                break;
            case format::BIND_OPCODE_SET_TYPE_IMM:
                if (immediate != format::BIND_TYPE_POINTER)
                    fail("binds of kind " + std::to_string(immediate) + " are not supported");
                break;
            case format::BIND_OPCODE_SET_ADDEND_SLEB:
                addend_ = signedNumber();
                break;
            case format::BIND_OPCODE_SET_SEGMENT_AND_OFFSET_ULEB:
                setPlace(immediate);
                break;
            case format::BIND_OPCODE_ADD_ADDR_ULEB:
                offset_ += number();
                break;
            case format::BIND_OPCODE_DO_BIND:
                bind(1, 0);
                break;
            case format::BIND_OPCODE_DO_BIND_ADD_ADDR_ULEB:
                bind(1, number());
                break;
            case format::BIND_OPCODE_DO_BIND_ADD_ADDR_IMM_SCALED:
                bind(1, immediate * pointerSize);
                break;
            case format::BIND_OPCODE_DO_BIND_ULEB_TIMES_SKIPPING_ULEB: {
                const auto times = number();
                bind(times, number());
                break;
            }
            default:
                failUnknown(byte);
            }
        }
    }

private:
    void setLibrary(std::int64_t ordinal) {
        if (kind_ == BindTable::weak)
            fail("a library, where any may define the symbol");
        ordinal_ = ordinal;
    }

    void bind(std::uint64_t times, std::uint64_t skip) {
        if (symbol_.empty())
            fail("a bind before a symbol is named");
        const auto missing = kind_ == BindTable::weak                         ? Missing::isIgnored
                             : flags_ & format::BIND_SYMBOL_FLAGS_WEAK_IMPORT ? Missing::isNull
                                                                              : Missing::isError;
        for (; times != 0; --times) {
            fixups_.bind(segment_, offset_, symbol_, ordinal_, missing, addend_);
            offset_ += pointerSize + skip;
        }
    }

    BindTable kind_;
    std::int64_t ordinal_ = 0;
    std::uint8_t flags_ = 0;
    std::string symbol_;
    std::int64_t addend_ = 0;
};

} // namespace

void readRebaseOpcodes(Bytes table, Fixups &fixups) {
    fixups.beginTable("rebase table");
    RebaseMachine(table, fixups).run();
}

void readBindOpcodes(Bytes table, BindTable kind, Fixups &fixups) {
    fixups.beginTable(kind == BindTable::regular ? "bind table"
                      : kind == BindTable::lazy  ? "lazy bind table"
                                                 : "weak bind table");
    BindMachine(table, kind, fixups).run();
}

} // namespace macho
