#pragma once

#include <cstdint>
#include <random>
#include <string>

/// Text for property tests: the same for the same seed, on every machine.
class RandomText {
public:
    explicit RandomText(std::uint32_t seed) : random_(seed) {}

    /// One to sixty characters that the encoding has, none of them U+0000.
    std::u32string inEncoding(std::uint32_t encoding);

private:
    std::uint32_t below(std::uint32_t limit) {
        return static_cast<std::uint32_t>(random_() % limit);
    }
    char32_t character(std::uint32_t encoding);

    std::mt19937 random_;
};

// Every encoding of the host's by its definition, for comparison with what the plug-in makes of
// it. UTF-16 and UTF-32 are in host byte order.

std::string encoded(const std::u32string &text, std::uint32_t encoding);
std::u16string utf16Of(const std::u32string &text);
/// UTF-32 as Core Foundation takes it when it comes from outside.
std::string bigEndianUTF32(const std::u32string &text);
