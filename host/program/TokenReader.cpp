#include "host/program/TokenReader.h"

#include "host/language/Names.h"

#include <algorithm>
#include <array>
#include <string>

namespace host::program {

namespace {

constexpr std::array<std::string_view, 43> reservedWords{
    "And",    "As",    "Assert", "Catch", "Const",   "Dim",      "DownTo",   "Each", "Else",
    "ElseIf", "End",   "Exit",   "False", "Finally", "For",      "Function", "If",   "In",
    "Is",     "IsA",   "Mod",    "New",   "Next",    "Nil",      "Not",      "Or",   "Print",
    "Raise",  "ReDim", "Return", "Step",  "Sub",     "Then",     "To",       "True", "Try",
    "Wend",   "While", "Xor",    "ByRef", "ByVal",   "Optional", "Rem"};

std::string shown(const Token &token) {
    return '"' + std::string(token.written) + '"';
}

} // namespace

bool isReserved(const Token &token) {
    return std::ranges::any_of(reservedWords,
                               [&](std::string_view word) { return token.isName(word); });
}

TokenReader::TokenReader(std::string_view text) : tokens_(tokensOf(text)) {
    std::erase_if(tokens_, [](const Token &token) { return token.kind == TokenKind::comment; });
}

const Token &TokenReader::afterNext() const {
    return tokens_[std::min(next_ + 1, tokens_.size() - 1)];
}

bool TokenReader::isJoinedToTheNext() const {
    const std::string_view here = next().written;
    return here.data() + here.size() == afterNext().written.data();
}

const Token &TokenReader::take() {
    const Token &token = next();
    if (!atEnd())
        ++next_;
    return token;
}

std::span<const Token> TokenReader::restOfLine() const {
    std::size_t end = next_;
    while (tokens_[end].kind != TokenKind::lineEnd && tokens_[end].kind != TokenKind::end)
        ++end;
    return std::span(tokens_).subspan(next_, end - next_);
}

bool TokenReader::acceptWord(std::string_view word) {
    if (!next().isName(word))
        return false;
    take();
    return true;
}

bool TokenReader::acceptSymbol(std::string_view symbol) {
    if (!next().isSymbol(symbol))
        return false;
    take();
    return true;
}

void TokenReader::expectWord(std::string_view word) {
    if (!acceptWord(word))
        failExpecting(word);
}

void TokenReader::expectSymbol(std::string_view symbol) {
    if (!acceptSymbol(symbol))
        failExpecting(symbol);
}

Identifier TokenReader::expectName(std::string_view what) {
    if (next().kind != TokenKind::name || isReserved(next()))
        failExpecting(what);
    const Token &token = take();
    return {std::string(token.written), token.at};
}

Identifier TokenReader::expectMemberName() {
    if (next().kind != TokenKind::name)
        failExpecting("a member's name");
    const Token &token = take();
    return {std::string(token.written), token.at};
}

void TokenReader::failExpecting(std::string_view what) const {
    const Token &token = next();
    if (token.kind == TokenKind::wrong)
        throw SyntaxError{{token.at, token.value + " was expected instead of " + shown(token)}};
    throw SyntaxError{{token.at, std::string(what) + " was expected" +
                                     (atLineEnd() ? "" : " instead of " + shown(token))}};
}

void TokenReader::skipLine() {
    while (!atLineEnd())
        take();
}

void TokenReader::skipLineEnds() {
    while (next().kind == TokenKind::lineEnd)
        take();
}

} // namespace host::program
