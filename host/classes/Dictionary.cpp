#include "host/classes/Builtins.h"
#include "host/classes/CallLine.h"
#include "host/classes/ClassTable.h"
#include "host/classes/Exceptions.h"
#include "host/classes/NativeData.h"
#include "host/core/Core.h"
#include "host/core/Text.h"
#include "host/memory/Heap.h"

#include <cmath>

namespace host {

namespace {

/// Equal for keys that a program takes for equal: texts by their characters whatever the
/// encoding, numbers by their value whatever the type, objects by identity.
std::string identityOf(const Value &key) {
    struct Identity {
        std::string operator()(std::monostate) const { return "nil"; }
        std::string operator()(std::int64_t number) const { return 'n' + std::to_string(number); }
        std::string operator()(std::uint64_t number) const { return 'n' + std::to_string(number); }
        std::string operator()(double number) const {
            const bool isInteger = std::trunc(number) == number && std::abs(number) < 0x1p53;
            return 'n' + (isInteger ? std::to_string(static_cast<std::int64_t>(number))
                                    : shortest(number));
        }
        std::string operator()(bool truth) const { return truth ? "true" : "false"; }
        std::string operator()(const StringRef &string) const {
            return '"' + textOf(string.handle());
        }
        std::string operator()(const ObjectRef &object) const {
            return Core::current().heap.name(object.handle());
        }
    };
    return std::visit(Identity{}, static_cast<const ValueAlternatives &>(key));
}

bool isUsable(Core &core, ObjectHandle handle) {
    return handle == nullptr || core.heap.check(handle) != nullptr;
}

/// A reference for the plug-in to a stored value.
ObjectHandle handOut(const Value &stored) {
    return stored.object().release();
}

void setValue(Core &core, ObjectHandle handle, ObjectHandle key, ObjectHandle value) {
    auto *data = payloadOf<DictionaryData>(core.heap, handle, "Dictionary");
    if (data == nullptr || !isUsable(core, key) || !isUsable(core, value))
        return;
    const auto [place, added] =
        data->places.try_emplace(identityOf(unboxed(key)), data->entries.size());
    if (added)
        data->entries.emplace_back(ObjectRef::share(key), ObjectRef::share(value));
    else
        data->entries[place->second].second = Value(ObjectRef::share(value));
}

ObjectHandle value(Core &core, ObjectHandle handle, ObjectHandle key) {
    const auto *data = payloadOf<DictionaryData>(core.heap, handle, "Dictionary");
    if (data == nullptr || !isUsable(core, key))
        return nullptr;
    const Value wanted = unboxed(key);
    const auto place = data->places.find(identityOf(wanted));
    if (place != data->places.end())
        return handOut(data->entries[place->second].second);
    raiseNew(core, "KeyNotFoundException", "no key " + describe(wanted));
    return nullptr;
}

ObjectHandle keyAt(Core &core, ObjectHandle handle, std::int64_t index) {
    const auto *data = payloadOf<DictionaryData>(core.heap, handle, "Dictionary");
    if (data == nullptr)
        return nullptr;
    if (index >= 0 && static_cast<std::uint64_t>(index) < data->entries.size())
        return handOut(data->entries[static_cast<std::size_t>(index)].first);
    raiseNew(core, "OutOfBoundsException", "no key at " + std::to_string(index));
    return nullptr;
}

bool hasKey(Core &core, ObjectHandle handle, ObjectHandle key) {
    const auto *data = payloadOf<DictionaryData>(core.heap, handle, "Dictionary");
    return data != nullptr && isUsable(core, key) &&
           data->places.contains(identityOf(unboxed(key)));
}

ObjectHandle lookup(Core &core, ObjectHandle handle, ObjectHandle key, ObjectHandle otherwise) {
    const auto *data = payloadOf<DictionaryData>(core.heap, handle, "Dictionary");
    if (data == nullptr || !isUsable(core, key) || !isUsable(core, otherwise))
        return nullptr;
    const auto place = data->places.find(identityOf(unboxed(key)));
    return place != data->places.end() ? handOut(data->entries[place->second].second)
                                       : ObjectRef::share(otherwise).release();
}

/// In order of insertion.
template <Value std::pair<Value, Value>::*Half>
ObjectHandle arrayOf(Core &core, ObjectHandle handle) {
    const auto *data = payloadOf<DictionaryData>(core.heap, handle, "Dictionary");
    if (data == nullptr)
        return nullptr;
    ObjectRef array = makeArray(objectElements);
    auto &elements = std::any_cast<ArrayData &>(core.heap.find(array.handle())->payload).elements;
    for (const auto &entry : data->entries)
        elements.push_back(entry.*Half);
    return array.release();
}

Value count(const Object &object) {
    return static_cast<std::int64_t>(
        std::any_cast<const DictionaryData &>(object.payload).entries.size());
}

} // namespace

void addDictionary(ClassTable &classes) {
    HostClass type{.name = "Dictionary", .makePayload = [] { return std::any(DictionaryData{}); }};
    type.methods = {
        nativeMethod("Value(key As Variant, Assigns value As Variant)",
                     hostMethod<"Dictionary.Value", setValue>()),
        nativeMethod("Value(key As Variant) As Variant", hostMethod<"Dictionary.Value", value>()),
        nativeMethod("Key(index As Integer) As Variant", hostMethod<"Dictionary.Key", keyAt>()),
        nativeMethod("HasKey(key As Variant) As Boolean",
                     hostMethod<"Dictionary.HasKey", hasKey>()),
        nativeMethod("Lookup(key As Variant, default As Variant) As Variant",
                     hostMethod<"Dictionary.Lookup", lookup>()),
        nativeMethod("Keys As Variant()",
                     hostMethod<"Dictionary.Keys", arrayOf<&std::pair<Value, Value>::first>>()),
        nativeMethod("Values As Variant()",
                     hostMethod<"Dictionary.Values", arrayOf<&std::pair<Value, Value>::second>>()),
    };
    type.properties = {Property{.name = "Count", .type = parseType("Integer"), .read = count}};
    classes.add(std::move(type));
}

std::vector<std::pair<Value, Value>> dictionaryObjects(ObjectHandle dictionary) {
    return inspected<DictionaryData>(Core::current().heap, dictionary, "Dictionary").entries;
}

std::vector<std::pair<Value, Value>> dictionaryEntries(ObjectHandle dictionary) {
    std::vector<std::pair<Value, Value>> result;
    for (const auto &[key, stored] :
         inspected<DictionaryData>(Core::current().heap, dictionary, "Dictionary").entries)
        result.emplace_back(unboxed(key.object()), unboxed(stored.object()));
    return result;
}

} // namespace host
