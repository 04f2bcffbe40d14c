#include "tests/loader/UnwindSections.h"

#include "macos/loader/CompactUnwind.h"
#include "macos/loader/DwarfCode.h"

macho::UnwindTable translate(const ByteString &section, const macho::DwarfFrames &frames,
                             const ByteString &text, const macho::Processor &processor) {
    const macho::Reporter reporter("image");
    const macho::UnwindSource source{imageSize, section, 0, text};
    return macho::translateCompactUnwind(source, processor, frames, reporter);
}

ByteString frame(std::uint8_t reg, std::uint64_t offset,
                 std::initializer_list<std::pair<std::uint8_t, std::uint64_t>> saved) {
    macho::DwarfCode code;
    code.frame(reg, offset);
    for (const auto &[which, words] : saved)
        code.saved(which, words);
    return code.bytes;
}
