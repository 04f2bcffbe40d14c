#pragma once

#include "host/program/TokenReader.h"

#include <cstddef>
#include <initializer_list>

namespace host::program {

/// Blocks inside blocks, brackets inside brackets, operators beside operators: so deep and no
/// deeper, so that no text ends the stack.
inline constexpr std::size_t deepestNesting = 200;

/// Counts how deep the parser is. Throws SyntaxError.
class Nesting {
public:
    Nesting(std::size_t &depth, Position at);
    ~Nesting() { --depth_; }
    Nesting(const Nesting &) = delete;
    Nesting &operator=(const Nesting &) = delete;

private:
    std::size_t &depth_;
};

/// As a program writes it.
std::string_view shown(Operator op);

/// Reads expressions, the weakest operator first: Or, Xor, And, Not, comparisons, + -, * / \ Mod,
/// unary minus, ^. All functions throw SyntaxError.
class ExpressionParser {
public:
    explicit ExpressionParser(TokenReader &tokens) : tokens_(tokens) {}

    ExpressionPtr expression() { return level(0); }
    /// At least one, with commas between them.
    Expressions list();
    /// A name with its brackets, members and elements: what can begin a statement.
    ExpressionPtr chain();
    /// The whole expression whose first operand was read.
    ExpressionPtr continued(ExpressionPtr first) { return level(0, std::move(first)); }
    /// Whether an operator follows; a sign could as well begin an argument.
    [[nodiscard]] bool atOperator(bool signsToo) const;
    /// New Class(arguments); "New" has been read.
    ExpressionPtr creation(Position at);

private:
    ExpressionPtr level(std::size_t level, ExpressionPtr first = {});
    ExpressionPtr prefixed(std::size_t level, Operator op);
    ExpressionPtr power(ExpressionPtr first);
    ExpressionPtr operand();
    ExpressionPtr literal();
    ExpressionPtr membersOf(ExpressionPtr target);
    Arguments arguments();

    TokenReader &tokens_;
    std::size_t nesting_ = 0;
};

} // namespace host::program
