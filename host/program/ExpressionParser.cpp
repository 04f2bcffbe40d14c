#include "host/program/ExpressionParser.h"

#include <algorithm>
#include <array>
#include <limits>
#include <string>
#include <utility>

namespace host::program {

namespace {

enum Level : std::size_t {
    orLevel,
    xorLevel,
    andLevel,
    notLevel,
    comparisonLevel,
    sumLevel,
    productLevel,
    minusLevel,
    powerLevel
};

struct OperatorRow {
    Level level;
    std::string_view written;
    Operator op;
};

constexpr std::array operators{
    OperatorRow{orLevel, "Or", Operator::orBits},
    OperatorRow{xorLevel, "Xor", Operator::xorBits},
    OperatorRow{andLevel, "And", Operator::andBits},
    OperatorRow{comparisonLevel, "=", Operator::equal},
    OperatorRow{comparisonLevel, "<>", Operator::unequal},
    OperatorRow{comparisonLevel, "<", Operator::less},
    OperatorRow{comparisonLevel, "<=", Operator::lessOrEqual},
    OperatorRow{comparisonLevel, ">", Operator::greater},
    OperatorRow{comparisonLevel, ">=", Operator::greaterOrEqual},
    OperatorRow{comparisonLevel, "Is", Operator::is},
    OperatorRow{sumLevel, "+", Operator::add},
    OperatorRow{sumLevel, "-", Operator::subtract},
    OperatorRow{productLevel, "*", Operator::multiply},
    OperatorRow{productLevel, "/", Operator::divide},
    OperatorRow{productLevel, "\\", Operator::quotient},
    OperatorRow{productLevel, "Mod", Operator::remainder},
    OperatorRow{powerLevel, "^", Operator::power},
};

const OperatorRow *operatorAt(const Token &token) {
    const auto *found = std::ranges::find_if(operators, [&](const OperatorRow &row) {
        return token.isSymbol(row.written) || token.isName(row.written);
    });
    return found == operators.end() ? nullptr : found;
}

std::size_t depthOf(const ExpressionPtr &expression) {
    return expression == nullptr ? 0 : expression->depth;
}

std::size_t depthOf(const Expressions &expressions) {
    std::size_t deepest = 0;
    for (const ExpressionPtr &expression : expressions)
        deepest = std::max(deepest, depthOf(expression));
    return deepest;
}

[[noreturn]] void tooDeep(Position at) {
    throw SyntaxError{
        {at, "more than " + std::to_string(deepestNesting) + " levels inside each other"}};
}

template <typename What>
ExpressionPtr make(Position at, What what, std::size_t depthBelow = 0) {
    if (depthBelow >= deepestNesting)
        tooDeep(at);
    return std::make_unique<Expression>(
        Expression{.at = at, .what = std::move(what), .depth = depthBelow + 1});
}

} // namespace

Nesting::Nesting(std::size_t &depth, Position at) : depth_(depth) {
    if (depth == deepestNesting)
        tooDeep(at);
    ++depth_;
}

std::string_view shown(Operator op) {
    if (op == Operator::notBits)
        return "Not";
    const auto *row = std::ranges::find(operators, op, &OperatorRow::op);
    return row == operators.end() ? "-" : row->written;
}

Expressions ExpressionParser::list() {
    Expressions result;
    do
        result.push_back(expression());
    while (tokens_.acceptSymbol(","));
    return result;
}

bool ExpressionParser::atOperator(bool signsToo) const {
    const OperatorRow *row = operatorAt(tokens_.next());
    return tokens_.next().isName("IsA") || (row != nullptr && (row->level != sumLevel || signsToo));
}

ExpressionPtr ExpressionParser::level(std::size_t level, ExpressionPtr first) {
    if (level == powerLevel)
        return power(std::move(first));
    if (level == notLevel && first == nullptr && tokens_.next().isName("Not"))
        return prefixed(notLevel, Operator::notBits);
    if (level == minusLevel && first == nullptr && tokens_.next().isSymbol("-"))
        return prefixed(minusLevel, Operator::negate);
    if (level == minusLevel && first == nullptr)
        tokens_.acceptSymbol("+");
    ExpressionPtr left = this->level(level + 1, std::move(first));
    for (;;) {
        const Position at = tokens_.next().at;
        if (level == comparisonLevel && tokens_.acceptWord("IsA")) {
            const std::size_t depth = depthOf(left);
            left = make(at, IsA{std::move(left), tokens_.expectName("a class")}, depth);
            continue;
        }
        const OperatorRow *row = operatorAt(tokens_.next());
        if (row == nullptr || row->level != level)
            return left;
        tokens_.take();
        ExpressionPtr right = this->level(level + 1);
        const std::size_t depth = std::max(depthOf(left), depthOf(right));
        left = make(at, Binary{row->op, std::move(left), std::move(right)}, depth);
    }
}

ExpressionPtr ExpressionParser::prefixed(std::size_t level, Operator op) {
    const Position at = tokens_.take().at;
    const Nesting nesting(nesting_, at);
    ExpressionPtr inner = this->level(level);
    const std::size_t depth = depthOf(inner);
    return make(at, Unary{op, std::move(inner)}, depth);
}

/// From the left; the sign of an exponent stands behind the operator.
ExpressionPtr ExpressionParser::power(ExpressionPtr first) {
    ExpressionPtr left = first == nullptr ? operand() : std::move(first);
    while (tokens_.next().isSymbol("^")) {
        const Position at = tokens_.take().at;
        ExpressionPtr right =
            tokens_.next().isSymbol("-") ? prefixed(powerLevel, Operator::negate) : operand();
        const std::size_t depth = std::max(depthOf(left), depthOf(right));
        left = make(at, Binary{Operator::power, std::move(left), std::move(right)}, depth);
    }
    return left;
}

ExpressionPtr ExpressionParser::operand() {
    const Position at = tokens_.next().at;
    const Nesting nesting(nesting_, at);
    if (tokens_.acceptSymbol("(")) {
        ExpressionPtr inner = expression();
        tokens_.expectSymbol(")");
        return membersOf(std::move(inner));
    }
    if (tokens_.acceptWord("New"))
        return creation(at);
    if (tokens_.next().kind == TokenKind::name && !isReserved(tokens_.next()))
        return chain();
    return literal();
}

ExpressionPtr ExpressionParser::literal() {
    const Token &token = tokens_.next();
    Literal result;
    if (token.kind == TokenKind::text)
        result.value = token.value;
    else if (token.kind == TokenKind::real)
        result.value = token.real;
    else if (token.isName("True") || token.isName("False"))
        result.value = token.isName("True");
    else if (token.kind == TokenKind::integer &&
             (token.isPattern || std::in_range<std::int64_t>(token.integer)))
        result.value = static_cast<std::int64_t>(token.integer);
    else if (token.kind == TokenKind::integer)
        result.value = token.integer;
    else if (!token.isName("Nil"))
        tokens_.failExpecting("a value");
    tokens_.take();
    return make(token.at, std::move(result));
}

ExpressionPtr ExpressionParser::creation(Position at) {
    Create result{.className = tokens_.expectName("a class")};
    result.arguments = arguments();
    const std::size_t depth = depthOf(result.arguments.values);
    return membersOf(make(at, std::move(result), depth));
}

ExpressionPtr ExpressionParser::chain() {
    Name name{.name = tokens_.expectName("a name")};
    name.arguments = arguments();
    const Position at = name.name.at;
    const std::size_t depth = depthOf(name.arguments.values);
    return membersOf(make(at, std::move(name), depth));
}

ExpressionPtr ExpressionParser::membersOf(ExpressionPtr target) {
    for (;;) {
        const Position at = tokens_.next().at;
        const std::size_t depth = depthOf(target);
        if (tokens_.acceptSymbol(".")) {
            Member member{.target = std::move(target), .name = tokens_.expectMemberName()};
            member.arguments = arguments();
            const std::size_t deepest = std::max(depth, depthOf(member.arguments.values));
            const Position nameAt = member.name.at;
            target = make(nameAt, std::move(member), deepest);
        } else if (tokens_.next().isSymbol("(")) {
            Index index{.target = std::move(target), .arguments = arguments().values};
            const std::size_t deepest = std::max(depth, depthOf(index.arguments));
            target = make(at, std::move(index), deepest);
        } else {
            return target;
        }
    }
}

Arguments ExpressionParser::arguments() {
    Arguments result;
    if (!tokens_.acceptSymbol("("))
        return result;
    result.written = true;
    if (tokens_.acceptSymbol(")"))
        return result;
    result.values = list();
    if (!tokens_.acceptSymbol(")"))
        tokens_.failExpecting("a comma or )");
    return result;
}

} // namespace host::program
