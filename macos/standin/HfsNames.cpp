#include "HfsNames.h"

#include <unicode/normalizer2.h>
#include <unicode/uniset.h>
#include <unicode/ustring.h>

#include <algorithm>
#include <cstdint>

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
    UErrorCode status = U_ZERO_ERROR;
    std::u16string units(utf8.size(), u'\0'); // no character takes more units than bytes
    std::int32_t length = 0;
    u_strFromUTF8(units.data(), static_cast<std::int32_t>(units.size()), &length, utf8.data(),
                  static_cast<std::int32_t>(utf8.size()), &status);
    static const icu::UnicodeSet characters = decomposedCharacters();
    const icu::FilteredNormalizer2 normalizer(*icu::Normalizer2::getNFDInstance(status),
                                              characters);
    icu::UnicodeString decomposed;
    normalizer.normalize(icu::UnicodeString(units.data(), length), decomposed, status);
    if (U_FAILURE(status)) {
        return std::nullopt;
    }
    std::u16string name(decomposed.getBuffer(), static_cast<std::size_t>(decomposed.length()));
    std::ranges::replace(name, u':', u'/');
    return name;
}

} // namespace standin
