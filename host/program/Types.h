#pragma once

// What fits where, and what operators give.

#include "host/program/Syntax.h"

#include <optional>
#include <string>

namespace host::program {

bool isInteger(const Type &type); ///< of any width
bool isNumber(const Type &type);
bool isString(const Type &type);
bool isBoolean(const Type &type);
bool isVariant(const Type &type);
bool isNil(const Type &type);
/// Of an array, an object or Nil: something that may be Nil.
bool isReference(const Type &type);

Type simpleType(TypeKind kind);
Type elementOf(Type arrayType);

/// "Integer", "String()", "Nil", "no value".
std::string shown(const std::optional<Type> &type);

/// Whether a value of one type may be assigned to the other, as far as types tell: numbers to
/// numbers, objects to superclasses, everything to Variant, and a Variant to everything (then the
/// value decides).
bool fits(const ClassTable &classes, const Type &value, const Type &target);

/// Nothing when the operator does not take such operands.
std::optional<Type> resultOf(Operator op, const Type &operand);
std::optional<Type> resultOf(Operator op, const Type &left, const Type &right);

} // namespace host::program
