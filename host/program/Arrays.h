#pragma once

// Arrays of programs: host objects that keep values of one type.

#include "host/language/Value.h"
#include "host/program/Syntax.h"

#include <cstddef>
#include <cstdint>

namespace host {
struct ArrayData;
}

namespace host::program {

/// With so many initial values. Raises OutOfMemoryException.
ObjectRef newArray(const Type &elementType, std::int64_t count);
/// Keeps the elements up to the new count.
void resize(ArrayData &array, const Type &elementType, std::int64_t count);

/// Whether the object is an array that may hold such elements.
bool isArrayOf(const ObjectRef &object, const Type &elementType);

/// Raises NilObjectException when there is no array.
ArrayData &elementsOf(const Value &array);
/// Raises OutOfBoundsException.
Value element(const ArrayData &array, std::int64_t index, const Type &elementType);
void setElement(ArrayData &array, std::int64_t index, const Value &value);
/// As arrays keep it.
Value kept(const ArrayData &array, const Value &value);

/// Raises OutOfMemoryException for what no program needs: the host's limit of memory blocks.
void checkSize(std::uint64_t bytes);

} // namespace host::program
