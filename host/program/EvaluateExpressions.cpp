// The expressions, one by one.

#include "host/classes/NativeData.h"
#include "host/program/Arithmetic.h"
#include "host/program/Arrays.h"
#include "host/program/Conversion.h"
#include "host/program/Evaluator.h"
#include "host/program/Types.h"

#include <type_traits>

namespace host::program {

namespace {

template <typename Plain>
Value made(const Plain &value) {
    if constexpr (std::is_same_v<Plain, std::string>)
        return Value(std::string_view(value));
    else if constexpr (std::is_same_v<Plain, std::monostate>)
        return {};
    else
        return value;
}

} // namespace

Value Evaluator::evaluate(const Expression &expression) {
    return std::visit([&](const auto &node) { return evaluate(node, expression); },
                      expression.what);
}

Value Evaluator::evaluateAs(const Expression &expression, const Type &type) {
    return converted(evaluate(expression), expression.valueType(), type);
}

Value Evaluator::operand(const Expression &expression) {
    return plain(evaluate(expression), expression.valueType());
}

bool Evaluator::truthOf(const Expression &expression) {
    return evaluateAs(expression, simpleType(TypeKind::boolean)).boolean();
}

Values Evaluator::evaluateAll(const Expressions &arguments,
                              const std::vector<Parameter> &parameters) {
    Values values;
    for (std::size_t i = 0; i < arguments.size(); ++i)
        values.push_back(evaluateAs(*arguments[i], parameters[i].type));
    return values;
}

Value Evaluator::evaluate(const Literal &literal, const Expression & /*whole*/) {
    return std::visit([](const auto &value) { return made(value); }, literal.value);
}

Value Evaluator::evaluate(const Name &name, const Expression &whole) {
    if (const auto *slot = std::get_if<Slot>(&name.meaning))
        return variable(*slot);
    if (const auto *procedure = std::get_if<const Procedure *>(&name.meaning))
        return call(**procedure, name);
    if (std::holds_alternative<ArrayLiteral>(name.meaning))
        return arrayOf(name, elementOf(whole.valueType()));
    if (const auto *function = std::get_if<const Function *>(&name.meaning)) {
        Values values;
        const auto &parameters = (*function)->declaration.parameters;
        for (std::size_t i = 0; i < parameters.size(); ++i) {
            const Expression &argument = *name.arguments.values[i];
            // Arrays of every type fit where one of Variants is declared.
            values.push_back(argument.valueType().isArray
                                 ? evaluate(argument)
                                 : evaluateAs(argument, parameters[i].type));
        }
        return (*function)->run(values);
    }
    const HostClass &type = *std::get<Cast>(name.meaning).type;
    const Expression &object = *name.arguments.values.front();
    return converted(evaluate(object), simpleType(TypeKind::variant), typeNamed(type.name));
}

Value Evaluator::arrayOf(const Name &name, const Type &type) {
    const ObjectRef array = newArray(type, 0);
    for (const ExpressionPtr &element : name.arguments.values) {
        const Value value = evaluateAs(*element, type);
        elementsOf(array).elements.push_back(kept(elementsOf(array), value));
    }
    return array;
}

ObjectRef Evaluator::objectOf(const Member &member) {
    ObjectRef object = evaluate(*member.target).object();
    if (object.handle() == nullptr)
        raise("NilObjectException", member.name.name + " is asked of Nil");
    return object;
}

Value Evaluator::evaluate(const Member &member, const Expression & /*whole*/) {
    const Expressions &arguments = member.arguments.values;
    if (const auto *constant = std::get_if<const Constant *>(&member.meaning))
        return (*constant)->value;
    if (const auto *shared = std::get_if<SharedMethod>(&member.meaning)) {
        const MethodDeclaration &method = shared->method->parsed;
        return valueOf(host_.callShared(shared->type->name, method.name,
                                        evaluateAll(arguments, method.parameters)));
    }
    if (const auto *arrayMember = std::get_if<const ArrayMember *>(&member.meaning)) {
        const Value array = evaluate(*member.target);
        std::vector<Parameter> parameters = (*arrayMember)->declaration.parameters;
        for (Parameter &parameter : parameters)
            if (isVariant(parameter.type))
                parameter.type = elementOf(member.target->valueType());
        const Values values = evaluateAll(arguments, parameters);
        return (*arrayMember)->run(elementsOf(array), values);
    }
    const ObjectRef object = objectOf(member);
    if (const auto *property = std::get_if<const Property *>(&member.meaning))
        return valueOf(host_.get(object, (*property)->name));
    const MethodDeclaration &method = std::get<const Method *>(member.meaning)->parsed;
    return valueOf(host_.call(object, method.name, evaluateAll(arguments, method.parameters)));
}

Value Evaluator::evaluate(const Index &index, const Expression &whole) {
    const Value array = evaluate(*index.target);
    const std::int64_t place =
        evaluateAs(*index.arguments.front(), simpleType(TypeKind::integer)).integer();
    return element(elementsOf(array), place, whole.valueType());
}

Value Evaluator::evaluate(const Create &create, const Expression & /*whole*/) {
    Values values;
    if (create.constructor != nullptr)
        values = evaluateAll(create.arguments.values, create.constructor->parsed.parameters);
    return valueOf(host_.newObject(create.type->name, values));
}

Value Evaluator::evaluate(const Unary &unary, const Expression &whole) {
    const Value value = operand(*unary.operand);
    const bool isFitting =
        isNumber(value) || (unary.op == Operator::notBits && std::holds_alternative<bool>(value));
    if (!isFitting || (unary.op == Operator::notBits && std::holds_alternative<double>(value)))
        raise("IllegalCastException", kindOf(value) + " is no operand here");
    return converted(applied(unary.op, value), simpleType(TypeKind::variant), whole.valueType());
}

Value Evaluator::evaluate(const Binary &binary, const Expression &whole) {
    const bool isTruth = isBoolean(whole.valueType());
    const bool isLogic = binary.op == Operator::andBits || binary.op == Operator::orBits;
    if (isLogic && isTruth) {
        // The right side only if it decides.
        const bool left = truthOf(*binary.left);
        return left == (binary.op == Operator::orBits) ? left : truthOf(*binary.right);
    }
    const bool asksForNil = isNil(binary.left->valueType()) || isNil(binary.right->valueType()) ||
                            binary.op == Operator::is;
    const Value left = operand(*binary.left);
    const Value right = operand(*binary.right);
    if (asksForNil && isTruth)
        return isSame(left, right) == (binary.op != Operator::unequal);
    const Value result = applied(binary.op, left, right);
    // Operators on Variants give what their contents give.
    return isVariant(whole.valueType()) || isString(whole.valueType())
               ? result
               : converted(result, simpleType(TypeKind::variant), whole.valueType());
}

Value Evaluator::evaluate(const IsA &isA, const Expression & /*whole*/) {
    const Value value = operand(*isA.operand);
    const auto *object = std::get_if<ObjectRef>(&value);
    if (object == nullptr)
        return false;
    const HostClass *type = host_.classes().findAny(host_.className(*object));
    return type != nullptr && type->isKindOf(*isA.type);
}

} // namespace host::program
