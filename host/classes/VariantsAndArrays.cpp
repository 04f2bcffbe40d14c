#include "host/Host.h"
#include "host/classes/Builtins.h"
#include "host/classes/CallLine.h"
#include "host/services/ServiceBodies.h"

#include <limits>

namespace host {

namespace {

Object &makeInternal(Host &host, std::string_view className, Payload payload) {
    Object &object = host.heap().makeObject(*host.classes().findAny(className));
    object.payload = std::move(payload);
    object.finished = true;
    return object;
}

ArrayData *arrayOf(Host &host, ObjectHandle handle, std::int32_t elementType) {
    auto *array = payloadOf<ArrayData>(host.heap(), handle, "array");
    if (array != nullptr && array->elementType != elementType) {
        host.heap().violation(
            "got " + host.heap().name(handle) + ", whose elements have the type " +
            std::to_string(array->elementType) + " instead of " + std::to_string(elementType));
        return nullptr;
    }
    return array;
}

void insert(Host &host, ArrayData &array, std::int32_t index, Value value) {
    if (index < 0 || static_cast<std::size_t>(index) > array.elements.size())
        return raiseNew(host, "OutOfBoundsException",
                        "index " + std::to_string(index) + " of an array of " +
                            std::to_string(array.elements.size()));
    array.elements.insert(array.elements.begin() + index, std::move(value));
}

void insertString(Host &host, ObjectHandle handle, std::int32_t index, StringHandle value) {
    ArrayData *array = arrayOf(host, handle, stringElements);
    if (array != nullptr && (value == nullptr || host.heap().check(value) != nullptr))
        insert(host, *array, index, StringRef::share(value));
}

void insertObject(Host &host, ObjectHandle handle, std::int32_t index, ObjectHandle value) {
    ArrayData *array = arrayOf(host, handle, objectElements);
    if (array != nullptr && (value == nullptr || host.heap().check(value) != nullptr))
        insert(host, *array, index, ObjectRef::share(value));
}

} // namespace

namespace services {

ObjectHandle createArray(Host &host, std::int32_t elementType, std::int32_t upperBound) {
    if (elementType != stringElements && elementType != objectElements) {
        host.heap().violation("got the element type " + std::to_string(elementType) +
                              ", which is neither 3 (String) nor 4 (object)");
        return nullptr;
    }
    if (upperBound < -1) {
        host.heap().violation("got the upper bound " + std::to_string(upperBound));
        return nullptr;
    }
    ArrayData data{.elementType = elementType, .elements = {}};
    data.elements.resize(static_cast<std::size_t>(std::int64_t{upperBound} + 1));
    return makeInternal(host, arrayClassName, std::move(data)).handle();
}

void *stringArrayInsertProcedure(Host &host, ObjectHandle array) {
    return arrayOf(host, array, stringElements) == nullptr
               ? nullptr
               : hostMethod<"StringArray.Insert", insertString>();
}

void *objectArrayInsertProcedure(Host &host, ObjectHandle array) {
    return arrayOf(host, array, objectElements) == nullptr
               ? nullptr
               : hostMethod<"ObjectArray.Insert", insertObject>();
}

} // namespace services

void addVariantAndArray(ClassTable &classes) {
    classes.add(HostClass{.name = std::string(variantClassName), .isInternal = true});
    classes.add(HostClass{.name = std::string(arrayClassName), .isInternal = true});
}

ObjectHandle makeVariant(Host &host, VariantContent content) {
    return makeInternal(host, variantClassName, std::move(content)).handle();
}

ObjectRef box(const Value &value) {
    if (const auto *object = std::get_if<ObjectRef>(&value))
        return *object;
    constexpr VariantType types[] = {VariantType::string,  VariantType::integer,
                                     VariantType::uint32,  VariantType::real,
                                     VariantType::boolean, VariantType::string};
    return value.isNil() ? ObjectRef{} : box(value, types[value.index()]);
}

ObjectRef box(const Value &value, VariantType type) {
    constexpr std::size_t alternatives[] = {5, 1, 3, 4, 2, 3};
    const bool nilString = type == VariantType::string && value.isNil();
    if (!nilString && value.index() != alternatives[static_cast<std::size_t>(type)])
        throw UsageError(describe(value) + " does not fit the Variant's type");
    if (type == VariantType::uint32 &&
        value.unsignedInteger() > std::numeric_limits<std::uint32_t>::max())
        throw UsageError(describe(value) + " does not fit into 32 bits");
    return ObjectRef::adopt(makeVariant(Host::current(), {type, value}));
}

VariantContent variant(ObjectHandle object) {
    return inspected<VariantContent>(Host::current().heap(), object, "Variant");
}

Value unboxed(ObjectHandle handle) {
    const Object *object = handle == nullptr ? nullptr : Host::current().heap().find(handle);
    if (object == nullptr)
        return {};
    const auto *content = std::get_if<VariantContent>(&object->payload);
    return content == nullptr ? Value(ObjectRef::share(handle)) : content->value;
}

ObjectRef makeArray(std::int32_t elementType) {
    Object &array = makeInternal(Host::current(), arrayClassName,
                                 ArrayData{.elementType = elementType, .elements = {}});
    return ObjectRef::adopt(array.handle());
}

std::int32_t elementType(ObjectHandle array) {
    return inspected<ArrayData>(Host::current().heap(), array, "array").elementType;
}

std::size_t arrayCount(ObjectHandle array) {
    return inspected<ArrayData>(Host::current().heap(), array, "array").elements.size();
}

std::vector<Value> arrayObjects(ObjectHandle array) {
    return inspected<ArrayData>(Host::current().heap(), array, "array").elements;
}

std::vector<Value> arrayElements(ObjectHandle array) {
    std::vector<Value> result;
    for (const Value &element :
         inspected<ArrayData>(Host::current().heap(), array, "array").elements) {
        const auto *object = std::get_if<ObjectRef>(&element);
        result.push_back(object == nullptr ? element : unboxed(object->handle()));
    }
    return result;
}

} // namespace host
