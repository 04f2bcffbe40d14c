#include "host/classes/Builtins.h"
#include "host/classes/CallLine.h"
#include "host/classes/ClassTable.h"
#include "host/classes/Exceptions.h"
#include "host/classes/Instances.h"
#include "host/classes/NativeData.h"
#include "host/core/Core.h"
#include "host/core/UsageError.h"
#include "host/memory/Heap.h"

#include <limits>

namespace host {

namespace {

Object &makeInternal(Core &core, std::string_view className, std::any payload) {
    Object &object = makeObject(core, *core.classes.findAny(className));
    object.payload = std::move(payload);
    object.finished = true;
    return object;
}

ArrayData *arrayOf(Core &core, ObjectHandle handle, std::int32_t elementType) {
    auto *array = payloadOf<ArrayData>(core.heap, handle, "array");
    if (array != nullptr && array->elementType != elementType) {
        core.heap.violation("got " + core.heap.name(handle) + ", whose elements have the type " +
                            std::to_string(array->elementType) + " instead of " +
                            std::to_string(elementType));
        return nullptr;
    }
    return array;
}

void insert(Core &core, ArrayData &array, std::int32_t index, Value value) {
    if (index < 0 || static_cast<std::size_t>(index) > array.elements.size())
        return raiseNew(core, "OutOfBoundsException",
                        "index " + std::to_string(index) + " of an array of " +
                            std::to_string(array.elements.size()));
    array.elements.insert(array.elements.begin() + index, std::move(value));
}

void insertString(Core &core, ObjectHandle handle, std::int32_t index, StringHandle value) {
    ArrayData *array = arrayOf(core, handle, stringElements);
    if (array != nullptr && (value == nullptr || core.heap.check(value) != nullptr))
        insert(core, *array, index, StringRef::share(value));
}

void insertObject(Core &core, ObjectHandle handle, std::int32_t index, ObjectHandle value) {
    ArrayData *array = arrayOf(core, handle, objectElements);
    if (array != nullptr && (value == nullptr || core.heap.check(value) != nullptr))
        insert(core, *array, index, ObjectRef::share(value));
}

/// Of a value that is no object.
VariantType typeOf(const Value &value) {
    if (std::holds_alternative<std::int64_t>(value))
        return VariantType::integer;
    if (std::holds_alternative<std::uint64_t>(value))
        return VariantType::uint32;
    if (std::holds_alternative<double>(value))
        return VariantType::real;
    return std::holds_alternative<bool>(value) ? VariantType::boolean : VariantType::string;
}

bool fits(const Value &value, VariantType type) {
    switch (type) {
    case VariantType::string:
        return value.isNil() || std::holds_alternative<StringRef>(value);
    case VariantType::integer:
        return std::holds_alternative<std::int64_t>(value);
    case VariantType::uint32:
        return std::holds_alternative<std::uint64_t>(value);
    case VariantType::real:
    case VariantType::single:
        return std::holds_alternative<double>(value);
    case VariantType::boolean:
        return std::holds_alternative<bool>(value);
    }
    return false;
}

} // namespace

namespace services {

ObjectHandle createArray(Core &core, std::int32_t elementType, std::int32_t upperBound) {
    if (elementType != stringElements && elementType != objectElements) {
        core.heap.violation("got the element type " + std::to_string(elementType) +
                            ", which is neither 3 (String) nor 4 (object)");
        return nullptr;
    }
    if (upperBound < -1) {
        core.heap.violation("got the upper bound " + std::to_string(upperBound));
        return nullptr;
    }
    ArrayData data{.elementType = elementType, .elements = {}};
    data.elements.resize(static_cast<std::size_t>(std::int64_t{upperBound} + 1));
    return makeInternal(core, arrayClassName, std::move(data)).handle();
}

void *stringArrayInsertProcedure(Core &core, ObjectHandle array) {
    return arrayOf(core, array, stringElements) == nullptr
               ? nullptr
               : hostMethod<"StringArray.Insert", insertString>();
}

void *objectArrayInsertProcedure(Core &core, ObjectHandle array) {
    return arrayOf(core, array, objectElements) == nullptr
               ? nullptr
               : hostMethod<"ObjectArray.Insert", insertObject>();
}

} // namespace services

void addVariantAndArray(ClassTable &classes) {
    classes.add(HostClass{.name = std::string(variantClassName), .isInternal = true});
    classes.add(HostClass{.name = std::string(arrayClassName), .isInternal = true});
}

ObjectHandle makeVariant(Core &core, VariantContent content) {
    return makeInternal(core, variantClassName, std::move(content)).handle();
}

ObjectRef box(const Value &value) {
    if (value.isNil() || std::holds_alternative<ObjectRef>(value))
        return value.object();
    return box(value, typeOf(value));
}

ObjectRef box(const Value &value, VariantType type) {
    if (!fits(value, type))
        throw UsageError(describe(value) + " does not fit the Variant's type");
    if (type == VariantType::uint32 &&
        value.unsignedInteger() > std::numeric_limits<std::uint32_t>::max())
        throw UsageError(describe(value) + " does not fit into 32 bits");
    return ObjectRef::adopt(makeVariant(Core::current(), {type, value}));
}

VariantContent variant(ObjectHandle object) {
    return inspected<VariantContent>(Core::current().heap, object, "Variant");
}

Value unboxed(ObjectHandle handle) {
    const Object *object = handle == nullptr ? nullptr : Core::current().heap.find(handle);
    if (object == nullptr)
        return {};
    const auto *content = std::any_cast<VariantContent>(&object->payload);
    return content == nullptr ? Value(ObjectRef::share(handle)) : content->value;
}

ObjectRef makeArray(std::int32_t elementType) {
    Object &array = makeInternal(Core::current(), arrayClassName,
                                 ArrayData{.elementType = elementType, .elements = {}});
    return ObjectRef::adopt(array.handle());
}

std::int32_t elementType(ObjectHandle array) {
    return inspected<ArrayData>(Core::current().heap, array, "array").elementType;
}

std::size_t arrayCount(ObjectHandle array) {
    return inspected<ArrayData>(Core::current().heap, array, "array").elements.size();
}

std::vector<Value> arrayObjects(ObjectHandle array) {
    return inspected<ArrayData>(Core::current().heap, array, "array").elements;
}

std::vector<Value> arrayElements(ObjectHandle array) {
    std::vector<Value> result;
    for (const Value &element :
         inspected<ArrayData>(Core::current().heap, array, "array").elements) {
        const auto *object = std::get_if<ObjectRef>(&element);
        result.push_back(object == nullptr ? element : unboxed(object->handle()));
    }
    return result;
}

} // namespace host
