#pragma once

// A program of the host's language as a tree. The parser makes it; the checker fills in what the
// names mean and the types of expressions; the evaluator walks it.

#include "host/classes/ClassTable.h"
#include "host/language/Declaration.h"
#include "host/language/Lexer.h"

#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <variant>
#include <vector>

namespace host::program {

struct Function;
struct ArrayMember;
struct Expression;
struct Procedure;
using ExpressionPtr = std::unique_ptr<Expression>;
using Expressions = std::vector<ExpressionPtr>;

struct Identifier {
    std::string name; ///< as written
    Position at;
};

/// Where a variable lives: in the frame of the running procedure, or in that of the program.
struct Slot {
    bool isGlobal = false;
    std::size_t index = 0;
};

enum class Operator {
    orBits,
    xorBits,
    andBits,
    notBits,
    equal,
    unequal,
    less,
    lessOrEqual,
    greater,
    greaterOrEqual,
    is,
    add,
    subtract,
    multiply,
    divide,
    quotient,
    remainder,
    negate,
    power,
};

// Expressions

struct Literal {
    /// The monostate is Nil.
    std::variant<std::monostate, std::int64_t, std::uint64_t, double, bool, std::string> value;
};

/// What stands in brackets behind a name; no brackets are not the same as empty ones.
struct Arguments {
    bool written = false;
    Expressions values;
};

/// Array(...): the expression's type has its elements' type.
struct ArrayLiteral {};
/// Class(value)
struct Cast {
    const HostClass *type;
};

/// A variable, a procedure, a function of the language or a cast.
struct Name {
    Identifier name;
    Arguments arguments = {};
    std::variant<std::monostate, Slot, const Procedure *, const Function *, ArrayLiteral, Cast>
        meaning = {};
};

/// What a class has by itself.
struct SharedMethod {
    const HostClass *type;
    const Method *method;
};

/// Of an object, an array or a class.
struct Member {
    ExpressionPtr target;
    Identifier name;
    Arguments arguments = {};
    std::variant<std::monostate, const Property *, const Method *, SharedMethod, const Constant *,
                 const ArrayMember *>
        meaning = {};
};

struct Index {
    ExpressionPtr target;
    Expressions arguments;
};

struct Create {
    Identifier className;
    Arguments arguments = {};
    const HostClass *type = nullptr;
    /// Null: no argument, no constructor.
    const Method *constructor = nullptr;
};

struct Unary {
    Operator op;
    ExpressionPtr operand;
};

struct Binary {
    Operator op;
    ExpressionPtr left;
    ExpressionPtr right;
};

struct IsA {
    ExpressionPtr operand;
    Identifier className;
    const HostClass *type = nullptr;
};

struct Expression {
    Position at;
    std::variant<Literal, Name, Member, Index, Create, Unary, Binary, IsA> what;
    std::size_t depth = 1; ///< of the tree from here
    /// Nothing: a call that gives no value.
    std::optional<Type> type = {};

    /// Only of one that the checker let pass where a value is needed.
    [[nodiscard]] const Type &valueType() const {
        return *type; // NOLINT(bugprone-unchecked-optional-access)
    }
};

/// Of what was told to be wrong: fits everywhere, so that it is told once.
inline Type unknownType() {
    return {.kind = TypeKind::variant, .className = "unknown"};
}
/// The type of Nil: an object of no class.
inline Type nilType() {
    return {.kind = TypeKind::object};
}

// Statements

struct Statement;

struct Block {
    std::vector<Statement> statements;
    /// Of the variables that live as long as the block runs.
    std::size_t firstSlot = 0;
    std::size_t endSlot = 0;
};

/// A type where a program names one.
struct TypeName {
    Type type = {.kind = TypeKind::variant};
    Position at = {};
};

struct Variable {
    Identifier name;
    bool isArray = false;
    ExpressionPtr upperBound = {}; ///< null: an empty array
    Slot slot = {};
};

struct Declare {
    std::vector<Variable> variables;
    TypeName type;
    ExpressionPtr value = {}; ///< evaluated for each variable
};

struct DeclareConstant {
    Identifier name;
    ExpressionPtr value;
    Slot slot = {};
};

struct ReDim {
    Variable variable;
    Type elementType = {};
};

struct Assign {
    ExpressionPtr target;
    ExpressionPtr value;
};

struct Evaluate {
    ExpressionPtr expression;
};

struct Branch {
    ExpressionPtr condition;
    Block body;
};

struct If {
    std::vector<Branch> branches;
    Block otherwise;
};

/// The variable of a loop: its own, with "As", or one that is there.
struct LoopVariable {
    Identifier name;
    std::optional<TypeName> declared = {};
    Type type = {};
    Slot slot = {};
};

struct For {
    LoopVariable variable;
    ExpressionPtr from;
    ExpressionPtr to;
    ExpressionPtr step; ///< null: 1
    bool isDown = false;
    Block body;
};

struct ForEach {
    LoopVariable variable;
    ExpressionPtr collection;
    Block body;
};

struct While {
    ExpressionPtr condition;
    Block body;
};

enum class Leaving { forLoop, whileLoop, procedure };

struct Exit {
    Leaving what;
    bool isFunction = false;
};

struct Return {
    ExpressionPtr value; ///< null in a Sub
};

struct Catch {
    std::optional<Identifier> name;
    Identifier className;
    Block body;
    Slot slot = {};
    const HostClass *type = nullptr;
};

struct Try {
    Block body;
    std::vector<Catch> catches;
    Block finally;
};

struct Raise {
    ExpressionPtr exception;
};

struct Print {
    Expressions values;
};

struct Assert {
    ExpressionPtr condition;
    ExpressionPtr text; ///< may be null
};

struct Statement {
    Position at;
    std::variant<Declare, DeclareConstant, ReDim, Assign, Evaluate, If, For, ForEach, While, Exit,
                 Return, Try, Raise, Print, Assert>
        what;
};

struct ProgramParameter {
    Identifier name;
    TypeName type;
    ExpressionPtr defaultValue = {};
};

struct Procedure {
    Identifier name;
    std::vector<ProgramParameter> parameters;
    std::optional<TypeName> result;
    Block body;
    std::size_t slotCount = 0; ///< parameters first
};

struct Program {
    Block main;
    std::vector<std::unique_ptr<Procedure>> procedures;
};

/// Something that is wrong in a program's text.
struct Diagnostic {
    Position at;
    std::string text;
};

} // namespace host::program
