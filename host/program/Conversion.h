#pragma once

// Values of one type as values of another.
//
// A variable of a type holds the alternative of host::Value that calls take for it: signed
// integers, unsigned ones, doubles. The empty String is nil or a string without bytes. A Variant
// holds a plain value, in which the empty String is never nil, or a host object that is a Variant.

#include "host/language/Value.h"
#include "host/program/Syntax.h"

#include <string>

namespace host::program {

__extension__ using Wide = __int128; ///< holds every integer of 64 bits, signed or not

/// What a variable holds before something is assigned to it; of an array, nil.
Value initialValue(const Type &type);

/// The static types fit. Raises IllegalCastException for a Variant that holds something else, and
/// UnsupportedOperationException for a number that the other type does not hold. Reals become
/// integers towards zero.
Value converted(const Value &value, const Type &from, const Type &to);

/// A Variant's content, so that an operator can look at it; the empty String as a string.
Value plain(const Value &value, const Type &type);

bool isInteger(const Value &plain);
bool isNumber(const Value &plain);
Wide wideOf(const Value &integer);
long double realOf(const Value &number);
/// The Double that has no order.
bool isNotANumber(const Value &plain);
/// Raises UnsupportedOperationException when it does not fit.
Value integerOf(Wide number, const Type &type);

/// "Integer", "Nil", "Dictionary": what a plain value is.
std::string kindOf(const Value &plain);

} // namespace host::program
