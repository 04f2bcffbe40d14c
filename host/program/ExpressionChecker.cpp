#include "host/program/ExpressionChecker.h"

#include "host/program/ExpressionParser.h"
#include "host/program/Members.h"
#include "host/program/Types.h"
#include "host/program/Wording.h"

#include <algorithm>
#include <array>
#include <utility>

namespace host::program {

const HostClass *Surroundings::classNamed(const Identifier &name) {
    const HostClass *type = classes.find(name.name);
    if (type != nullptr && !type->isInternal)
        return type;
    std::vector<std::string> names;
    for (const HostClass *known : classes.all())
        if (!known->isInternal)
            names.push_back(known->name);
    report(name.at, "there is no class " + name.name + nearestAmong(names, name.name));
    return nullptr;
}

// What every expression goes through

void ExpressionChecker::check(Expression &expression) {
    // A node may put another one into its own place.
    const std::optional<Type> type =
        std::visit([&](auto &node) { return typeOf(node, expression); }, expression.what);
    expression.type = type;
}

void ExpressionChecker::value(Expression &expression) {
    check(expression);
    if (!expression.type)
        expression.type = unknown(expression.at, "this call gives no value");
}

void ExpressionChecker::values(Expressions &expressions) {
    for (const ExpressionPtr &expression : expressions)
        value(*expression);
}

void ExpressionChecker::expect(Expression &expression, const Type &type, std::string_view forWhat) {
    value(expression);
    const auto *name = std::get_if<Name>(&expression.what);
    if (name != nullptr && std::holds_alternative<ArrayLiteral>(name->meaning) && type.isArray) {
        // Array(...) makes what is wanted where its elements allow it.
        const bool allFit = std::ranges::all_of(name->arguments.values, [&](const auto &element) {
            return fits(around_.classes, *element->type, elementOf(type));
        });
        if (allFit)
            expression.type = type;
    }
    if (fits(around_.classes, expression.valueType(), type))
        return;
    std::string hint;
    if (isString(type) && isNumber(expression.valueType()))
        hint = "; Str makes one of a number";
    else if (isNumber(type) && isString(expression.valueType()))
        hint = "; Val makes a number of one";
    else if (fits(around_.classes, type, expression.valueType()) && type.kind == TypeKind::object)
        hint = "; " + describe(type) + "(...) says that it is one";
    around_.report(expression.at, std::string(forWhat) + " is " + program::shown(type) + ", not " +
                                      program::shown(expression.type) + hint);
}

void ExpressionChecker::condition(Expression &expression) {
    expect(expression, simpleType(TypeKind::boolean), "a condition");
}

void ExpressionChecker::exception(Expression &expression) {
    expect(expression, typeNamed("RuntimeException"), "what is raised");
}

void ExpressionChecker::constantValue(Expression &expression) {
    inConstant_ = true;
    value(expression);
    inConstant_ = false;
}

Type ExpressionChecker::unknown(Position at, std::string text) {
    around_.report(at, std::move(text));
    return unknownType();
}

void ExpressionChecker::arguments(Expressions &arguments, const std::vector<Parameter> &parameters,
                                  const std::string &callee, Position at, bool takesEveryArray) {
    const auto required = static_cast<std::size_t>(std::ranges::count_if(
        parameters, [](const Parameter &parameter) { return !parameter.defaultValue; }));
    if (arguments.size() < required || arguments.size() > parameters.size()) {
        values(arguments);
        around_.report(at, counted(arguments.size(), "argument") + " for " + callee);
        return;
    }
    for (std::size_t i = 0; i < arguments.size(); ++i) {
        const Type &type = parameters[i].type;
        const bool takesAny = takesEveryArray && type.isArray && type.kind == TypeKind::variant;
        if (takesAny)
            value(*arguments[i]);
        if (!takesAny)
            expect(*arguments[i], type, parameters[i].name + " of " + callee);
        else if (!arguments[i]->valueType().isArray)
            around_.report(arguments[i]->at, parameters[i].name + " of " + callee +
                                                 " is an array, not " +
                                                 program::shown(arguments[i]->type));
    }
}

// Kinds of expressions

std::optional<Type> ExpressionChecker::typeOf(Literal &literal, Expression & /*whole*/) {
    constexpr std::array kinds{TypeKind::object, TypeKind::integer, TypeKind::uint64,
                               TypeKind::real,   TypeKind::boolean, TypeKind::string};
    return simpleType(kinds.at(literal.value.index()));
}

/// The brackets behind a name hold the place of an element.
std::optional<Type> ExpressionChecker::indexed(Expression &whole) {
    auto &arguments = std::holds_alternative<Name>(whole.what)
                          ? std::get<Name>(whole.what).arguments
                          : std::get<Member>(whole.what).arguments;
    Expressions places = std::exchange(arguments, {}).values;
    auto array = std::make_unique<Expression>(
        Expression{.at = whole.at, .what = std::move(whole.what), .depth = whole.depth});
    whole.what = Index{.target = std::move(array), .arguments = std::move(places)};
    return typeOf(std::get<Index>(whole.what), whole);
}

std::optional<Type> ExpressionChecker::typeOf(Index &index, Expression &whole) {
    value(*index.target);
    for (const ExpressionPtr &place : index.arguments)
        expect(*place, simpleType(TypeKind::integer), "the place of an element");
    const Type &array = index.target->valueType();
    if (array == unknownType())
        return array;
    if (!array.isArray)
        return isVariant(array)
                   ? unknown(whole.at, "a Variant has no elements; assign it to an array first")
                   : unknown(whole.at, program::shown(array) + " has no elements");
    if (index.arguments.size() != 1)
        return unknown(whole.at, counted(index.arguments.size(), "place") + " for an element of " +
                                     program::shown(array));
    return elementOf(array);
}

std::optional<Type> ExpressionChecker::typeOf(Create &create, Expression & /*whole*/) {
    create.type = around_.classNamed(create.className);
    if (create.type == nullptr) {
        values(create.arguments.values);
        return unknownType();
    }
    const std::size_t count = create.arguments.values.size();
    const HostClass &type = *create.type;
    Type result = typeNamed(type.name);
    create.constructor = type.method("Constructor", count);
    // The host's own classes may have a constructor that is a bare parameter list.
    if (create.constructor == nullptr && count > 0)
        create.constructor = type.method("", count);
    if (create.constructor != nullptr) {
        MethodDeclaration shownAs = create.constructor->parsed;
        shownAs.name = "New " + type.name;
        arguments(create.arguments.values, create.constructor->parsed.parameters, describe(shownAs),
                  create.className.at);
        return result;
    }
    values(create.arguments.values);
    if (count == 0)
        return result;
    const Method *other = anyMethod(type, "Constructor");
    if (other == nullptr)
        other = anyMethod(type, "");
    MethodDeclaration shownAs = other == nullptr ? MethodDeclaration{} : other->parsed;
    shownAs.name = "New " + type.name;
    around_.report(create.className.at, counted(count, "argument") + " for " + describe(shownAs));
    return result;
}

std::optional<Type> ExpressionChecker::typeOf(Unary &unary, Expression &whole) {
    value(*unary.operand);
    auto type = resultOf(unary.op, unary.operand->valueType());
    if (type)
        return type;
    return unknown(whole.at, std::string(shown(unary.op)) + " does not take " +
                                 program::shown(unary.operand->type));
}

std::optional<Type> ExpressionChecker::typeOf(Binary &binary, Expression &whole) {
    value(*binary.left);
    value(*binary.right);
    const Type &left = binary.left->valueType();
    const Type &right = binary.right->valueType();
    auto type = resultOf(binary.op, left, right);
    if (type)
        return type;
    const bool mixes = binary.op == Operator::add &&
                       (isString(left) ? isNumber(right) : isNumber(left)) &&
                       (isString(left) || isString(right));
    return unknown(whole.at, std::string(shown(binary.op)) + " does not take " +
                                 program::shown(left) + " and " + program::shown(right) +
                                 (mixes ? "; Str makes a String of a number" : ""));
}

std::optional<Type> ExpressionChecker::typeOf(IsA &isA, Expression &whole) {
    value(*isA.operand);
    isA.type = around_.classNamed(isA.className);
    if (!isReference(isA.operand->valueType()) && !isVariant(isA.operand->valueType()))
        return unknown(whole.at, "IsA does not take " + program::shown(isA.operand->type));
    return simpleType(TypeKind::boolean);
}

// Assignments

void ExpressionChecker::assignment(Expression &target, Expression &assigned) {
    // object.method(arguments) = value, for a method whose declaration says "Assigns".
    if (auto *member = std::get_if<Member>(&target.what);
        member != nullptr && classMeantBy(*member->target) == nullptr) {
        value(*member->target);
        const Type &type = member->target->valueType();
        const HostClass *found = type.kind == TypeKind::object && !type.isArray
                                     ? around_.classes.find(type.className)
                                     : nullptr;
        Expressions &given = member->arguments.values;
        const Method *method =
            found == nullptr ? nullptr : found->method(member->name.name, given.size() + 1);
        if (method != nullptr && assigns(*method)) {
            member->meaning = method;
            target.type = method->parsed.parameters.back().type;
            std::vector<Parameter> parameters = method->parsed.parameters;
            parameters.pop_back();
            const std::string callee = found->name + '.' + describe(method->parsed);
            arguments(given, parameters, callee, member->name.at);
            expect(assigned, *target.type, method->parsed.parameters.back().name + " of " + callee);
            return;
        }
    }
    const std::size_t before = around_.errors.size();
    value(target);
    std::string what = "this";
    if (const auto *name = std::get_if<Name>(&target.what)) {
        what = name->name.name;
        const Declared *variable = around_.scopes.find(what);
        if (variable == nullptr || variable->isConstant)
            what += variable == nullptr ? " is no variable" : " is a constant";
        else
            return expect(assigned, target.valueType(), what);
    } else if (const auto *member = std::get_if<Member>(&target.what)) {
        what = member->name.name;
        const auto *property = std::get_if<const Property *>(&member->meaning);
        const std::string owner = member->target->type ? describe(*member->target->type) + '.' : "";
        if (property != nullptr && (*property)->isWritable())
            return expect(assigned, target.valueType(), owner + what);
        what = owner + what + (property != nullptr ? " is read-only" : " is no property");
    } else if (std::holds_alternative<Index>(target.what)) {
        return expect(assigned, target.valueType(), "the element");
    } else {
        what += " is nothing that a value can be assigned to";
    }
    value(assigned);
    if (around_.errors.size() == before)
        around_.report(target.at, what);
}

} // namespace host::program
