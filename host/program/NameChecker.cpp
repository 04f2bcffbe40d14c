// What names and members mean.

#include "host/language/Names.h"
#include "host/program/ArrayMembers.h"
#include "host/program/ExpressionChecker.h"
#include "host/program/Functions.h"
#include "host/program/Members.h"
#include "host/program/Types.h"
#include "host/program/Wording.h"

#include <algorithm>
#include <iterator>
#include <utility>

namespace host::program {

namespace {

const Type variantType = {.kind = TypeKind::variant};

std::string shown(const Procedure &procedure) {
    std::string text = procedure.name.name + '(';
    for (const ProgramParameter &parameter : procedure.parameters)
        text += (&parameter == &procedure.parameters.front() ? "" : ", ") + parameter.name.name +
                " As " + describe(parameter.type.type);
    return text + ')' + (procedure.result ? " As " + describe(procedure.result->type) : "");
}

} // namespace

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
    parameters.reserve(procedure.parameters.size());
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
        const Type &type = argument->valueType();
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
    Type result = typeNamed(type.name);
    const Type &given = name.arguments.values.front()->valueType();
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
        addMemberNames(names, type, true);
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
    addMemberNames(names, type, ofInstances);
    return unknown(member.name.at,
                   type.name + " has no member " + name + nearestAmong(names, name));
}

std::optional<Type> ExpressionChecker::typeOf(Member &member, Expression &whole) {
    if (inConstant_ && classMeantBy(*member.target) == nullptr)
        return unknown(member.name.at, "a constant's value calls nothing");
    if (const HostClass *type = classMeantBy(*member.target))
        return ofClass(member, whole, *type);
    value(*member.target);
    const Type &type = member.target->valueType();
    if (type.isArray)
        return ofArray(member);
    if (type.kind == TypeKind::object && !isNil(type)) {
        // A class that a declaration names need not be there.
        if (const HostClass *found = around_.classes.find(type.className))
            return ofObject(member, whole, *found);
    }
    values(member.arguments.values);
    if (type == unknownType())
        return type;
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
            parameter.type = elementOf(member.target->valueType());
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

} // namespace host::program
