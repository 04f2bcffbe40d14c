#pragma once

#include "host/program/Syntax.h"

#include <cstddef>
#include <span>
#include <string_view>
#include <vector>

namespace host::program {

/// A statement cannot be read from here on.
struct SyntaxError {
    Diagnostic diagnostic;
};

/// The tokens of a program, without comments.
class TokenReader {
public:
    explicit TokenReader(std::string_view text);

    [[nodiscard]] const Token &next() const { return tokens_[next_]; }
    [[nodiscard]] const Token &afterNext() const;
    /// Whether nothing stands between this token and the one behind it, as in "f -1".
    [[nodiscard]] bool isJoinedToTheNext() const;
    /// Does not pass the end.
    const Token &take();
    [[nodiscard]] bool atEnd() const { return next().kind == TokenKind::end; }
    [[nodiscard]] bool atLineEnd() const { return atEnd() || next().kind == TokenKind::lineEnd; }

    /// Up to the line's end, without it.
    [[nodiscard]] std::span<const Token> restOfLine() const;

    bool acceptWord(std::string_view word);
    bool acceptSymbol(std::string_view symbol);
    /// Throw SyntaxError when something else stands there.
    void expectWord(std::string_view word);
    void expectSymbol(std::string_view symbol);
    Identifier expectName(std::string_view what);
    Identifier expectMemberName();

    /// "a value was expected", or what the token there would need.
    [[noreturn]] void failExpecting(std::string_view what) const;
    void skipLine();
    void skipLineEnds();

private:
    std::vector<Token> tokens_;
    std::size_t next_ = 0;
};

/// Words with a meaning of their own, which nothing else is called.
bool isReserved(const Token &token);

} // namespace host::program
