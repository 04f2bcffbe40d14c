#include "host/program/Arithmetic.h"

#include "host/Host.h"
#include "host/program/Arrays.h"
#include "host/program/ExpressionParser.h"
#include "host/program/Raised.h"
#include "host/program/Types.h"
#include "host/program/ValueText.h"

#include <cmath>

namespace host::program {

namespace {

[[noreturn]] void notTaken(Operator op, const Value &left, const Value &right) {
    raise("IllegalCastException",
          std::string(shown(op)) + " does not take " + kindOf(left) + " and " + kindOf(right));
}

[[noreturn]] void noAnswer(const Value &left, Operator op, const Value &right,
                           std::string_view why) {
    raise("UnsupportedOperationException", textOf(left) + ' ' + std::string(shown(op)) + ' ' +
                                               textOf(right) + ' ' + std::string(why));
}

/// Of operations on integers: without a sign as soon as one operand has none.
Type integerType(const Value &left, const Value &right) {
    const bool isUnsigned =
        std::holds_alternative<std::uint64_t>(left) || std::holds_alternative<std::uint64_t>(right);
    return simpleType(isUnsigned ? TypeKind::uint64 : TypeKind::integer);
}

Value onIntegers(Operator op, const Value &left, const Value &right) {
    const Wide a = wideOf(left);
    const Wide b = wideOf(right);
    Wide result = 0;
    bool overflows = false;
    switch (op) {
    case Operator::add:
        result = a + b;
        break;
    case Operator::subtract:
        result = a - b;
        break;
    case Operator::multiply:
        overflows = __builtin_mul_overflow(a, b, &result);
        break;
    default:
        if (b == 0)
            noAnswer(left, op, right, "divides by zero");
        result = op == Operator::quotient ? a / b : a % b;
    }
    const Type type = integerType(left, right);
    const bool isUnsigned = type.kind == TypeKind::uint64;
    overflows = overflows || (isUnsigned ? result < 0 || result > Wide{UINT64_MAX}
                                         : result < INT64_MIN || result > INT64_MAX);
    if (overflows)
        noAnswer(left, op, right, "does not fit into " + describe(type));
    return integerOf(result, type);
}

Value onReals(Operator op, const Value &left, const Value &right) {
    const auto a = static_cast<double>(realOf(left));
    const auto b = static_cast<double>(realOf(right));
    switch (op) {
    case Operator::add:
        return a + b;
    case Operator::subtract:
        return a - b;
    case Operator::multiply:
        return a * b;
    case Operator::divide:
        return a / b;
    case Operator::power:
        return std::pow(a, b);
    default:
        break;
    }
    if (b == 0)
        noAnswer(left, op, right, "divides by zero");
    const double result = std::trunc(op == Operator::quotient ? a / b : std::fmod(a, b));
    if (!(std::abs(result) < 0x1p63))
        noAnswer(left, op, right, "does not fit into Integer");
    return static_cast<std::int64_t>(result);
}

Value arithmetic(Operator op, const Value &left, const Value &right) {
    if (!isNumber(left) || !isNumber(right))
        notTaken(op, left, right);
    const bool givesReal = op == Operator::divide || op == Operator::power;
    return isInteger(left) && isInteger(right) && !givesReal ? onIntegers(op, left, right)
                                                             : onReals(op, left, right);
}

Value joined(const Value &left, const Value &right) {
    std::string text = left.text();
    const std::string end = right.text();
    checkSize(text.size() + end.size());
    return Host::current().makeString(text + end);
}

template <typename Bits>
Bits bitsOf(Operator op, Bits left, Bits right) {
    switch (op) {
    case Operator::orBits:
        return left | right;
    case Operator::xorBits:
        return left ^ right;
    default:
        return left & right;
    }
}

Value onBits(Operator op, const Value &left, const Value &right) {
    const auto *a = std::get_if<bool>(&left);
    const auto *b = std::get_if<bool>(&right);
    if (a != nullptr && b != nullptr)
        return bitsOf<int>(op, *a ? 1 : 0, *b ? 1 : 0) != 0;
    if (!isInteger(left) || !isInteger(right))
        notTaken(op, left, right);
    const auto bits = bitsOf(op, static_cast<std::uint64_t>(wideOf(left)),
                             static_cast<std::uint64_t>(wideOf(right)));
    return integerType(left, right).kind == TypeKind::uint64
               ? Value(bits)
               : Value(static_cast<std::int64_t>(bits));
}

bool areOrdered(const Value &left, const Value &right) {
    return (isNumber(left) && isNumber(right)) ||
           (std::holds_alternative<StringRef>(left) && std::holds_alternative<StringRef>(right));
}

Value ordered(Operator op, const Value &left, const Value &right) {
    if (!areOrdered(left, right))
        notTaken(op, left, right);
    if (isNotANumber(left) || isNotANumber(right))
        return false;
    const int order = compared(left, right);
    switch (op) {
    case Operator::less:
        return order < 0;
    case Operator::lessOrEqual:
        return order <= 0;
    case Operator::greater:
        return order > 0;
    default:
        return order >= 0;
    }
}

} // namespace

bool isSame(const Value &left, const Value &right) {
    const auto *a = std::get_if<ObjectRef>(&left);
    const auto *b = std::get_if<ObjectRef>(&right);
    if (a != nullptr && b != nullptr)
        return a->handle() == b->handle();
    return left.isNil() && right.isNil();
}

int compared(const Value &left, const Value &right) {
    if (std::holds_alternative<StringRef>(left))
        return left.text().compare(right.text());
    if (isInteger(left) && isInteger(right)) {
        const Wide a = wideOf(left);
        const Wide b = wideOf(right);
        return a < b ? -1 : a > b ? 1 : 0;
    }
    const long double a = realOf(left);
    const long double b = realOf(right);
    return a < b ? -1 : a > b ? 1 : 0;
}

bool isEqual(const Value &left, const Value &right) {
    if (areOrdered(left, right))
        return !isNotANumber(left) && !isNotANumber(right) && compared(left, right) == 0;
    const auto *a = std::get_if<bool>(&left);
    const auto *b = std::get_if<bool>(&right);
    return a != nullptr && b != nullptr ? *a == *b : isSame(left, right);
}

Value applied(Operator op, const Value &operand) {
    if (op == Operator::negate && isInteger(operand))
        return integerOf(-wideOf(operand), simpleType(TypeKind::integer));
    if (op == Operator::negate)
        return arithmetic(Operator::multiply, operand, Value(-1.0));
    if (const auto *truth = std::get_if<bool>(&operand))
        return !*truth;
    return onBits(Operator::xorBits, operand, Value(-1));
}

Value applied(Operator op, const Value &left, const Value &right) {
    switch (op) {
    case Operator::orBits:
    case Operator::xorBits:
    case Operator::andBits:
        return onBits(op, left, right);
    case Operator::equal:
        return isEqual(left, right);
    case Operator::unequal:
        return !isEqual(left, right);
    case Operator::is:
        return isSame(left, right);
    case Operator::less:
    case Operator::lessOrEqual:
    case Operator::greater:
    case Operator::greaterOrEqual:
        return ordered(op, left, right);
    case Operator::add:
        if (std::holds_alternative<StringRef>(left) && std::holds_alternative<StringRef>(right))
            return joined(left, right);
        [[fallthrough]];
    default:
        return arithmetic(op, left, right);
    }
}

} // namespace host::program
