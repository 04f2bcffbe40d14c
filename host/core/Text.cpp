#include "host/core/Text.h"

#include <array>
#include <cerrno>
#include <charconv>
#include <cstdlib>

namespace host {

std::string inQuotes(std::string_view bytes) {
    constexpr std::size_t limit = 64;
    std::string result = "\"";
    for (const char c : bytes.substr(0, limit)) {
        const auto byte = static_cast<unsigned char>(c);
        if (c == '"' || c == '\\') {
            result += '\\';
            result += c;
        } else if (byte < 0x20 || byte > 0x7E) {
            result += "\\x" + hexadecimal(byte, 2);
        } else {
            result += c;
        }
    }
    result += '"';
    return bytes.size() > limit ? result + "..." : result;
}

namespace {

template <typename Number>
std::string shortestOf(Number number) {
    std::array<char, 32> text;
    const auto [end, error] = std::to_chars(text.data(), text.data() + text.size(), number);
    return {text.data(), end};
}

} // namespace

std::string shortest(double number) {
    return shortestOf(number);
}

std::string shortestSingle(double number) {
    return shortestOf(static_cast<float>(number));
}

std::optional<double> realNumber(const std::string &text) {
    // strtod reads more than these numbers.
    if (text.empty() || text.find_first_not_of("0123456789.+-eE") != std::string::npos)
        return std::nullopt;
    char *end = nullptr;
    errno = 0;
    const double number = std::strtod(text.c_str(), &end);
    if (errno == ERANGE || *end != '\0')
        return std::nullopt;
    return number;
}

std::string hexadecimal(std::uint64_t number, int digits) {
    std::string result;
    for (int shift = 4 * (digits - 1); shift >= 0; shift -= 4)
        result += "0123456789ABCDEF"[(number >> shift) & 15];
    return result;
}

std::string counted(std::size_t count, std::string_view one, std::string_view many) {
    return std::to_string(count) + ' ' + std::string(count == 1 ? one : many);
}

} // namespace host
