#include "macos/loader/EhFrame.h"

#include "macos/loader/DwarfCode.h"

#include <map>
#include <utility>

// Of the unwinder, which declares them in no header.
extern "C" {
void registerFrames(void *section) asm("__register_frame");
void forgetFrames(void *section) asm("__deregister_frame");
}

namespace macho {
namespace {

using Length = std::uint32_t;

/// Begins an entry of the section; its length is filled in by `endEntry`.
std::size_t beginEntry(DwarfCode &section) {
    const auto start = section.bytes.size();
    section.fixed(Length{0});
    return start;
}

void endEntry(DwarfCode &section, std::size_t start) {
    while (section.bytes.size() % sizeof(std::uint64_t) != 0)
        section.fixed(dwarf::nop);
    const auto length = static_cast<Length>(section.bytes.size() - start - sizeof(Length));
    std::memcpy(section.bytes.data() + start, &length, sizeof length);
}

void writeCommon(DwarfCode &section, const UnwindCommon &common, std::uintptr_t personality) {
    const auto start = beginEntry(section);
    section.fixed(std::uint32_t{0}); // a common entry
    section.fixed(std::uint8_t{1});  // version
    for (const char letter : {'z', 'P', 'L', 'R'})
        if (personality != 0 || letter == 'z' || letter == 'R')
            section.fixed(letter);
    if (common.signalFrame)
        section.fixed('S');
    section.fixed('\0');
    section.unsignedNumber(common.codeAlignment);
    section.signedNumber(common.dataAlignment);
    section.fixed(static_cast<std::uint8_t>(common.returnAddressRegister));
    if (personality != 0) {
        section.unsignedNumber(1 + sizeof personality + 1 + 1);
        section.fixed(dwarf::absolutePointer);
        section.fixed(personality);
        section.fixed(dwarf::absolutePointer); // of language data
    } else {
        section.unsignedNumber(1);
    }
    section.fixed(dwarf::absolutePointer); // of code
    section.append(common.instructions);
    endEntry(section, start);
}

void writeRecord(DwarfCode &section, const UnwindRecord &record, std::uintptr_t base,
                 std::size_t commonEntry, bool hasPersonality) {
    const auto start = beginEntry(section);
    section.fixed(static_cast<std::uint32_t>(section.bytes.size() - commonEntry));
    section.fixed(std::uintptr_t{base + record.start});
    section.fixed(std::uintptr_t{record.end - record.start});
    if (hasPersonality) {
        section.unsignedNumber(sizeof(std::uintptr_t));
        section.fixed(record.languageData == 0 ? std::uintptr_t{0} : base + record.languageData);
    } else {
        section.unsignedNumber(0);
    }
    section.append(record.instructions);
    endEntry(section, start);
}

} // namespace

std::vector<std::uint8_t>
writeEhFrame(const UnwindTable &table, std::uintptr_t base,
             const std::function<std::uintptr_t(std::uint64_t slot)> &personality) {
    DwarfCode section;
    std::map<std::pair<std::size_t, std::uintptr_t>, std::size_t> commonEntries;
    for (const auto &record : table.records) {
        const auto function =
            record.personalitySlot == 0 ? std::uintptr_t{0} : personality(record.personalitySlot);
        const auto [entry, isNew] =
            commonEntries.try_emplace({record.common, function}, section.bytes.size());
        if (isNew)
            writeCommon(section, table.commons[record.common], function);
        writeRecord(section, record, base, entry->second, function != 0);
    }
    section.fixed(Length{0});
    return std::move(section.bytes);
}

RegisteredFrames::RegisteredFrames(std::vector<std::uint8_t> section)
    : section_(std::move(section)), registered_(section_.size() > sizeof(Length)) {
    // The unwinder takes an empty section for none, and would not find it again to forget it.
    if (registered_)
        registerFrames(section_.data());
}

RegisteredFrames::~RegisteredFrames() {
    if (registered_)
        forgetFrames(section_.data());
}

} // namespace macho
