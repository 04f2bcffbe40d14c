#include "host/zkthost/Expression.h"

#include "host/language/Declaration.h"
#include "host/language/Names.h"
#include "host/zkthost/Options.h"

#include <cctype>
#include <cstdint>
#include <cstdlib>
#include <optional>
#include <string>
#include <string_view>

namespace zkthost {

namespace {

bool isNameStart(char c) {
    return std::isalpha(static_cast<unsigned char>(c)) != 0 || c == '_';
}

bool isNamePart(char c) {
    return isNameStart(c) || std::isdigit(static_cast<unsigned char>(c)) != 0;
}

std::optional<std::int64_t> integerIn(std::string_view literal) {
    try {
        return host::parseInteger(literal);
    } catch (const host::DeclarationError &) {
        return std::nullopt;
    }
}

class Parser {
public:
    explicit Parser(std::string_view text) : text_(text) {}

    Expression parseAll() {
        Expression expression = parse();
        if (!expression.literal && take('='))
            expression.assigned = std::make_unique<Expression>(parse());
        skipBlanks();
        if (at_ != text_.size())
            expected("the end");
        return expression;
    }

private:
    [[noreturn]] void expected(const std::string &what) const {
        throw InputError("\"" + std::string(text_) + "\", column " + std::to_string(at_ + 1) +
                         ": " + what + " was expected");
    }

    [[nodiscard]] char peek() const { return at_ < text_.size() ? text_[at_] : '\0'; }

    void skipBlanks() {
        while (peek() == ' ' || peek() == '\t')
            ++at_;
    }

    bool take(char c) {
        skipBlanks();
        if (peek() != c)
            return false;
        ++at_;
        return true;
    }

    std::string name() {
        skipBlanks();
        if (!isNameStart(peek()))
            expected("a name");
        const std::size_t start = at_;
        while (isNamePart(peek()))
            ++at_;
        return std::string(text_.substr(start, at_ - start));
    }

    std::string quotedText() {
        std::string result;
        for (++at_;; ++at_) {
            if (at_ == text_.size())
                expected("a closing \"");
            if (peek() == '"') {
                ++at_;
                if (peek() != '"')
                    return result;
            }
            result += peek();
        }
    }

    Literal number() {
        const std::size_t start = at_;
        bool isReal = false;
        while (isNamePart(peek()) || peek() == '-' || peek() == '&' || peek() == '.') {
            isReal = isReal || peek() == '.';
            ++at_;
        }
        const std::string digits(text_.substr(start, at_ - start));
        if (isReal) {
            char *end = nullptr;
            const double value = std::strtod(digits.c_str(), &end);
            if (*end == '\0')
                return value;
        } else if (const auto value = integerIn(digits)) {
            return *value;
        }
        at_ = start;
        expected("a number");
    }

    Expression parse() {
        skipBlanks();
        const char first = peek();
        if (first == '"')
            return {.literal = quotedText()};
        if (std::isdigit(static_cast<unsigned char>(first)) != 0 || first == '-' || first == '&')
            return {.literal = number()};

        std::string word = name();
        if (host::sameName(word, "true") || host::sameName(word, "false"))
            return {.literal = host::sameName(word, "true")};
        if (host::sameName(word, "nil"))
            return {.literal = std::monostate{}};
        Expression result;
        result.isNew = host::sameName(word, "new");
        if (result.isNew)
            word = name();
        result.chain.push_back(member(std::move(word)));
        while (take('.'))
            result.chain.push_back(member(name()));
        return result;
    }

    Member member(std::string memberName) {
        Member result;
        result.name = std::move(memberName);
        if (!take('(') || take(')'))
            return result;
        do
            result.arguments.push_back(parse());
        while (take(','));
        if (!take(')'))
            expected("a comma or )");
        return result;
    }

    std::string_view text_;
    std::size_t at_ = 0;
};

} // namespace

Expression parseExpression(std::string_view text) {
    return Parser(text).parseAll();
}

} // namespace zkthost
