#pragma once

#include "host/program/Conversion.h"

namespace host::program {

// The operators on plain values (see Conversion.h), whatever their static types. Values that an
// operator does not take raise IllegalCastException; arithmetic without an answer raises
// UnsupportedOperationException.

Value applied(Operator op, const Value &operand);
Value applied(Operator op, const Value &left, const Value &right);

/// The same object, or both Nil.
bool isSame(const Value &left, const Value &right);
/// Negative, zero or positive; of numbers or strings.
int compared(const Value &left, const Value &right);
bool isEqual(const Value &left, const Value &right);

} // namespace host::program
