#pragma once

// Tokens of the host's language: of the declarations that class records carry and of programs.
//
// Names in any case, of letters, digits, "_" and whatever is not ASCII. Numbers: 42, 1.5e3, &hFF,
// &b101, &o17. Texts: "a ""quoted"" word". Comments: ' // and Rem, to the end of the line. " _" at
// the end of a line joins it with the next. ";" ends a statement as the end of a line does.

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace host {

/// Both count from 1, columns in characters.
struct Position {
    std::size_t line = 1;
    std::size_t column = 1;

    auto operator<=>(const Position &) const = default;
};

enum class TokenKind {
    name,
    integer, ///< decimal: a number below 2^64; with & a pattern of 64 bits
    real,
    text,
    symbol,
    lineEnd,
    comment,
    wrong, ///< no token at all; "value" says what was expected
    end,
};

struct Token {
    TokenKind kind = TokenKind::end;
    std::string_view written = {}; ///< borrowed from the text
    Position at = {};
    std::uint64_t integer = 0;
    bool isPattern = false; ///< of an integer with &
    double real = 0;
    std::string value = {}; ///< of a text: what is between the quotes

    [[nodiscard]] bool isName(std::string_view name) const; ///< without regard to case
    [[nodiscard]] bool isSymbol(std::string_view symbol) const;
};

/// All tokens; the last is the end. Never fails: what is none is a token of the kind "wrong".
std::vector<Token> tokensOf(std::string_view text);

} // namespace host
