#include "macos/loader/DwarfFrames.h"

#include "macos/loader/DwarfCode.h"

#include "llvm/Support/DataExtractor.h"

#include <string>

namespace macho {
namespace {

constexpr std::uint8_t omitted = 0xff;
constexpr std::uint8_t relativeToItself = 0x10, indirect = 0x80;

using Cursor = llvm::DataExtractor::Cursor;

struct Common {
    std::size_t index = 0; // in DwarfFrames::commons
    bool augmented = false;
    std::uint8_t pointerEncoding = dwarf::absolutePointer;
    std::uint8_t languageDataEncoding = omitted;
    std::uint64_t personalitySlot = 0;
};

class FrameReader {
public:
    FrameReader(Bytes section, std::uint64_t sectionOffset, std::uint64_t baseAddress,
                std::uint64_t imageSize, const Reporter &reporter)
        : section_(section), data_(llvm::ArrayRef(section.data(), section.size()), true, 8),
          sectionOffset_(sectionOffset), baseAddress_(baseAddress), imageSize_(imageSize),
          reporter_(reporter) {}

    DwarfFrames read() {
        while (entry_ < section_.size()) {
            Cursor cursor(entry_);
            const std::uint64_t length = data_.getU32(cursor);
            check(cursor);
            if (length == 0)
                break;
            if (length >= 0xfffffff0)
                fail("records of the 64-bit form are not supported");
            const auto body = entry_ + sizeof(std::uint32_t);
            if (!rangeFits(body, length, section_.size()))
                fail("it ends beyond the section");
            end_ = body + length;
            const std::uint64_t link = data_.getU32(cursor);
            check(cursor);
            if (link == 0)
                readCommon(cursor);
            else if (link <= body)
                readRecord(cursor, body - link);
            else
                fail("its common entry lies before the section");
            entry_ = end_;
        }
        return std::move(frames_);
    }

private:
    void readCommon(Cursor &cursor) {
        Common common;
        UnwindCommon shared;
        const auto version = data_.getU8(cursor);
        const llvm::StringRef augmentation = data_.getCStrRef(cursor);
        shared.codeAlignment = data_.getULEB128(cursor);
        shared.dataAlignment = data_.getSLEB128(cursor);
        shared.returnAddressRegister =
            version == 1 ? data_.getU8(cursor) : data_.getULEB128(cursor);
        check(cursor);
        if (version != 1 && version != 3)
            fail("version " + std::to_string(version) + " is not supported");
        for (const char letter : augmentation)
            readAugmentation(letter, cursor, common, shared);
        shared.instructions = rest(cursor);
        common.index = frames_.commons.size();
        frames_.commons.push_back(std::move(shared));
        commons_.emplace(entry_, common);
    }

    void readAugmentation(char letter, Cursor &cursor, Common &common, UnwindCommon &shared) {
        switch (letter) {
        case 'z':
            common.augmented = true;
            data_.getULEB128(cursor);
            break;
        case 'P': {
            const auto encoding = data_.getU8(cursor);
            check(cursor);
            if (!(encoding & indirect))
                fail("a personality that is not reached through a pointer is not supported");
            common.personalitySlot = pointer(cursor, encoding & ~indirect);
            if (!rangeFits(common.personalitySlot, sizeof(void *), imageSize_))
                fail("its personality lies outside the image");
            break;
        }
        case 'L':
            common.languageDataEncoding = data_.getU8(cursor);
            break;
        case 'R':
            common.pointerEncoding = data_.getU8(cursor);
            break;
        case 'S':
            shared.signalFrame = true;
            break;
        default:
            fail(std::string("augmentation '") + letter + "' is not supported");
        }
        check(cursor);
    }

    void readRecord(Cursor &cursor, std::uint64_t commonEntry) {
        const auto found = commons_.find(commonEntry);
        if (found == commons_.end())
            fail("there is no common entry at " + hex(commonEntry));
        const Common &common = found->second;
        UnwindRecord record;
        record.common = common.index;
        record.personalitySlot = common.personalitySlot;
        record.start = pointer(cursor, common.pointerEncoding);
        // The length has the size of the start, and is never relative.
        const auto length = number(cursor, common.pointerEncoding & 0x0f);
        if (!rangeFits(record.start, length, imageSize_))
            fail("its code lies outside the image");
        record.end = record.start + length;
        if (common.augmented) {
            const auto size = data_.getULEB128(cursor);
            check(cursor);
            const auto instructions = cursor.tell();
            if (!rangeFits(instructions, size, end_))
                fail("its augmentation ends beyond it");
            if (common.languageDataEncoding != omitted && size != 0)
                record.languageData = pointer(cursor, common.languageDataEncoding);
            if (record.languageData >= imageSize_)
                fail("its handler table lies outside the image");
            check(cursor);
            cursor.seek(instructions + size);
        }
        record.instructions = rest(cursor);
        if (length != 0)
            frames_.records.emplace(record.start, std::move(record));
    }

    /// An encoded pointer as an offset from the image's header; 0 for null.
    std::uint64_t pointer(Cursor &cursor, unsigned encoding) {
        const auto place = sectionOffset_ + cursor.tell();
        const auto value = number(cursor, encoding & 0x0f);
        switch (encoding & 0xf0) {
        case 0:
            return value == 0 ? 0 : value - baseAddress_;
        case relativeToItself:
            return value == 0 ? 0 : place + value;
        default:
            fail("pointer encoding " + hex(encoding) + " is not supported");
        }
    }

    std::uint64_t number(Cursor &cursor, unsigned form) {
        std::uint64_t value = 0;
        switch (form) {
        case 0x00: // as wide as an address
        case 0x04:
        case 0x0c:
            value = data_.getU64(cursor);
            break;
        case 0x03:
            value = data_.getU32(cursor);
            break;
        case 0x0b:
            value = static_cast<std::uint64_t>(static_cast<std::int32_t>(data_.getU32(cursor)));
            break;
        default:
            fail("pointer form " + hex(form) + " is not supported");
        }
        check(cursor);
        return value;
    }

    std::vector<std::uint8_t> rest(Cursor &cursor) {
        check(cursor);
        const auto from = section_.begin() + static_cast<std::ptrdiff_t>(cursor.tell());
        return {from, section_.begin() + static_cast<std::ptrdiff_t>(end_)};
    }

    /// Nothing of an entry may be read beyond its end.
    void check(Cursor &cursor) {
        const auto at = cursor.tell();
        if (auto error = cursor.takeError())
            fail(llvm::toString(std::move(error)));
        if (at > end_ && end_ > entry_)
            fail("it is too short for what it says");
    }

    [[noreturn]] void fail(const std::string &what) const {
        reporter_.fail("section __TEXT,__eh_frame, record at " + hex(entry_), what);
    }

    Bytes section_;
    llvm::DataExtractor data_;
    std::uint64_t sectionOffset_;
    std::uint64_t baseAddress_;
    std::uint64_t imageSize_;
    const Reporter &reporter_;
    std::uint64_t entry_ = 0; // the record that is being read
    std::uint64_t end_ = 0;
    std::map<std::uint64_t, Common> commons_; // by place in the section
    DwarfFrames frames_;
};

} // namespace

const UnwindRecord *DwarfFrames::find(std::uint64_t offset) const {
    auto next = records.upper_bound(offset);
    if (next == records.begin())
        return nullptr;
    const auto &record = std::prev(next)->second;
    return offset < record.end ? &record : nullptr;
}

DwarfFrames readDwarfFrames(Bytes section, std::uint64_t sectionOffset, std::uint64_t baseAddress,
                            std::uint64_t imageSize, const Reporter &reporter) {
    return FrameReader(section, sectionOffset, baseAddress, imageSize, reporter).read();
}

} // namespace macho
