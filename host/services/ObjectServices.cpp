#include "host/classes/Builtins.h"
#include "host/classes/ClassTable.h"
#include "host/classes/Exceptions.h"
#include "host/classes/Instances.h"
#include "host/classes/Invoker.h"
#include "host/classes/Registration.h"
#include "host/core/Core.h"
#include "host/memory/Heap.h"
#include "host/services/ServiceBodies.h"

namespace host::services {

double hostVersion(Core &core) {
    return core.options.version.value_or(0.0);
}

void registerPluginVersion(Core &core, std::int32_t version) {
    if (version < oldestInterface || version > newestInterface)
        core.heap.violation("interface version " + std::to_string(version) + " is none of 9 to 13");
    core.interfaceVersion = version;
}

void registerClass(Core &core, PluginClassRecord *record) {
    registerRecord(core, record);
}

ObjectHandle newInstance(Core &core, const char *className) {
    if (className == nullptr) {
        core.heap.violation("got no class name");
        return nullptr;
    }
    const HostClass *type = core.classes.find(className);
    if (type == nullptr || type->isInternal)
        return nullptr;
    Object *object = instantiate(core, *type);
    return object == nullptr ? nullptr : object->handle();
}

void lockObject(Core &core, ObjectHandle object) {
    core.heap.lock(object);
}

void unlockObject(Core &core, ObjectHandle object) {
    core.heap.unlock(object);
}

void raiseException(Core &core, ObjectHandle exception) {
    raise(core, exception);
}

ObjectHandle callWithExceptionHandler(Core &core, void (*callback)(void *), void *argument) {
    if (callback == nullptr) {
        core.heap.violation("got no callback");
        return nullptr;
    }
    const PendingException::Scope scope(core.pending);
    callback(argument);
    return core.pending.take().release();
}

namespace {

/// The property if the object is live and has it with this kind of type; null otherwise, which
/// is an answer and no fault.
const Property *propertyOf(Core &core, ObjectHandle handle, const char *name, TypeKind kind) {
    const Object *object = core.heap.check(handle);
    if (object == nullptr)
        return nullptr;
    if (name == nullptr) {
        core.heap.violation("got no property name");
        return nullptr;
    }
    const Property *property = object->type->property(name);
    return property != nullptr && property->type.kind == kind && !property->type.isArray ? property
                                                                                         : nullptr;
}

/// What a look-up asks for: nothing when the text does not parse (a violation) or the method is
/// hidden.
std::optional<MethodDeclaration> parseLookup(Core &core, const char *declaration) {
    if (declaration == nullptr) {
        core.heap.violation("got no declaration");
        return std::nullopt;
    }
    try {
        MethodDeclaration wanted = parseMethod(declaration);
        return core.classes.isHidden(wanted) ? std::nullopt : std::optional(std::move(wanted));
    } catch (const DeclarationError &error) {
        core.heap.violation(error.what());
        return std::nullopt;
    }
}

} // namespace

bool setPropertyInteger(Core &core, ObjectHandle object, const char *name, std::int64_t value) {
    const Property *property = propertyOf(core, object, name, TypeKind::integer);
    if (property == nullptr || !property->isWritable())
        return false;
    writeProperty(core, *core.heap.find(object), *property, Value(value));
    return true;
}

bool setPropertyString(Core &core, ObjectHandle object, const char *name, StringHandle value) {
    const Property *property = propertyOf(core, object, name, TypeKind::string);
    if (property == nullptr || !property->isWritable())
        return false;
    if (value != nullptr && core.heap.check(value) == nullptr)
        return false;
    writeProperty(core, *core.heap.find(object), *property, Value(StringRef::share(value)));
    return true;
}

bool getPropertyInteger(Core &core, ObjectHandle object, const char *name, std::int64_t *result) {
    const Property *property = propertyOf(core, object, name, TypeKind::integer);
    if (property == nullptr)
        return false;
    if (result == nullptr) {
        core.heap.violation("got no place for the result");
        return false;
    }
    *result = readProperty(core, *core.heap.find(object), *property).integer();
    return true;
}

void *loadObjectMethod(Core &core, ObjectHandle handle, const char *declaration) {
    const Object *object = core.heap.check(handle);
    if (object == nullptr)
        return nullptr;
    const auto signature = parseLookup(core, declaration);
    const Method *method = signature ? object->type->method(*signature) : nullptr;
    return method == nullptr ? nullptr : method->function;
}

void *loadGlobalMethod(Core &core, void *module, const char *declaration) {
    if (module != nullptr)
        core.heap.violation("got a module, though the host has global methods only");
    const auto signature = parseLookup(core, declaration);
    const Method *method = signature ? core.classes.global(*signature) : nullptr;
    return method == nullptr ? nullptr : method->function;
}

ObjectHandle stringToVariant(Core &core, StringHandle string) {
    if (string != nullptr && core.heap.check(string) == nullptr)
        return nullptr;
    return makeVariant(core, {VariantType::string, Value(StringRef::share(string))});
}

ObjectHandle integerToVariant(Core &core, std::int64_t number) {
    return makeVariant(core, {VariantType::integer, Value(number)});
}

ObjectHandle doubleToVariant(Core &core, double number) {
    return makeVariant(core, {VariantType::real, Value(number)});
}

ObjectHandle booleanToVariant(Core &core, BooleanByte truth) {
    return makeVariant(core, {VariantType::boolean, Value(truth != BooleanByte{})});
}

ObjectHandle uint32ToVariant(Core &core, std::uint32_t number) {
    return makeVariant(core, {VariantType::uint32, Value(std::uint64_t{number})});
}

ObjectHandle singleToVariant(Core &core, float number) {
    return makeVariant(core, {VariantType::single, Value(double{number})});
}

} // namespace host::services
