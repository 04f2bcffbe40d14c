#include "host/language/Lexer.h"

#include "host/core/Text.h"
#include "host/language/Names.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <utility>

namespace host {

namespace {

constexpr std::array<std::string_view, 3> longSymbols{"<>", "<=", ">="};
constexpr std::string_view symbols = "(),.=<>+-*/\\^";

constexpr bool isDigit(char c) {
    return c >= '0' && c <= '9';
}

constexpr bool startsName(char c) {
    return (folded(c) >= 'a' && folded(c) <= 'z') || c == '_' ||
           static_cast<unsigned char>(c) >= 0x80;
}

constexpr bool continuesName(char c) {
    return startsName(c) || isDigit(c);
}

constexpr bool continuesCharacter(char c) {
    return (static_cast<unsigned char>(c) & 0xC0) == 0x80;
}

class Lexer {
public:
    explicit Lexer(std::string_view text) : text_(text) {
        if (text_.starts_with("\xEF\xBB\xBF")) // the mark that editors put first
            start_ = next_ = 3;
    }

    std::vector<Token> all() {
        do
            tokens_.push_back(read());
        while (tokens_.back().kind != TokenKind::end);
        return std::move(tokens_);
    }

private:
    [[nodiscard]] char peek(std::size_t ahead = 0) const {
        return next_ + ahead < text_.size() ? text_[next_ + ahead] : '\0';
    }
    [[nodiscard]] bool atEnd() const { return next_ >= text_.size(); }
    template <typename Wanted>
    void skipWhile(Wanted wanted) {
        while (!atEnd() && wanted(text_[next_]))
            ++next_;
    }
    void skipBlanks() {
        skipWhile([](char c) { return c == ' ' || c == '\t'; });
    }
    void skipLine() {
        skipWhile([](char c) { return c != '\n' && c != '\r'; });
    }
    /// CR, LF or both.
    bool skipLineEnd() {
        if (peek() != '\n' && peek() != '\r')
            return false;
        next_ += peek() == '\r' && peek(1) == '\n' ? 2 : 1;
        return true;
    }

    /// Everything since the last token was made begins here.
    void beginToken() {
        position_.column += static_cast<std::size_t>(
            std::count_if(text_.begin() + static_cast<std::ptrdiff_t>(start_),
                          text_.begin() + static_cast<std::ptrdiff_t>(next_),
                          [](char c) { return !continuesCharacter(c); }));
        start_ = next_;
    }
    void beginLine() {
        position_ = {.line = position_.line + 1, .column = 1};
        start_ = next_;
    }
    [[nodiscard]] Token make(TokenKind kind) const {
        return {.kind = kind, .written = text_.substr(start_, next_ - start_), .at = position_};
    }
    [[nodiscard]] Token wrong(std::string expected) const {
        Token token = make(TokenKind::wrong);
        token.value = std::move(expected);
        return token;
    }

    bool skipContinuation();
    Token read();
    Token name();
    Token number();
    Token pattern();
    Token text();

    std::string_view text_;
    std::size_t start_ = 0; ///< of the token being read
    std::size_t next_ = 0;
    Position position_; ///< of start_
    bool lineEnds_ = false;
    std::vector<Token> tokens_;
};

/// An underscore as the last thing in a line.
bool Lexer::skipContinuation() {
    if (peek() != '_' || continuesName(peek(1)))
        return false;
    const std::size_t underscore = next_++;
    skipBlanks();
    if (peek() == '\'' || (peek() == '/' && peek(1) == '/'))
        skipLine();
    if (skipLineEnd()) {
        beginLine();
        return true;
    }
    next_ = underscore;
    return false;
}

Token Lexer::read() {
    if (std::exchange(lineEnds_, false))
        beginLine();
    do
        skipBlanks();
    while (skipContinuation());
    beginToken();
    if (atEnd())
        return make(TokenKind::end);
    if (skipLineEnd()) {
        lineEnds_ = true;
        return make(TokenKind::lineEnd);
    }
    const char c = peek();
    if (c == ';') {
        ++next_;
        return make(TokenKind::lineEnd);
    }
    if (c == '\'' || (c == '/' && peek(1) == '/')) {
        skipLine();
        return make(TokenKind::comment);
    }
    if (startsName(c))
        return name();
    if (isDigit(c))
        return number();
    if (c == '&')
        return pattern();
    if (c == '"')
        return text();
    for (const std::string_view symbol : longSymbols)
        if (text_.substr(next_).starts_with(symbol)) {
            next_ += symbol.size();
            return make(TokenKind::symbol);
        }
    ++next_;
    if (symbols.find(c) == std::string_view::npos)
        return wrong("a name, a value or an operator");
    return make(TokenKind::symbol);
}

Token Lexer::name() {
    skipWhile(continuesName);
    Token token = make(TokenKind::name);
    if (!token.isName("rem"))
        return token;
    skipLine();
    return make(TokenKind::comment);
}

Token Lexer::number() {
    skipWhile(isDigit);
    bool isReal = false;
    if (peek() == '.' && isDigit(peek(1))) {
        isReal = true;
        ++next_;
        skipWhile(isDigit);
    }
    const std::size_t sign = peek(1) == '+' || peek(1) == '-' ? 2 : 1;
    if (folded(peek()) == 'e' && isDigit(peek(sign))) {
        isReal = true;
        next_ += sign;
        skipWhile(isDigit);
    }
    const bool ends = !continuesName(peek());
    skipWhile(continuesName);
    Token token = make(isReal ? TokenKind::real : TokenKind::integer);
    if (isReal) {
        const auto real = realNumber(std::string(token.written));
        token.real = real.value_or(0);
        return ends && real ? token : wrong("a number");
    }
    const char *const first = token.written.data();
    const auto [end, error] = std::from_chars(first, first + token.written.size(), token.integer);
    return ends && error == std::errc{} ? token : wrong("a number");
}

Token Lexer::pattern() {
    next_ += 1;
    const char prefix = folded(peek());
    const int base = prefix == 'h' ? 16 : prefix == 'o' ? 8 : prefix == 'b' ? 2 : 0;
    skipWhile(continuesName);
    Token token = make(TokenKind::integer);
    token.isPattern = true;
    if (base == 0 || token.written.size() < 3)
        return wrong("a number");
    const char *const last = token.written.data() + token.written.size();
    const auto [stop, error] = std::from_chars(token.written.data() + 2, last, token.integer, base);
    return stop == last && error == std::errc{} ? token : wrong("a number");
}

Token Lexer::text() {
    std::string value;
    for (++next_; !atEnd() && peek() != '\n' && peek() != '\r'; ++next_) {
        if (peek() == '"') {
            ++next_;
            if (peek() != '"') {
                Token token = make(TokenKind::text);
                token.value = std::move(value);
                return token;
            }
        }
        value += peek();
    }
    return wrong("a closing quote");
}

} // namespace

bool Token::isName(std::string_view name) const {
    return kind == TokenKind::name && sameName(written, name);
}

bool Token::isSymbol(std::string_view symbol) const {
    return kind == TokenKind::symbol && written == symbol;
}

std::vector<Token> tokensOf(std::string_view text) {
    return Lexer(text).all();
}

} // namespace host
