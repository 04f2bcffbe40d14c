#include "host/classes/Builtins.h"
#include "host/classes/Instances.h"
#include "host/classes/Invoker.h"
#include "host/classes/Registration.h"
#include "host/services/ServiceBodies.h"

namespace host::services {

double hostVersion(Host &host) {
    return host.options().version.value_or(0.0);
}

void registerPluginVersion(Host &host, std::int32_t version) {
    if (version < oldestInterface || version > newestInterface)
        host.heap().violation("interface version " + std::to_string(version) +
                              " is none of 9 to 13");
    host.setInterfaceVersion(version);
}

void registerClass(Host &host, PluginClassRecord *record) {
    registerRecord(host, record);
}

ObjectHandle newInstance(Host &host, const char *className) {
    if (className == nullptr) {
        host.heap().violation("got no class name");
        return nullptr;
    }
    const HostClass *type = host.classes().find(className);
    if (type == nullptr || type->isInternal)
        return nullptr;
    Object *object = instantiate(host, *type);
    return object == nullptr ? nullptr : object->handle();
}

void lockObject(Host &host, ObjectHandle object) {
    host.heap().lock(object);
}

void unlockObject(Host &host, ObjectHandle object) {
    host.heap().unlock(object);
}

void raiseException(Host &host, ObjectHandle exception) {
    host.raise(exception);
}

ObjectHandle callWithExceptionHandler(Host &host, void (*callback)(void *), void *argument) {
    if (callback == nullptr) {
        host.heap().violation("got no callback");
        return nullptr;
    }
    const Host::ExceptionScope scope(host);
    callback(argument);
    return host.takePending().release();
}

namespace {

/// The property if the object is live and has it with this kind of type; null otherwise, which
/// is an answer and no fault.
const Property *propertyOf(Host &host, ObjectHandle handle, const char *name, TypeKind kind) {
    const Object *object = host.heap().check(handle);
    if (object == nullptr)
        return nullptr;
    if (name == nullptr) {
        host.heap().violation("got no property name");
        return nullptr;
    }
    const Property *property = object->type->property(name);
    return property != nullptr && property->type.kind == kind && !property->type.isArray ? property
                                                                                         : nullptr;
}

} // namespace

bool setPropertyInteger(Host &host, ObjectHandle object, const char *name, std::int64_t value) {
    const Property *property = propertyOf(host, object, name, TypeKind::integer);
    if (property == nullptr || !property->isWritable())
        return false;
    writeProperty(host, *host.heap().find(object), *property, Value(value));
    return true;
}

bool setPropertyString(Host &host, ObjectHandle object, const char *name, StringHandle value) {
    const Property *property = propertyOf(host, object, name, TypeKind::string);
    if (property == nullptr || !property->isWritable())
        return false;
    if (value != nullptr && host.heap().check(value) == nullptr)
        return false;
    writeProperty(host, *host.heap().find(object), *property, Value(StringRef::share(value)));
    return true;
}

bool getPropertyInteger(Host &host, ObjectHandle object, const char *name, std::int64_t *result) {
    const Property *property = propertyOf(host, object, name, TypeKind::integer);
    if (property == nullptr)
        return false;
    if (result == nullptr) {
        host.heap().violation("got no place for the result");
        return false;
    }
    *result = readProperty(host, *host.heap().find(object), *property).integer();
    return true;
}

void *loadObjectMethod(Host &host, ObjectHandle handle, const char *declaration) {
    const Object *object = host.heap().check(handle);
    if (object == nullptr)
        return nullptr;
    const auto signature = host.parseLookup(declaration);
    const Method *method = signature ? object->type->method(*signature) : nullptr;
    return method == nullptr ? nullptr : method->function;
}

void *loadGlobalMethod(Host &host, void *module, const char *declaration) {
    if (module != nullptr)
        host.heap().violation("got a module, though the host has global methods only");
    const auto signature = host.parseLookup(declaration);
    const Method *method = signature ? host.globalMethod(*signature) : nullptr;
    return method == nullptr ? nullptr : method->function;
}

ObjectHandle stringToVariant(Host &host, StringHandle string) {
    if (string != nullptr && host.heap().check(string) == nullptr)
        return nullptr;
    return makeVariant(host, {VariantType::string, Value(StringRef::share(string))});
}

ObjectHandle integerToVariant(Host &host, std::int64_t number) {
    return makeVariant(host, {VariantType::integer, Value(number)});
}

ObjectHandle doubleToVariant(Host &host, double number) {
    return makeVariant(host, {VariantType::real, Value(number)});
}

ObjectHandle booleanToVariant(Host &host, BooleanByte truth) {
    return makeVariant(host, {VariantType::boolean, Value(truth != BooleanByte{})});
}

ObjectHandle uint32ToVariant(Host &host, std::uint32_t number) {
    return makeVariant(host, {VariantType::uint32, Value(std::uint64_t{number})});
}

ObjectHandle singleToVariant(Host &host, float number) {
    return makeVariant(host, {VariantType::single, Value(double{number})});
}

} // namespace host::services
