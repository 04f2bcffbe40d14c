#include "HfsNames.h"

#include "Encodings.h"

#include <unicode/normalizer2.h>
#include <unicode/uniset.h>

namespace standin {
namespace {

// HFS Plus froze its decompositions early: punctuation and symbols from U+2000 on and the
// compatibility ideographs keep their composed form.
icu::UnicodeSet decomposedCharacters() {
    icu::UnicodeSet set(0, 0x10FFFF);
    set.remove(0x2000, 0x2FFF).remove(0xF900, 0xFAFF).remove(0x2F800, 0x2FAFF);
    return set;
}

} // namespace

std::optional<std::u16string> hfsName(std::string_view utf8) {
    const auto *bytes = reinterpret_cast<const std::uint8_t *>(utf8.data());
    const auto units = decode({bytes, utf8.size()}, kCFStringEncodingUTF8, false);
    if (!units) {
        return std::nullopt;
    }
    UErrorCode status = U_ZERO_ERROR;
    static const icu::UnicodeSet characters = decomposedCharacters();
    const icu::FilteredNormalizer2 normalizer(*icu::Normalizer2::getNFDInstance(status),
                                              characters);
    const icu::UnicodeString name(units->data(), static_cast<std::int32_t>(units->size()));
    icu::UnicodeString decomposed;
    normalizer.normalize(name, decomposed, status);
    if (U_FAILURE(status)) {
        return std::nullopt;
    }
    return std::u16string(decomposed.getBuffer(), static_cast<std::size_t>(decomposed.length()));
}

} // namespace standin
