#include "host/zkthost/MachOSignature.h"

#include "host/zkthost/MachOBytes.h"

namespace zkthost {

/// A signature is a table of blobs; which of them is what, is told by the slot that it lies in. Its
/// numbers have the highest byte first, whatever the file's.
SignatureFact signatureOf(std::string_view bytes) {
    constexpr std::uint32_t codeDirectory = 0;
    constexpr std::uint32_t certificates = 0x10000;
    constexpr std::uint32_t adHoc = 2;
    constexpr std::uint32_t emptyBlob = 8;
    const MachOBytes signature(bytes, true);
    SignatureFact fact{.isAdHoc = true, .identifier = {}};
    for (std::uint64_t i = 0; i < signature.word(8); ++i) {
        const std::uint32_t slot = signature.word(12 + i * 8);
        const MachOBytes blob = signature.from(signature.word(16 + i * 8));
        if (slot == codeDirectory) {
            fact.isAdHoc = (blob.word(12) & adHoc) != 0;
            fact.identifier = blob.text(blob.word(20));
        } else if (slot == certificates && blob.word(4) > emptyBlob) {
            fact.isAdHoc = false;
        }
    }
    return fact;
}

} // namespace zkthost
