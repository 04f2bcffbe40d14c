#include "host/program/Arrays.h"

#include "host/Host.h"
#include "host/classes/Inspect.h"
#include "host/classes/NativeData.h"
#include "host/core/Core.h"
#include "host/memory/Heap.h"
#include "host/program/Conversion.h"
#include "host/program/Raised.h"
#include "host/program/Types.h"

#include <algorithm>

namespace host::program {

namespace {

std::int32_t codeOf(const Type &elementType) {
    if (isString(elementType))
        return stringElements;
    return isNumber(elementType) || isBoolean(elementType) ? plainElements : objectElements;
}

constexpr std::uint64_t mostBytes = std::uint64_t{1} << 30;

void checkIndex(const ArrayData &array, std::int64_t index) {
    if (index < 0 || static_cast<std::uint64_t>(index) >= array.elements.size())
        raiseOutOfBounds(index, array.elements.size());
}

} // namespace

void checkSize(std::uint64_t bytes) {
    if (bytes > std::min(mostBytes, Host::current().options().memoryBlockLimit))
        raise("OutOfMemoryException", "no memory for " + std::to_string(bytes) + " bytes");
}

ObjectRef newArray(const Type &elementType, std::int64_t count) {
    ObjectRef array = makeArray(codeOf(elementType));
    resize(elementsOf(array), elementType, count);
    return array;
}

void resize(ArrayData &array, const Type &elementType, std::int64_t count) {
    if (count < 0)
        raise("OutOfBoundsException", "an upper bound of " + std::to_string(count - 1));
    checkSize(static_cast<std::uint64_t>(std::min(count, INT64_MAX / 64)) * sizeof(Value));
    array.elements.resize(static_cast<std::size_t>(count), initialValue(elementType));
}

bool isArrayOf(const ObjectRef &object, const Type &elementType) {
    const Object *found = Core::current().heap.find(object.handle());
    const auto *array = found == nullptr ? nullptr : std::any_cast<ArrayData>(&found->payload);
    return array != nullptr && array->elementType == codeOf(elementType);
}

ArrayData &elementsOf(const Value &array) {
    const auto *object = std::get_if<ObjectRef>(&array);
    if (object == nullptr)
        raise("NilObjectException", "an array is wanted, but there is Nil");
    return std::any_cast<ArrayData &>(Core::current().heap.find(object->handle())->payload);
}

Value element(const ArrayData &array, std::int64_t index, const Type &elementType) {
    checkIndex(array, index);
    const Value &value = array.elements[static_cast<std::size_t>(index)];
    // Elements of other types than declared come from where types are not told: plug-ins, Variants.
    return isString(elementType) || isVariant(elementType)
               ? value
               : converted(value, simpleType(TypeKind::variant), elementType);
}

Value kept(const ArrayData &array, const Value &value) {
    return array.elementType == objectElements ? Value(box(value)) : value;
}

void setElement(ArrayData &array, std::int64_t index, const Value &value) {
    checkIndex(array, index);
    array.elements[static_cast<std::size_t>(index)] = kept(array, value);
}

} // namespace host::program
