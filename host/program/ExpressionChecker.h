#pragma once

#include "host/program/Parser.h"
#include "host/program/Scopes.h"
#include "host/program/Syntax.h"

#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace host::program {

/// Everything that names can mean, and the errors found so far.
struct Surroundings {
    const ClassTable &classes;
    Form form = Form::file;
    /// For typed lines: a name that means nothing else is a member of the object that this method
    /// gives.
    std::optional<SharedMethod> implicitObject = {};
    Scopes scopes = {};
    std::map<std::string, const Procedure *, std::less<>> procedures = {}; ///< folded names
    std::vector<Diagnostic> errors = {};

    void report(Position at, std::string text) { errors.push_back({at, std::move(text)}); }
    /// Null, after an error, when the host knows no such class.
    const HostClass *classNamed(const Identifier &name);
};

/// Finds out what the names in expressions mean and of which type the values are. What is wrong is
/// reported once.
class ExpressionChecker {
public:
    explicit ExpressionChecker(Surroundings &surroundings) : around_(surroundings) {}

    /// Of any type, or a call that gives no value.
    void check(Expression &expression);
    /// Something that has a value.
    void value(Expression &expression);
    /// A value that can be assigned to the type.
    void expect(Expression &expression, const Type &type, std::string_view forWhat);
    void condition(Expression &expression);
    void exception(Expression &expression);
    /// What stands on the left of "=", and the value that it takes.
    void assignment(Expression &target, Expression &value);
    /// Of a constant's value: made of literals and constants.
    void constantValue(Expression &expression);

private:
    std::optional<Type> typeOf(Literal &literal, Expression &whole);
    std::optional<Type> typeOf(Name &name, Expression &whole);
    std::optional<Type> typeOf(Member &member, Expression &whole);
    std::optional<Type> typeOf(Index &index, Expression &whole);
    std::optional<Type> typeOf(Create &create, Expression &whole);
    std::optional<Type> typeOf(Unary &unary, Expression &whole);
    std::optional<Type> typeOf(Binary &binary, Expression &whole);
    std::optional<Type> typeOf(IsA &isA, Expression &whole);

    std::optional<Type> ofProcedure(Name &name, Expression &whole, const Procedure &procedure);
    std::optional<Type> ofFunction(Name &name);
    std::optional<Type> ofCast(Name &name, const HostClass &type);
    std::optional<Type> ofArrayLiteral(Name &name);
    std::optional<Type> ofUnknown(Name &name, Expression &whole);
    std::optional<Type> ofClass(Member &member, Expression &whole, const HostClass &type);
    std::optional<Type> ofArray(Member &member);
    std::optional<Type> ofObject(Member &member, Expression &whole, const HostClass &type);
    std::optional<Type> indexed(Expression &whole);

    [[nodiscard]] const HostClass *classMeantBy(const Expression &target) const;
    void arguments(Expressions &arguments, const std::vector<Parameter> &parameters,
                   const std::string &callee, Position at, bool takesEveryArray = false);
    void values(Expressions &expressions);
    Type unknown(Position at, std::string text);
    Type noMember(const Member &member, const HostClass &type, bool ofInstances);

    Surroundings &around_;
    bool inConstant_ = false;
};

} // namespace host::program
