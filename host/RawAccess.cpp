// The part of Host that lets tests look behind handles and records.

#include "host/Host.h"
#include "host/classes/ClassTable.h"
#include "host/core/Core.h"
#include "host/core/UsageError.h"
#include "host/language/Encodings.h"
#include "host/language/Names.h"
#include "host/memory/Heap.h"

#include <algorithm>

namespace host {

namespace {

const HostClass &registeredClass(const ClassTable &classes, std::string_view name) {
    const HostClass *type = classes.findAny(name);
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
    const HostClass &type = registeredClass(classes(), className);
    const Property *property = type.property(name);
    return existing(property == nullptr ? nullptr : property->getter, type, name);
}

void *Host::setterOf(std::string_view className, std::string_view name) const {
    const HostClass &type = registeredClass(classes(), className);
    const Property *property = type.property(name);
    return existing(property == nullptr ? nullptr : property->setter, type, name);
}

void *Host::methodOf(std::string_view className, std::string_view name) const {
    const HostClass &type = registeredClass(classes(), className);
    return functionOf(type.methods, type, name);
}

void *Host::sharedMethodOf(std::string_view className, std::string_view name) const {
    const HostClass &type = registeredClass(classes(), className);
    return functionOf(type.sharedMethods, type, name);
}

std::string Host::className(ObjectHandle handle) const {
    const Object *object = core().heap.findLive(handle);
    return object == nullptr ? "" : object->type->name;
}

std::string Host::name(ObjectHandle handle) const {
    return core().heap.name(handle);
}

std::string Host::name(StringHandle handle) const {
    return core().heap.name(handle);
}

std::string Host::history(ObjectHandle handle) const {
    const Object *object = core().heap.find(handle);
    return object == nullptr ? "" : object->history.text();
}

void *Host::dataOf(ObjectHandle handle) const {
    const Object *object = core().heap.findLive(handle);
    return object == nullptr ? nullptr : object->data();
}

std::int64_t Host::references(ObjectHandle handle) const {
    const Object *object = core().heap.findLive(handle);
    return object == nullptr ? 0 : object->references;
}

std::int64_t Host::references(StringHandle handle) const {
    const String *string = core().heap.findLive(handle);
    return string == nullptr ? 0 : string->references;
}

bool Host::isLive(ObjectHandle handle) const {
    return core().heap.findLive(handle) != nullptr;
}

bool Host::isLive(StringHandle handle) const {
    return core().heap.findLive(handle) != nullptr;
}

std::string Host::bytes(StringHandle handle) const {
    const String *string = core().heap.findLive(handle);
    return string == nullptr ? "" : string->bytes;
}

std::uint32_t Host::encodingOf(StringHandle handle) const {
    const String *string = core().heap.findLive(handle);
    return string == nullptr ? encoding::unknown : string->encoding;
}

std::string Host::text(StringHandle handle) const {
    return textOf(handle);
}

std::vector<std::string> Host::liveObjects() const {
    std::vector<std::string> names;
    for (const Object *object : core().heap.liveObjects())
        names.push_back(Heap::name(*object));
    return names;
}

std::vector<std::string> Host::liveStrings() const {
    std::vector<std::string> names;
    for (const String *string : core().heap.liveStrings())
        names.push_back(Heap::name(*string));
    return names;
}

} // namespace host
