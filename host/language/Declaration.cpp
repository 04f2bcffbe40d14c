#include "host/language/Declaration.h"

#include "host/language/Lexer.h"
#include "host/language/Names.h"

#include <algorithm>
#include <array>
#include <charconv>

namespace host {

namespace {

struct TypeName {
    std::string_view name;
    TypeKind kind;
    std::size_t width;
};

/// The first name of a kind is the one shown.
constexpr std::array typeNames{
    TypeName{"Boolean", TypeKind::boolean, 1}, TypeName{"Integer", TypeKind::integer, 8},
    TypeName{"Int64", TypeKind::integer, 8},   TypeName{"Int32", TypeKind::int32, 4},
    TypeName{"UInt32", TypeKind::uint32, 4},   TypeName{"UInt64", TypeKind::uint64, 8},
    TypeName{"Double", TypeKind::real, 8},     TypeName{"Single", TypeKind::single, 4},
    TypeName{"String", TypeKind::string, 8},   TypeName{"Ptr", TypeKind::pointer, 8},
    TypeName{"Variant", TypeKind::variant, 8},
};

class Parser {
public:
    explicit Parser(std::string_view text) : text_(text), tokens_(tokensOf(text)) {}

    MethodDeclaration method();
    ConstantDeclaration constant();
    Type wholeType();

private:
    [[noreturn]] void fail(std::string_view expected) const { failAt(next(), expected); }
    [[noreturn]] void failAt(const Token &token, std::string_view expected) const {
        throw DeclarationError('"' + std::string(text_) + "\": column " +
                               std::to_string(token.at.column) + ": expected " +
                               std::string(expected));
    }
    [[nodiscard]] const Token &next() const { return tokens_[next_]; }
    [[nodiscard]] bool atEnd() const { return next().kind == TokenKind::end; }
    bool accept(std::string_view symbol) {
        if (!next().isSymbol(symbol))
            return false;
        ++next_;
        return true;
    }
    void expectEnd() const {
        if (!atEnd())
            fail("the end");
    }
    std::string name(std::string_view what) {
        if (next().kind != TokenKind::name || next().isName("as"))
            fail(what);
        return std::string(tokens_[next_++].written);
    }
    bool acceptWord(std::string_view word) {
        if (!next().isName(word))
            return false;
        ++next_;
        return true;
    }
    bool acceptBrackets() {
        if (!accept("("))
            return false;
        if (!accept(")"))
            fail("\")\"");
        return true;
    }
    Type type();
    Parameter parameter();
    void parameters(std::vector<Parameter> &list);
    std::string literal();

    std::string_view text_;
    std::vector<Token> tokens_;
    std::size_t next_ = 0;
};

Type Parser::type() {
    const std::string word = name("a type");
    Type result = typeNamed(word);
    result.isArray = acceptBrackets();
    return result;
}

std::string Parser::literal() {
    const std::string sign = accept("-") ? "-" : "";
    const Token &value = next();
    if (value.kind == TokenKind::wrong)
        fail(value.value);
    if (value.kind == TokenKind::symbol || value.kind == TokenKind::end)
        fail("a value");
    ++next_;
    return sign + std::string(value.written);
}

Parameter Parser::parameter() {
    Parameter result;
    result.assigns = acceptWord("assigns");
    result.name = name("a parameter");
    const bool brackets = acceptBrackets();
    if (!acceptWord("as"))
        fail("\"as\"");
    result.type = type();
    if (brackets && result.type.isArray)
        fail("one pair of brackets, not two");
    result.type.isArray |= brackets;
    if (accept("="))
        result.defaultValue = literal();
    return result;
}

void Parser::parameters(std::vector<Parameter> &list) {
    do {
        if (!list.empty() && list.back().assigns)
            fail("nothing behind the parameter that \"Assigns\" marks");
        list.push_back(parameter());
    } while (accept(","));
}

MethodDeclaration Parser::method() {
    MethodDeclaration result;
    result.name = name("a name");
    if (accept("(")) {
        if (!accept(")")) {
            parameters(result.parameters);
            if (!accept(")"))
                fail("\")\"");
        }
    }
    if (acceptWord("as"))
        result.result = type();
    if (result.parameters.empty() && result.result && !atEnd()) {
        // What looked like a name with a result was the first of several parameters.
        next_ = 0;
        result = {};
        parameters(result.parameters);
    }
    expectEnd();
    return result;
}

ConstantDeclaration Parser::constant() {
    ConstantDeclaration result{.name = name("a name"), .value = 0};
    if (!accept("="))
        fail("\"=\"");
    const Token &value = next();
    try {
        result.value = parseInteger(literal());
        expectEnd();
    } catch (const DeclarationError &) {
        failAt(value, "an integer");
    }
    return result;
}

Type Parser::wholeType() {
    Type result = type();
    expectEnd();
    return result;
}

} // namespace

bool Type::isHandle() const {
    return isArray || kind == TypeKind::string || kind == TypeKind::variant ||
           kind == TypeKind::object;
}

bool Type::operator==(const Type &other) const {
    return kind == other.kind && isArray == other.isArray && sameName(className, other.className);
}

Type typeNamed(std::string_view word) {
    const auto *known = std::ranges::find_if(
        typeNames, [&](const TypeName &row) { return sameName(row.name, word); });
    if (known != typeNames.end())
        return {.kind = known->kind, .className = {}};
    return {.kind = TypeKind::object, .className = std::string(word)};
}

std::vector<std::string> namesOfTypes() {
    std::vector<std::string> result;
    result.reserve(typeNames.size());
    for (const TypeName &row : typeNames)
        result.emplace_back(row.name);
    return result;
}

std::string describe(const Type &type) {
    std::string result = type.className;
    if (type.kind != TypeKind::object)
        result = std::ranges::find(typeNames, type.kind, &TypeName::kind)->name;
    return type.isArray ? result + "()" : result;
}

std::size_t widthOf(const Type &type) {
    if (type.isArray || type.kind == TypeKind::object)
        return sizeof(void *);
    return std::ranges::find(typeNames, type.kind, &TypeName::kind)->width;
}

std::string describe(const MethodDeclaration &method) {
    std::string result = method.name;
    if (!method.parameters.empty()) {
        const bool named = !method.name.empty();
        result += named ? "(" : "";
        for (const Parameter &parameter : method.parameters) {
            if (&parameter != &method.parameters.front())
                result += ", ";
            result += parameter.assigns ? "Assigns " : "";
            result += parameter.name + " As " + describe(parameter.type);
            if (parameter.defaultValue)
                result += " = " + *parameter.defaultValue;
        }
        result += named ? ")" : "";
    }
    return method.result ? result + " As " + describe(*method.result) : result;
}

Type parseType(std::string_view text) {
    return Parser(text).wholeType();
}

MethodDeclaration parseMethod(std::string_view text) {
    return Parser(text).method();
}

ConstantDeclaration parseConstant(std::string_view text) {
    return Parser(text).constant();
}

std::int64_t parseInteger(std::string_view literal) {
    std::string_view digits = literal;
    const bool negative = digits.starts_with('-');
    if (negative)
        digits.remove_prefix(1);
    int base = 10;
    if (digits.size() > 2 && digits.front() == '&') {
        const char prefix = folded(digits[1]);
        base = prefix == 'h' ? 16 : prefix == 'o' ? 8 : prefix == 'b' ? 2 : 0;
        digits.remove_prefix(2);
    }
    std::uint64_t magnitude = 0;
    const char *const start = digits.data();
    const char *const end = start + digits.size();
    const auto [stop, error] = base == 0
                                   ? std::from_chars_result{start, std::errc::invalid_argument}
                                   : std::from_chars(start, end, magnitude, base);
    // A radix literal is a bit pattern and may fill all 64 bits; a decimal one is a number.
    const std::uint64_t largest =
        base != 10 ? UINT64_MAX : static_cast<std::uint64_t>(INT64_MAX) + (negative ? 1 : 0);
    if (error != std::errc{} || stop != end || magnitude > largest)
        throw DeclarationError('"' + std::string(literal) + "\" is not a 64-bit integer");
    return static_cast<std::int64_t>(negative ? 0 - magnitude : magnitude);
}

bool sameSignature(const MethodDeclaration &a, const MethodDeclaration &b) {
    return sameName(a.name, b.name) && a.result == b.result &&
           std::ranges::equal(a.parameters, b.parameters,
                              [](const Parameter &left, const Parameter &right) {
                                  return left.type == right.type && left.assigns == right.assigns;
                              });
}

} // namespace host
