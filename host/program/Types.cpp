#include "host/program/Types.h"

namespace host::program {

namespace {

bool isUnsigned(const Type &type) {
    return type.kind == TypeKind::uint32 || type.kind == TypeKind::uint64 ||
           type.kind == TypeKind::pointer;
}

/// Integers of all widths count in 64 bits, with a sign unless one of them has none.
Type integerOf(const Type &left, const Type &right) {
    return simpleType(isUnsigned(left) || isUnsigned(right) ? TypeKind::uint64 : TypeKind::integer);
}

std::optional<Type> arithmetic(const Type &left, const Type &right) {
    if (isVariant(left) || isVariant(right))
        return simpleType(TypeKind::variant);
    if (isInteger(left) && isInteger(right))
        return integerOf(left, right);
    if (isNumber(left) && isNumber(right))
        return simpleType(TypeKind::real);
    return std::nullopt;
}

std::optional<Type> bits(const Type &left, const Type &right) {
    if (isVariant(left) || isVariant(right))
        return simpleType(TypeKind::variant);
    if (isInteger(left) && isInteger(right))
        return integerOf(left, right);
    if (isBoolean(left) && isBoolean(right))
        return simpleType(TypeKind::boolean);
    return std::nullopt;
}

bool areOrdered(const Type &left, const Type &right) {
    const auto ordered = [](const Type &type) {
        return isVariant(type) || isNumber(type) || isString(type);
    };
    return ordered(left) && ordered(right) &&
           (isVariant(left) || isVariant(right) || isString(left) == isString(right));
}

bool areComparable(const Type &left, const Type &right) {
    return areOrdered(left, right) || isVariant(left) || isVariant(right) ||
           (isBoolean(left) && isBoolean(right)) || (isReference(left) && isReference(right));
}

std::optional<Type> truthIf(bool condition) {
    return condition ? std::optional(simpleType(TypeKind::boolean)) : std::nullopt;
}

} // namespace

bool isInteger(const Type &type) {
    switch (type.kind) {
    case TypeKind::integer:
    case TypeKind::int32:
    case TypeKind::uint32:
    case TypeKind::uint64:
    case TypeKind::pointer:
        return !type.isArray;
    default:
        return false;
    }
}

bool isNumber(const Type &type) {
    return isInteger(type) ||
           (!type.isArray && (type.kind == TypeKind::real || type.kind == TypeKind::single));
}

bool isString(const Type &type) {
    return type.kind == TypeKind::string && !type.isArray;
}

bool isBoolean(const Type &type) {
    return type.kind == TypeKind::boolean && !type.isArray;
}

bool isVariant(const Type &type) {
    return type.kind == TypeKind::variant && !type.isArray;
}

bool isNil(const Type &type) {
    return type == nilType();
}

bool isReference(const Type &type) {
    return type.isArray || type.kind == TypeKind::object;
}

Type simpleType(TypeKind kind) {
    return {.kind = kind};
}

Type elementOf(Type arrayType) {
    arrayType.isArray = false;
    return arrayType;
}

std::string shown(const std::optional<Type> &type) {
    return !type ? "no value" : isNil(*type) ? "Nil" : describe(*type);
}

bool fits(const ClassTable &classes, const Type &value, const Type &target) {
    if (isVariant(target) || isVariant(value) || value == target)
        return true;
    if (isNil(value))
        return isReference(target);
    if (value.isArray || target.isArray)
        return false;
    if (isNumber(target))
        return isNumber(value);
    if (target.kind != TypeKind::object || value.kind != TypeKind::object)
        return false;
    const HostClass *given = classes.findAny(value.className);
    const HostClass *wanted = classes.findAny(target.className);
    return given != nullptr && wanted != nullptr && given->isKindOf(*wanted);
}

std::optional<Type> resultOf(Operator op, const Type &operand) {
    if (op == Operator::negate)
        return isInteger(operand) ? simpleType(TypeKind::integer) : arithmetic(operand, operand);
    return bits(operand, operand);
}

std::optional<Type> resultOf(Operator op, const Type &left, const Type &right) {
    switch (op) {
    case Operator::orBits:
    case Operator::xorBits:
    case Operator::andBits:
        return bits(left, right);
    case Operator::equal:
    case Operator::unequal:
        return truthIf(areComparable(left, right));
    case Operator::less:
    case Operator::lessOrEqual:
    case Operator::greater:
    case Operator::greaterOrEqual:
        return truthIf(areOrdered(left, right));
    case Operator::is:
        return truthIf((isReference(left) || isVariant(left)) &&
                       (isReference(right) || isVariant(right)));
    case Operator::add:
        if (isString(left) && (isString(right) || isVariant(right)))
            return left;
        if (isString(right) && isVariant(left))
            return right;
        return arithmetic(left, right);
    case Operator::subtract:
    case Operator::multiply:
        return arithmetic(left, right);
    case Operator::divide:
    case Operator::power:
        return arithmetic(left, right) ? std::optional(simpleType(TypeKind::real)) : std::nullopt;
    case Operator::quotient:
    case Operator::remainder:
        if (!arithmetic(left, right))
            return std::nullopt;
        return isInteger(left) && isInteger(right) ? integerOf(left, right)
                                                   : simpleType(TypeKind::integer);
    case Operator::notBits:
    case Operator::negate:
        break;
    }
    return std::nullopt;
}

} // namespace host::program
