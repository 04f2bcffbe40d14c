// The part of Host that acts as a program of the host's language.

#include "host/Host.h"
#include "host/classes/ClassTable.h"
#include "host/classes/Exceptions.h"
#include "host/classes/Instances.h"
#include "host/classes/Invoker.h"
#include "host/core/Cocoa.h"
#include "host/core/Core.h"
#include "host/core/UsageError.h"
#include "host/memory/Heap.h"

namespace host {

namespace {

const HostClass &classNamed(const ClassTable &classes, std::string_view name) {
    if (const HostClass *type = classes.find(name))
        return *type;
    throw UsageError("the host knows no class " + std::string(name));
}

Object &liveObject(const Heap &heap, ObjectHandle handle) {
    if (Object *object = heap.findLive(handle))
        return *object;
    throw UsageError(heap.name(handle) + " is no live object");
}

const Property &propertyNamed(const HostClass &type, std::string_view name) {
    if (const Property *property = type.property(name))
        return *property;
    throw UsageError(type.name + " has no property " + std::string(name));
}

[[noreturn]] void noMethod(const HostClass &type, std::string_view what, std::string_view name,
                           std::size_t count) {
    throw UsageError(type.name + " has no " + std::string(what) + ' ' + std::string(name) +
                     " that takes " + std::to_string(count) + " arguments");
}

const Method *constructorFor(const HostClass &type, std::size_t count) {
    if (const Method *named = type.method("Constructor", count))
        return named;
    // The host's own classes may have a constructor that is a bare parameter list.
    return count == 0 ? nullptr : type.method("", count);
}

} // namespace

/// Runs a program's call: what is pending before is not its doing, what is pending after is.
template <typename Body>
Outcome Host::perform(Body body) {
    return inAutoreleasePool([&] {
        core().pending.makeStray();
        Outcome outcome;
        outcome.value = body();
        outcome.exception = takePendingException();
        return outcome;
    });
}

Outcome Host::newObject(std::string_view className, const Values &arguments) {
    const HostClass &type = classNamed(classes(), className);
    const Method *constructor = constructorFor(type, arguments.size());
    if (constructor == nullptr && !arguments.empty())
        noMethod(type, "constructor", "", arguments.size());
    Outcome outcome = perform([&]() -> Value {
        Object *object = instantiate(core(), type);
        if (object == nullptr)
            return {};
        ObjectRef made = ObjectRef::adopt(object->handle());
        if (constructor != nullptr && !hasPendingException())
            callMethod(core(), *constructor, *object, arguments);
        return made;
    });
    if (outcome.raised())
        outcome.value = {};
    return outcome;
}

ObjectRef Host::newInstance(std::string_view className) {
    const HostClass *type = classes().find(className);
    if (type == nullptr || type->isInternal)
        return {};
    Object *object = inAutoreleasePool([&] { return instantiate(core(), *type); });
    return object == nullptr ? ObjectRef{} : ObjectRef::adopt(object->handle());
}

Outcome Host::get(ObjectHandle handle, std::string_view name) {
    Object &object = liveObject(core().heap, handle);
    const Property &property = propertyNamed(*object.type, name);
    return perform([&] { return readProperty(core(), object, property); });
}

Outcome Host::set(ObjectHandle handle, std::string_view name, const Value &value) {
    Object &object = liveObject(core().heap, handle);
    const Property &property = propertyNamed(*object.type, name);
    return perform([&]() -> Value {
        writeProperty(core(), object, property, value);
        return {};
    });
}

Outcome Host::call(ObjectHandle handle, std::string_view name, const Values &arguments) {
    Object &object = liveObject(core().heap, handle);
    const Method *method = object.type->method(name, arguments.size());
    if (method == nullptr)
        noMethod(*object.type, "method", name, arguments.size());
    return perform([&] { return callMethod(core(), *method, object, arguments); });
}

Outcome Host::callShared(std::string_view className, std::string_view name,
                         const Values &arguments) {
    const HostClass &type = classNamed(classes(), className);
    const Method *method = type.sharedMethod(name, arguments.size());
    if (method == nullptr)
        noMethod(type, "shared method", name, arguments.size());
    return perform([&] { return callSharedMethod(core(), type, *method, arguments); });
}

std::int64_t Host::constant(std::string_view className, std::string_view name) const {
    const HostClass &type = classNamed(classes(), className);
    if (const Constant *constant = type.constant(name))
        return constant->value;
    throw UsageError(type.name + " has no constant " + std::string(name));
}

Outcome Host::release(ObjectRef object) {
    return perform([&]() -> Value {
        object.drop();
        return {};
    });
}

} // namespace host
