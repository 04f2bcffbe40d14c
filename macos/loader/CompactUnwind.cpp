#include "macos/loader/CompactUnwind.h"

#include <algorithm>
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
constexpr std::uint32_t notFunctionStart = 0x80000000, hasLanguageData = 0x40000000;

/// `count` bits of `value` from bit `first` on.
constexpr std::uint32_t bits(std::uint32_t value, unsigned first, unsigned count) {
    return value >> first & ((1U << count) - 1);
}

class Translator {
public:
    Translator(const UnwindSource &source, const Processor &processor, const DwarfFrames &frames,
               const Reporter &reporter)
        : source_(source), processor_(processor), frames_(frames), reporter_(reporter) {
        table_.commons = frames.commons;
        table_.commons.push_back(processor.atEntry());
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
        // Where a function ends the linker says that nothing follows, even when one does.
        if (end == start_ && encoding_ == 0)
            return;
        if (end <= start_)
            fail("the function at " + hex(end) + " stands behind the one at " + hex(start_));
        if (end > source_.textOffset + source_.text.size())
            fail("the function that ends at " + hex(end) + " lies outside the code");
        const CompactFunction function(source_, start_, encoding_, reporter_);
        if (function.mode() == 0)
            return;
        if (function.mode() == processor_.dwarfMode)
            return copyDwarf();
        if (encoding_ & notFunctionStart && data_ != 0)
            fail("the code at " + hex(start_) +
                 " has a handler table, but is no function's start: not supported");
        UnwindRecord record;
        record.start = start_;
        record.end = end;
        record.common = table_.commons.size() - 1;
        record.languageData = data_;
        record.personalitySlot = personality(function);
        record.instructions = processor_.frameInstructions(function);
        table_.records.push_back(std::move(record));
    }

    void copyDwarf() {
        const auto *record = frames_.find(start_);
        if (!record)
            fail("the function at " + hex(start_) + " has no record in __TEXT,__eh_frame");
        if (copied_.insert(record->start).second)
            table_.records.push_back(*record);
    }

    [[nodiscard]] std::uint64_t personality(const CompactFunction &function) const {
        const auto number = function.bits(28, 2);
        if (number == 0)
            return 0;
        if (number > header_.personalitiesCount)
            function.fail("names personality " + std::to_string(number));
        const std::uint64_t slot = read<std::uint32_t>(
            header_.personalitiesOffset + (number - 1) * sizeof(std::uint32_t), "personality");
        if (slot == 0 || !rangeFits(slot, sizeof(void *), source_.imageSize))
            fail("the pointer to personality " + std::to_string(number) + " at " + hex(slot) +
                 " lies outside the image");
        return slot;
    }

    [[noreturn]] void fail(const std::string &what) const {
        reporter_.fail("section __TEXT,__unwind_info", what);
    }

    const UnwindSource &source_;
    const Processor &processor_;
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

UnwindTable translateCompactUnwind(const UnwindSource &source, const Processor &processor,
                                   const DwarfFrames &frames, const Reporter &reporter) {
    return Translator(source, processor, frames, reporter).translate();
}

} // namespace macho
