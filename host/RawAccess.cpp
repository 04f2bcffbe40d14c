// The part of Host that lets tests look behind handles and records.

#include "host/Host.h"
#include "host/classes/ClassTable.h"
#include "host/language/Encodings.h"
#include "host/language/Names.h"
#include "host/memory/Heap.h"

#include <algorithm>

namespace host {

namespace {

template <typename Handle>
auto *live(const Heap &heap, Handle handle) {
    auto *found = handle == nullptr ? nullptr : heap.find(handle);
    return found != nullptr && found->life != Life::freed ? found : nullptr;
}

const HostClass &registeredClass(const Host &host, std::string_view name) {
    const HostClass *type = host.classes().findAny(name);
    if (type != nullptr && type->record != nullptr)
        return *type;
    throw UsageError("no plug-in registered a class " + std::string(name));
}

void *existing(void *function, const HostClass &type, std::string_view member) {
    if (function != nullptr && !accessorIsField(function))
        return function;
    throw UsageError(type.name + '.' + std::string(member) + " has no such function");
}

void *functionOf(const std::vector<Method> &methods, const HostClass &type, std::string_view name) {
    const auto found = std::ranges::find_if(
        methods, [&](const Method &method) { return sameName(method.parsed.name, name); });
    return existing(found == methods.end() ? nullptr : found->function, type, name);
}

} // namespace

std::vector<const PluginClassRecord *> Host::registeredRecords() const {
    std::vector<const PluginClassRecord *> result;
    for (const HostClass *type : classes().registered())
        result.push_back(type->record);
    return result;
}

void *Host::getterOf(std::string_view className, std::string_view name) const {
    const HostClass &type = registeredClass(*this, className);
    const Property *property = type.property(name);
    return existing(property == nullptr ? nullptr : property->getter, type, name);
}

void *Host::setterOf(std::string_view className, std::string_view name) const {
    const HostClass &type = registeredClass(*this, className);
    const Property *property = type.property(name);
    return existing(property == nullptr ? nullptr : property->setter, type, name);
}

void *Host::methodOf(std::string_view className, std::string_view name) const {
    const HostClass &type = registeredClass(*this, className);
    return functionOf(type.methods, type, name);
}

void *Host::sharedMethodOf(std::string_view className, std::string_view name) const {
    const HostClass &type = registeredClass(*this, className);
    return functionOf(type.sharedMethods, type, name);
}

std::string Host::className(ObjectHandle handle) const {
    const Object *object = live(heap(), handle);
    return object == nullptr ? "" : object->type->name;
}

std::string Host::name(ObjectHandle handle) const {
    return heap().name(handle);
}

std::string Host::name(StringHandle handle) const {
    return heap().name(handle);
}

std::string Host::history(ObjectHandle handle) const {
    const Object *object = handle == nullptr ? nullptr : heap().find(handle);
    return object == nullptr ? "" : object->history.text();
}

void *Host::dataOf(ObjectHandle handle) const {
    const Object *object = live(heap(), handle);
    return object == nullptr ? nullptr : object->data();
}

std::int64_t Host::references(ObjectHandle handle) const {
    const Object *object = live(heap(), handle);
    return object == nullptr ? 0 : object->references;
}

std::int64_t Host::references(StringHandle handle) const {
    const String *string = live(heap(), handle);
    return string == nullptr ? 0 : string->references;
}

bool Host::isLive(ObjectHandle handle) const {
    return live(heap(), handle) != nullptr;
}

bool Host::isLive(StringHandle handle) const {
    return live(heap(), handle) != nullptr;
}

std::string Host::bytes(StringHandle handle) const {
    const String *string = live(heap(), handle);
    return string == nullptr ? "" : string->bytes;
}

std::uint32_t Host::encodingOf(StringHandle handle) const {
    const String *string = live(heap(), handle);
    return string == nullptr ? encoding::unknown : string->encoding;
}

std::string Host::text(StringHandle handle) const {
    const String *string = live(heap(), handle);
    return string == nullptr ? "" : toUtf8(string->bytes, string->encoding);
}

std::vector<std::string> Host::liveObjects() const {
    std::vector<std::string> names;
    for (const Object *object : heap().liveObjects())
        names.push_back(Heap::name(*object));
    return names;
}

std::vector<std::string> Host::liveStrings() const {
    std::vector<std::string> names;
    for (const String *string : heap().liveStrings())
        names.push_back(Heap::name(*string));
    return names;
}

} // namespace host
