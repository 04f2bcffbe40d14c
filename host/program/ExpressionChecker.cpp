#include "host/program/ExpressionChecker.h"

#include "host/language/Names.h"
#include "host/program/ArrayMembers.h"
#include "host/program/ExpressionParser.h"
#include "host/program/Functions.h"
#include "host/program/Nearest.h"
#include "host/program/Types.h"

#include <algorithm>
#include <array>
#include <iterator>
#include <utility>

namespace host::program {

namespace {

const Type variantType = {.kind = TypeKind::variant};

std::string counted(std::size_t count, std::string_view one) {
    return (count == 0 ? "no" : std::to_string(count)) + ' ' + std::string(one) +
           (count == 1 ? "" : "s");
}

std::string shown(const Procedure &procedure) {
    std::string text = procedure.name.name + '(';
    for (const ProgramParameter &parameter : procedure.parameters)
        text += (&parameter == &procedure.parameters.front() ? "" : ", ") + parameter.name.name +
                " As " + describe(parameter.type.type);
    return text + ')' + (procedure.result ? " As " + describe(procedure.result->type) : "");
}

bool assigns(const Method &method) {
    return !method.parsed.parameters.empty() && method.parsed.parameters.back().assigns;
}

/// The method that a program calls: not one that an assignment calls.
const Method *calledMethod(const HostClass &type, std::string_view name, std::size_t count) {
    const Method *method = type.method(name, count);
    return method == nullptr || assigns(*method) ? nullptr : method;
}

/// Some method of that name, whatever it takes.
const Method *anyMethod(const std::vector<Method> &methods, std::string_view name) {
    const auto found = std::ranges::find_if(methods, [&](const Method &method) {
        return sameName(method.parsed.name, name) && !assigns(method);
    });
    return found == methods.end() ? nullptr : &*found;
}

const Method *anyMethod(const HostClass &type, std::string_view name) {
    for (const HostClass *next = &type; next != nullptr; next = next->superclass)
        if (const Method *method = anyMethod(next->methods, name))
            return method;
    return nullptr;
}

void addNames(std::vector<std::string> &names, const HostClass &type, bool ofInstances) {
    for (const HostClass *next = &type; ofInstances && next != nullptr; next = next->superclass) {
        for (const Property &property : next->properties)
            names.push_back(property.name);
        for (const Method &method : next->methods)
            names.push_back(method.parsed.name);
    }
    for (const Method &method : type.sharedMethods)
        names.push_back(method.parsed.name);
    for (const Constant &constant : type.constants)
        names.push_back(constant.name);
}

bool hasMember(const HostClass &type, std::string_view name) {
    std::vector<std::string> names;
    addNames(names, type, true);
    return std::ranges::any_of(names, [&](const auto &known) { return sameName(known, name); });
}

} // namespace

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
    if (fits(around_.classes, *expression.type, type))
        return;
    std::string hint;
    if (isString(type) && isNumber(*expression.type))
        hint = "; Str makes one of a number";
    else if (isNumber(type) && isString(*expression.type))
        hint = "; Val makes a number of one";
    else if (fits(around_.classes, type, *expression.type) && type.kind == TypeKind::object)
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
    return variantType;
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
        else if (!arguments[i]->type->isArray)
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
    const Type &array = *index.target->type;
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
        return variantType;
    }
    const std::size_t count = create.arguments.values.size();
    const HostClass &type = *create.type;
    const Type result = typeNamed(type.name);
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
    const auto type = resultOf(unary.op, *unary.operand->type);
    if (type)
        return type;
    return unknown(whole.at, std::string(shown(unary.op)) + " does not take " +
                                 program::shown(unary.operand->type));
}

std::optional<Type> ExpressionChecker::typeOf(Binary &binary, Expression &whole) {
    value(*binary.left);
    value(*binary.right);
    const Type &left = *binary.left->type;
    const Type &right = *binary.right->type;
    const auto type = resultOf(binary.op, left, right);
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
    if (!isReference(*isA.operand->type) && !isVariant(*isA.operand->type))
        return unknown(whole.at, "IsA does not take " + program::shown(isA.operand->type));
    return simpleType(TypeKind::boolean);
}

// Names

std::optional<Type> ExpressionChecker::typeOf(Name &name, Expression &whole) {
    const std::string &word = name.name.name;
    if (const Declared *variable = around_.scopes.find(word)) {
        if (inConstant_ && !variable->isConstant)
            return unknown(name.name.at, word + " varies; a constant's value does not");
        if (name.arguments.written)
            return indexed(whole);
        name.meaning = variable->slot;
        return variable->type;
    }
    const auto procedure = around_.procedures.find(foldedName(word));
    if (procedure != around_.procedures.end())
        return ofProcedure(name, whole, *procedure->second);
    if (sameName(word, arrayFunction))
        return ofArrayLiteral(name);
    if (findFunction(word) != nullptr)
        return ofFunction(name);
    const HostClass *type = around_.classes.find(word);
    if (type != nullptr && !type->isInternal)
        return ofCast(name, *type);
    return ofUnknown(name, whole);
}

std::optional<Type> ExpressionChecker::ofProcedure(Name &name, Expression &whole,
                                                   const Procedure &procedure) {
    if (inConstant_)
        return unknown(name.name.at, "a constant's value calls nothing");
    if (name.arguments.values.size() == 1 && procedure.parameters.empty() && procedure.result &&
        procedure.result->type.isArray)
        return indexed(whole);
    name.meaning = &procedure;
    std::vector<Parameter> parameters;
    for (const ProgramParameter &parameter : procedure.parameters)
        parameters.push_back({.name = parameter.name.name,
                              .type = parameter.type.type,
                              .defaultValue = parameter.defaultValue
                                                  ? std::optional<std::string>("")
                                                  : std::nullopt});
    arguments(name.arguments.values, parameters, shown(procedure), name.name.at);
    return procedure.result ? std::optional(procedure.result->type) : std::nullopt;
}

std::optional<Type> ExpressionChecker::ofArrayLiteral(Name &name) {
    name.meaning = ArrayLiteral{};
    values(name.arguments.values);
    std::optional<Type> element;
    for (const ExpressionPtr &argument : name.arguments.values) {
        const Type &type = *argument->type;
        if (type.isArray)
            return unknown(argument->at, "an array holds no arrays");
        if (!element)
            element = type;
        else if (isNumber(*element) && isNumber(type) && !(*element == type))
            element = simpleType(isInteger(*element) && isInteger(type) ? TypeKind::integer
                                                                        : TypeKind::real);
        else if (!(*element == type))
            element = variantType;
    }
    if (!element || isNil(*element))
        element = variantType;
    element->isArray = true;
    return element;
}

std::optional<Type> ExpressionChecker::ofFunction(Name &name) {
    Expressions &given = name.arguments.values;
    const Function *function = findFunction(name.name.name, given.size());
    const Function *known = function == nullptr ? findFunction(name.name.name) : function;
    arguments(given, known->declaration.parameters, describe(known->declaration), name.name.at,
              true);
    name.meaning = known;
    return known->declaration.result;
}

std::optional<Type> ExpressionChecker::ofCast(Name &name, const HostClass &type) {
    if (!name.arguments.written)
        return unknown(name.name.at,
                       type.name + " is a class; New " + type.name + " makes an instance");
    values(name.arguments.values);
    if (name.arguments.values.size() != 1)
        return unknown(name.name.at, counted(name.arguments.values.size(), "value") + " for " +
                                         type.name + "(...), which takes one and says that it is " +
                                         type.name + "; New " + type.name + " makes an instance");
    name.meaning = Cast{&type};
    const Type result = typeNamed(type.name);
    const Type &given = *name.arguments.values.front()->type;
    if (!fits(around_.classes, given, result) && !fits(around_.classes, result, given))
        around_.report(name.name.at, program::shown(given) + " is never " + type.name);
    return result;
}

std::optional<Type> ExpressionChecker::ofUnknown(Name &name, Expression &whole) {
    std::vector<std::string> names = around_.scopes.names();
    if (around_.implicitObject) {
        const HostClass &type = *around_.implicitObject->type;
        if (hasMember(type, name.name.name)) {
            const Identifier className{type.name, name.name.at};
            const Identifier giver{around_.implicitObject->method->parsed.name, name.name.at};
            auto classItself = std::make_unique<Expression>(
                Expression{.at = name.name.at, .what = Name{.name = className}});
            auto object = std::make_unique<Expression>(
                Expression{.at = name.name.at,
                           .what = Member{.target = std::move(classItself), .name = giver}});
            Member member{.target = std::move(object),
                          .name = std::move(name.name),
                          .arguments = std::move(name.arguments)};
            whole.what = std::move(member);
            return typeOf(std::get<Member>(whole.what), whole);
        }
        addNames(names, type, true);
    }
    for (const auto &[folded, procedure] : around_.procedures)
        names.push_back(procedure->name.name);
    for (const HostClass *type : around_.classes.all())
        names.push_back(type->name);
    std::ranges::copy(namesOfFunctions(), std::back_inserter(names));
    values(name.arguments.values);
    return unknown(name.name.at,
                   "nothing is called " + name.name.name + nearestAmong(names, name.name.name));
}

// Members

const HostClass *ExpressionChecker::classMeantBy(const Expression &target) const {
    const auto *name = std::get_if<Name>(&target.what);
    if (name == nullptr || name->arguments.written ||
        around_.scopes.find(name->name.name) != nullptr ||
        around_.procedures.contains(foldedName(name->name.name)))
        return nullptr;
    const HostClass *type = around_.classes.find(name->name.name);
    return type == nullptr || type->isInternal ? nullptr : type;
}

Type ExpressionChecker::noMember(const Member &member, const HostClass &type, bool ofInstances) {
    const std::string &name = member.name.name;
    const std::string count = counted(member.arguments.values.size(), "argument");
    const Method *method = ofInstances ? anyMethod(type, name) : nullptr;
    if (method == nullptr)
        method = anyMethod(type.sharedMethods, name);
    if (method != nullptr)
        return unknown(member.name.at,
                       count + " for " + type.name + '.' + describe(method->parsed));
    if (ofInstances && type.property(name) != nullptr)
        return unknown(member.name.at,
                       type.name + '.' + name + " is a property and takes no arguments");
    if (type.constant(name) != nullptr)
        return unknown(member.name.at,
                       type.name + '.' + name + " is a constant and takes no arguments");
    if (!ofInstances && hasMember(type, name))
        return unknown(member.name.at,
                       name + " belongs to instances: (New " + type.name + ")." + name);
    std::vector<std::string> names;
    addNames(names, type, ofInstances);
    return unknown(member.name.at,
                   type.name + " has no member " + name + nearestAmong(names, name));
}

std::optional<Type> ExpressionChecker::typeOf(Member &member, Expression &whole) {
    if (inConstant_ && classMeantBy(*member.target) == nullptr)
        return unknown(member.name.at, "a constant's value calls nothing");
    if (const HostClass *type = classMeantBy(*member.target))
        return ofClass(member, whole, *type);
    value(*member.target);
    const Type &type = *member.target->type;
    if (type.isArray)
        return ofArray(member);
    if (type.kind == TypeKind::object && !isNil(type)) {
        // A class that a declaration names need not be there.
        if (const HostClass *found = around_.classes.find(type.className))
            return ofObject(member, whole, *found);
    }
    values(member.arguments.values);
    if (isVariant(type))
        return unknown(member.name.at, "a Variant has no members; assign it to a variable of "
                                       "its class first");
    return unknown(member.name.at, program::shown(type) + " has no members");
}

std::optional<Type> ExpressionChecker::ofClass(Member &member, Expression &whole,
                                               const HostClass &type) {
    Expressions &given = member.arguments.values;
    if (const Constant *constant = type.constant(member.name.name);
        constant != nullptr && !member.arguments.written) {
        member.meaning = constant;
        return simpleType(TypeKind::integer);
    }
    if (inConstant_)
        return unknown(member.name.at, "a constant's value calls nothing");
    const Method *method = type.sharedMethod(member.name.name, given.size());
    if (method == nullptr && given.size() == 1) {
        method = type.sharedMethod(member.name.name, 0);
        if (method != nullptr && method->parsed.result && method->parsed.result->isArray)
            return indexed(whole);
        method = nullptr;
    }
    if (method == nullptr) {
        values(given);
        return noMember(member, type, false);
    }
    member.meaning = SharedMethod{&type, method};
    arguments(given, method->parsed.parameters, type.name + '.' + describe(method->parsed),
              member.name.at);
    return method->parsed.result;
}

std::optional<Type> ExpressionChecker::ofArray(Member &member) {
    const ArrayMember *found = findArrayMember(member.name.name);
    if (found == nullptr) {
        values(member.arguments.values);
        return unknown(member.name.at, "an array has no member " + member.name.name +
                                           nearestAmong(namesOfArrayMembers(), member.name.name));
    }
    member.meaning = found;
    MethodDeclaration declaration = found->declaration;
    for (Parameter &parameter : declaration.parameters)
        if (isVariant(parameter.type))
            parameter.type = elementOf(*member.target->type);
    arguments(member.arguments.values, declaration.parameters, describe(declaration),
              member.name.at);
    return declaration.result;
}

std::optional<Type> ExpressionChecker::ofObject(Member &member, Expression &whole,
                                                const HostClass &type) {
    const std::string &name = member.name.name;
    Expressions &given = member.arguments.values;
    if (const Property *property = type.property(name)) {
        if (!given.empty() && property->type.isArray)
            return indexed(whole);
        if (given.empty()) {
            member.meaning = property;
            return property->type;
        }
    }
    if (const Method *method = calledMethod(type, name, given.size())) {
        member.meaning = method;
        arguments(given, method->parsed.parameters, type.name + '.' + describe(method->parsed),
                  member.name.at);
        return method->parsed.result;
    }
    if (const Method *method = calledMethod(type, name, 0);
        method != nullptr && given.size() == 1 && method->parsed.result &&
        method->parsed.result->isArray)
        return indexed(whole);
    if (type.constant(name) != nullptr || anyMethod(type.sharedMethods, name) != nullptr)
        return ofClass(member, whole, type);
    values(given);
    return noMember(member, type, true);
}

// Assignments

void ExpressionChecker::assignment(Expression &target, Expression &assigned) {
    // object.method(arguments) = value, for a method whose declaration says "Assigns".
    if (auto *member = std::get_if<Member>(&target.what);
        member != nullptr && classMeantBy(*member->target) == nullptr) {
        value(*member->target);
        const Type &type = *member->target->type;
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
            return expect(assigned, *target.type, what);
    } else if (const auto *member = std::get_if<Member>(&target.what)) {
        what = member->name.name;
        const auto *property = std::get_if<const Property *>(&member->meaning);
        const std::string owner = member->target->type ? describe(*member->target->type) + '.' : "";
        if (property != nullptr && (*property)->isWritable())
            return expect(assigned, *target.type, owner + what);
        what = owner + what + (property != nullptr ? " is read-only" : " is no property");
    } else if (std::holds_alternative<Index>(target.what)) {
        return expect(assigned, *target.type, "the element");
    } else {
        what += " is nothing that a value can be assigned to";
    }
    value(assigned);
    if (around_.errors.size() == before)
        around_.report(target.at, what);
}

} // namespace host::program
