#include "host/language/Encodings.h"

#include "host/core/UsageError.h"

#include <unicode/ucnv.h>

#include <algorithm>
#include <array>
#include <memory>
#include <vector>

namespace host {

namespace {

struct EncodingRow {
    std::uint32_t value;
    std::string_view name;
    const char *converter; ///< ICU's name; null: bytes pass through
};

constexpr std::array encodings{
    EncodingRow{encoding::macRoman, "Mac Roman", "macintosh"},
    EncodingRow{encoding::utf16, "UTF-16", "UTF-16LE"},
    EncodingRow{encoding::latin1, "ISO Latin 1", "ISO-8859-1"},
    EncodingRow{encoding::windowsLatin1, "Windows Latin 1", "windows-1252"},
    EncodingRow{encoding::ascii, "ASCII", "US-ASCII"},
    EncodingRow{encoding::utf8, "UTF-8", "UTF-8"},
    EncodingRow{encoding::utf32, "UTF-32", "UTF-32LE"},
    EncodingRow{encoding::unknown, "unknown", nullptr},
};

const EncodingRow *rowOf(std::uint32_t encoding) {
    const auto *row = std::ranges::find(encodings, encoding, &EncodingRow::value);
    return row == encodings.end() ? nullptr : row;
}

using Converter = std::unique_ptr<UConverter, decltype(&ucnv_close)>;

Converter openConverter(const char *name) {
    UErrorCode status = U_ZERO_ERROR;
    Converter converter{ucnv_open(name, &status), &ucnv_close};
    if (U_FAILURE(status))
        throw UsageError(std::string("ICU has no converter ") + name + ": " + u_errorName(status));
    return converter;
}

} // namespace

bool isKnownEncoding(std::uint32_t encoding) {
    return rowOf(encoding) != nullptr;
}

std::string_view encodingName(std::uint32_t encoding) {
    const EncodingRow *row = rowOf(encoding);
    return row == nullptr ? std::string_view{} : row->name;
}

std::string convertBytes(std::string_view bytes, std::uint32_t from, std::uint32_t to) {
    const EncodingRow *source = rowOf(from);
    const EncodingRow *target = rowOf(to);
    if (source == nullptr || target == nullptr)
        throw UsageError("conversion between encodings that the host does not know");
    if (source->converter == nullptr || target->converter == nullptr || source == target ||
        bytes.empty())
        return std::string(bytes);

    const Converter reader = openConverter(source->converter);
    const Converter writer = openConverter(target->converter);
    std::string result;
    std::array<char, 1024> chunk;
    std::array<UChar, 512> pivot;
    UChar *pivotRead = pivot.data();
    UChar *pivotWrite = pivot.data();
    const char *next = bytes.data();
    const char *const end = next + bytes.size();
    UErrorCode status = U_BUFFER_OVERFLOW_ERROR;
    for (UBool reset = true; status == U_BUFFER_OVERFLOW_ERROR; reset = false) {
        status = U_ZERO_ERROR;
        char *out = chunk.data();
        ucnv_convertEx(writer.get(), reader.get(), &out, chunk.data() + chunk.size(), &next, end,
                       pivot.data(), &pivotRead, &pivotWrite, pivot.data() + pivot.size(), reset,
                       true, &status);
        result.append(chunk.data(), out);
    }
    return result;
}

std::string toUtf8(std::string_view bytes, std::uint32_t encoding) {
    return isKnownEncoding(encoding) ? convertBytes(bytes, encoding, encoding::utf8)
                                     : std::string(bytes);
}

} // namespace host
