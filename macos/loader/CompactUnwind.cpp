#include "macos/loader/CompactUnwind.h"

#include "macos/loader/DwarfCode.h"

#include <algorithm>
#include <array>
#include <set>
#include <string>
#include <vector>

namespace macho {
namespace {

struct Header {
    std::uint32_t version;
    std::uint32_t encodingsOffset, encodingsCount; // common to all pages
    std::uint32_t personalitiesOffset, personalitiesCount;
    std::uint32_t indexOffset, indexCount;
};

struct IndexEntry {
    std::uint32_t function;
    std::uint32_t pageOffset;         // 0: no page
    std::uint32_t languageDataOffset; // the first pair of this entry
};

struct LanguageData {
    std::uint32_t function, data;
};

struct RegularPage {
    std::uint32_t kind;
    std::uint16_t entriesOffset, entriesCount;
};

struct CompressedPage {
    std::uint32_t kind;
    std::uint16_t entriesOffset, entriesCount;
    std::uint16_t encodingsOffset, encodingsCount;
};

struct RegularEntry {
    std::uint32_t function, encoding;
};

enum PageKind : std::uint32_t { regularPage = 2, compressedPage = 3 };
enum Mode : std::uint32_t { frameMode = 1, fixedStack = 2, stackInCode = 3, dwarfMode = 4 };

constexpr std::uint32_t notFunctionStart = 0x80000000, hasLanguageData = 0x40000000;

/// `count` bits of `value` from bit `first` on.
constexpr std::uint32_t bits(std::uint32_t value, unsigned first, unsigned count) {
    return value >> first & ((1U << count) - 1);
}

/// Compact encodings number the registers that a function saves from 1 to 6.
constexpr std::array<std::uint8_t, 7> savedRegisters = {
    0, dwarf::rbx, dwarf::r12, dwarf::r13, dwarf::r14, dwarf::r15, dwarf::rbp};

class Translator {
public:
    Translator(const UnwindSource &source, const DwarfFrames &frames, const Reporter &reporter)
        : source_(source), frames_(frames), reporter_(reporter) {
        table_.commons = frames.commons;
        // What every function has at its first instruction: only its return address is pushed.
        DwarfCode atEntry;
        atEntry.frame(dwarf::rsp, 8);
        atEntry.saved(dwarf::rip, 1);
        UnwindCommon common;
        common.instructions = std::move(atEntry.bytes);
        table_.commons.push_back(std::move(common));
    }

    UnwindTable translate() {
        header_ = read<Header>(0, "the header");
        if (header_.version != 1)
            fail("version " + std::to_string(header_.version) + " is not supported");
        if (header_.indexCount == 0)
            return std::move(table_);
        const auto sentinel = indexEntry(header_.indexCount - 1);
        readLanguageData(indexEntry(0).languageDataOffset, sentinel.languageDataOffset);
        for (std::uint32_t index = 0; index + 1 < header_.indexCount; ++index)
            translateIndexEntry(indexEntry(index));
        flush(sentinel.function);
        return std::move(table_);
    }

private:
    template <class Record>
    [[nodiscard]] Record read(std::uint64_t offset, const std::string &what) const {
        const auto record = readAt<Record>(source_.table, offset);
        if (!record)
            fail(what + " at " + hex(offset) + " lies outside the section");
        return *record;
    }

    [[nodiscard]] IndexEntry indexEntry(std::uint32_t index) const {
        return read<IndexEntry>(header_.indexOffset + std::uint64_t{index} * sizeof(IndexEntry),
                                "index entry " + std::to_string(index));
    }

    void translateIndexEntry(const IndexEntry &entry) {
        if (entry.pageOffset == 0)
            return add(entry.function, 0);
        const auto kind = read<std::uint32_t>(entry.pageOffset, "page");
        if (kind == regularPage)
            translateRegularPage(entry.pageOffset);
        else if (kind == compressedPage)
            translateCompressedPage(entry);
        else
            fail("page at " + hex(entry.pageOffset) + " is of unknown kind " +
                 std::to_string(kind));
    }

    void readLanguageData(std::uint64_t from, std::uint64_t to) {
        for (auto at = from; at + sizeof(LanguageData) <= to; at += sizeof(LanguageData)) {
            const auto pair = read<LanguageData>(at, "handler table reference");
            if (pair.data >= source_.imageSize)
                fail("handler table at " + hex(pair.data) + " lies outside the image");
            languageData_.emplace_back(pair.function, pair.data);
        }
        std::ranges::sort(languageData_);
    }

    void translateRegularPage(std::uint64_t offset) {
        const auto page = read<RegularPage>(offset, "page");
        for (std::uint64_t i = 0; i < page.entriesCount; ++i) {
            const auto entry = read<RegularEntry>(
                offset + page.entriesOffset + i * sizeof(RegularEntry), "page entry");
            add(entry.function, entry.encoding);
        }
    }

    void translateCompressedPage(const IndexEntry &index) {
        const std::uint64_t offset = index.pageOffset;
        const auto page = read<CompressedPage>(offset, "page");
        for (std::uint64_t i = 0; i < page.entriesCount; ++i) {
            const auto entry = read<std::uint32_t>(
                offset + page.entriesOffset + i * sizeof(std::uint32_t), "page entry");
            add(std::uint64_t{index.function} + bits(entry, 0, 24),
                encoding(offset, page, bits(entry, 24, 8)));
        }
    }

    /// The encodings common to all pages come first, then those of the page.
    [[nodiscard]] std::uint32_t encoding(std::uint64_t pageOffset, const CompressedPage &page,
                                         std::uint32_t number) const {
        if (number < header_.encodingsCount)
            return read<std::uint32_t>(header_.encodingsOffset + number * sizeof(std::uint32_t),
                                       "common encoding");
        const auto local = number - header_.encodingsCount;
        if (local >= page.encodingsCount)
            fail("page at " + hex(pageOffset) + " has no encoding " + std::to_string(number));
        return read<std::uint32_t>(
            pageOffset + page.encodingsOffset + local * sizeof(std::uint32_t), "encoding");
    }

    /// Notes that `encoding` holds from `start` on, which ends the code before it.
    void add(std::uint64_t start, std::uint32_t encoding) {
        flush(start);
        start_ = start;
        encoding_ = encoding;
        data_ = 0;
        if (!(encoding & hasLanguageData))
            return;
        const auto found = std::ranges::lower_bound(
            languageData_, start, {}, &std::pair<std::uint64_t, std::uint64_t>::first);
        if (found == languageData_.end() || found->first != start)
            fail("the function at " + hex(start) + " has no handler table");
        data_ = found->second;
    }

    /// Writes the record of the code from `start_` to `end`.
    void flush(std::uint64_t end) {
        if (end <= start_)
            fail("the function at " + hex(end) + " stands behind the one at " + hex(start_));
        if (end > source_.textOffset + source_.text.size())
            fail("the function that ends at " + hex(end) + " lies outside the code");
        const auto mode = bits(encoding_, 24, 4);
        if (mode == 0)
            return;
        if (mode == dwarfMode)
            return copyDwarf();
        if (encoding_ & notFunctionStart && data_ != 0)
            fail("the code at " + hex(start_) +
                 " has a handler table, but is no function's start: not supported");
        UnwindRecord record;
        record.start = start_;
        record.end = end;
        record.common = table_.commons.size() - 1;
        record.languageData = data_;
        record.personalitySlot = personality(bits(encoding_, 28, 2));
        record.instructions = instructions(mode);
        table_.records.push_back(std::move(record));
    }

    [[nodiscard]] std::vector<std::uint8_t> instructions(std::uint32_t mode) const {
        switch (mode) {
        case frameMode:
            return frameInstructions();
        case fixedStack:
            return stackInstructions(std::uint64_t{bits(encoding_, 16, 8)} * 8);
        case stackInCode:
            return stackInstructions(stackSizeInCode());
        default:
            failEncoding("is of no known mode");
        }
    }

    void copyDwarf() {
        const auto *record = frames_.find(start_);
        if (!record)
            fail("the function at " + hex(start_) + " has no record in __TEXT,__eh_frame");
        if (copied_.insert(record->start).second)
            table_.records.push_back(*record);
    }

    [[nodiscard]] std::uint64_t personality(std::uint32_t number) const {
        if (number == 0)
            return 0;
        if (number > header_.personalitiesCount)
            failEncoding("names personality " + std::to_string(number));
        const std::uint64_t slot = read<std::uint32_t>(
            header_.personalitiesOffset + (number - 1) * sizeof(std::uint32_t), "personality");
        if (slot == 0 || !rangeFits(slot, sizeof(void *), source_.imageSize))
            fail("the pointer to personality " + std::to_string(number) + " at " + hex(slot) +
                 " lies outside the image");
        return slot;
    }

    /// rbp is pushed and points to where it was saved; up to five registers are saved further down,
    /// upwards from 8 * offset bytes below rbp.
    [[nodiscard]] std::vector<std::uint8_t> frameInstructions() const {
        DwarfCode code;
        code.frame(dwarf::rbp, 16);
        code.saved(dwarf::rbp, 2);
        const auto offset = bits(encoding_, 16, 8);
        for (std::uint32_t slot = 0; slot < 5; ++slot) {
            const auto number = bits(encoding_, 3 * slot, 3);
            if (number == 0)
                continue;
            if (number > 5 || offset <= slot)
                failEncoding("does not describe a frame");
            code.saved(savedRegisters[number], 2 + offset - slot);
        }
        return std::move(code.bytes);
    }

    /// The frame address is rsp plus `size`; registers are saved right below the return address.
    [[nodiscard]] std::vector<std::uint8_t> stackInstructions(std::uint64_t size) const {
        const auto count = bits(encoding_, 10, 3);
        if (count > 6 || size < 8 * (std::uint64_t{count} + 1))
            failEncoding("does not describe a stack");
        DwarfCode code;
        code.frame(dwarf::rsp, size);
        const auto registers = permutation(count, bits(encoding_, 0, 10));
        for (std::uint32_t i = 0; i < count; ++i)
            code.saved(registers[i], 1 + count - i);
        return std::move(code.bytes);
    }

    /// The registers in the order in which they were pushed. The number is written in the mixed
    /// radix of permutations: each digit says which of the registers that are left comes next.
    [[nodiscard]] std::array<std::uint8_t, 6> permutation(std::uint32_t count,
                                                          std::uint32_t number) const {
        std::vector<std::uint8_t> left(savedRegisters.begin() + 1, savedRegisters.end());
        std::array<std::uint8_t, 6> order = {};
        for (std::uint32_t i = 0; i < count; ++i) {
            std::uint32_t weight = 1;
            for (std::uint32_t j = i + 1; j < count; ++j)
                weight *= 6 - j;
            const auto digit = number / weight;
            number %= weight;
            if (digit >= left.size())
                failEncoding("does not describe saved registers");
            order[i] = left[digit];
            left.erase(left.begin() + digit);
        }
        return order;
    }

    /// Large stacks: the encoding says where in the function the instruction "sub rsp, size" has
    /// its operand.
    [[nodiscard]] std::uint64_t stackSizeInCode() const {
        const auto at = start_ + bits(encoding_, 16, 8);
        const auto size = at < source_.textOffset
                              ? std::nullopt
                              : readAt<std::uint32_t>(source_.text, at - source_.textOffset);
        if (!size)
            failEncoding("refers to an instruction outside the code");
        return std::uint64_t{*size} + std::uint64_t{8} * bits(encoding_, 13, 3);
    }

    [[noreturn]] void failEncoding(const std::string &what) const {
        fail("encoding " + hex(encoding_) + " of the function at " + hex(start_) + " " + what);
    }

    [[noreturn]] void fail(const std::string &what) const {
        reporter_.fail("section __TEXT,__unwind_info", what);
    }

    const UnwindSource &source_;
    const DwarfFrames &frames_;
    const Reporter &reporter_;
    Header header_ = {};
    UnwindTable table_;
    std::vector<std::pair<std::uint64_t, std::uint64_t>> languageData_; // by function
    std::set<std::uint64_t> copied_;
    // The code whose end is not known yet.
    std::uint64_t start_ = 0;
    std::uint32_t encoding_ = 0;
    std::uint64_t data_ = 0;
};

} // namespace

UnwindTable translateCompactUnwind(const UnwindSource &source, const DwarfFrames &frames,
                                   const Reporter &reporter) {
    return Translator(source, frames, reporter).translate();
}

} // namespace macho
