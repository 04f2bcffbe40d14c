#include "host/program/Conversion.h"

#include "host/Host.h"
#include "host/classes/Inspect.h"
#include "host/core/Core.h"
#include "host/memory/Heap.h"
#include "host/program/Arrays.h"
#include "host/program/Raised.h"
#include "host/program/Types.h"
#include "host/program/ValueText.h"

#include <cmath>
#include <limits>

namespace host::program {

namespace {

template <typename Integer>
bool holds(Wide number) {
    return number >= std::numeric_limits<Integer>::min() &&
           number <= std::numeric_limits<Integer>::max();
}

std::string decimal(Wide number) {
    std::string digits;
    const bool negative = number < 0;
    do
        digits.insert(digits.begin(),
                      static_cast<char>('0' + static_cast<int>(number % 10) * (negative ? -1 : 1)));
    while ((number /= 10) != 0);
    return (negative ? "-" : "") + digits;
}

[[noreturn]] void doesNotFit(const std::string &number, const Type &type) {
    raise("UnsupportedOperationException", number + " does not fit into " + describe(type));
}

Value numberAs(const Value &number, const Type &type) {
    if (type.kind == TypeKind::real)
        return static_cast<double>(realOf(number));
    if (type.kind == TypeKind::single)
        return static_cast<double>(static_cast<float>(realOf(number)));
    if (isInteger(number))
        return integerOf(wideOf(number), type);
    const long double whole = std::trunc(realOf(number));
    if (!(std::abs(whole) < 0x1p65L))
        doesNotFit(textOf(number), type);
    return integerOf(static_cast<Wide>(whole), type);
}

Value intoVariant(const Value &value, const Type &from) {
    if (isString(from) && value.isNil())
        return Host::current().makeString("");
    if (from.kind != TypeKind::uint64 && from.kind != TypeKind::pointer)
        return value;
    // A Variant has no room for the upper half of these.
    return from.isArray ? value : integerOf(wideOf(value), simpleType(TypeKind::integer));
}

bool isOfClass(const ObjectRef &object, const std::string &className) {
    const Host &host = Host::current();
    const HostClass *type = host.classes().findAny(className);
    const Object *found = Core::current().heap.find(object.handle());
    return type != nullptr && found != nullptr && found->type->isKindOf(*type);
}

bool holdsType(const Value &plain, const Type &type) {
    const auto *object = std::get_if<ObjectRef>(&plain);
    if (type.isArray)
        return plain.isNil() || (object != nullptr && isArrayOf(*object, elementOf(type)));
    if (type.kind == TypeKind::object)
        return plain.isNil() || (object != nullptr && isOfClass(*object, type.className));
    if (isNumber(type))
        return isNumber(plain);
    return type.kind == TypeKind::boolean ? std::holds_alternative<bool>(plain)
                                          : std::holds_alternative<StringRef>(plain);
}

} // namespace

Value initialValue(const Type &type) {
    if (type.isArray)
        return {};
    if (isNumber(type))
        return numberAs(Value(0), type);
    return isBoolean(type) ? Value(false) : Value();
}

bool isInteger(const Value &plain) {
    return std::holds_alternative<std::int64_t>(plain) ||
           std::holds_alternative<std::uint64_t>(plain);
}

bool isNumber(const Value &plain) {
    return isInteger(plain) || std::holds_alternative<double>(plain);
}

Wide wideOf(const Value &integer) {
    const auto *number = std::get_if<std::uint64_t>(&integer);
    return number != nullptr ? Wide{*number} : Wide{integer.integer()};
}

long double realOf(const Value &number) {
    const auto *real = std::get_if<double>(&number);
    return real != nullptr ? *real : static_cast<long double>(wideOf(number));
}

bool isNotANumber(const Value &plain) {
    const auto *real = std::get_if<double>(&plain);
    return real != nullptr && std::isnan(*real);
}

Value integerOf(Wide number, const Type &type) {
    const bool fitting = type.kind == TypeKind::int32    ? holds<std::int32_t>(number)
                         : type.kind == TypeKind::uint32 ? holds<std::uint32_t>(number)
                         : type.kind == TypeKind::uint64 || type.kind == TypeKind::pointer
                             ? holds<std::uint64_t>(number)
                             : holds<std::int64_t>(number);
    if (!fitting)
        doesNotFit(decimal(number), type);
    if (type.kind == TypeKind::integer || type.kind == TypeKind::int32)
        return static_cast<std::int64_t>(number);
    return static_cast<std::uint64_t>(number);
}

Value plain(const Value &value, const Type &type) {
    if (isString(type) && value.isNil())
        return Host::current().makeString("");
    const auto *object = std::get_if<ObjectRef>(&value);
    if (object == nullptr || Host::current().className(*object) != "Variant")
        return value;
    const VariantContent content = variant(*object);
    return content.value.isNil() ? Host::current().makeString("") : content.value;
}

Value converted(const Value &value, const Type &from, const Type &to) {
    if (from == to)
        return value;
    if (isVariant(to))
        return intoVariant(value, from);
    if (!isVariant(from))
        return isNumber(to) ? numberAs(value, to) : value;
    const Value content = plain(value, from);
    if (!holdsType(content, to))
        raise("IllegalCastException", kindOf(content) + " is no " + describe(to));
    return isNumber(to) ? numberAs(content, to) : content;
}

std::string kindOf(const Value &plain) {
    if (const auto *object = std::get_if<ObjectRef>(&plain))
        return Host::current().className(*object);
    constexpr std::array names{"Nil", "Integer", "UInt64", "Double", "Boolean", "String"};
    return names.at(plain.index());
}

} // namespace host::program
