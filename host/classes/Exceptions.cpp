#include "host/classes/Exceptions.h"

#include "host/classes/Builtins.h"
#include "host/classes/CallLine.h"
#include "host/classes/ClassTable.h"
#include "host/classes/Instances.h"
#include "host/classes/NativeData.h"
#include "host/core/Core.h"
#include "host/memory/Heap.h"

#include <array>

namespace host {

namespace {

Value message(const Object &object) {
    return std::any_cast<const ExceptionData &>(object.payload).message;
}

void setMessage(Object &object, const Value &value) {
    std::any_cast<ExceptionData &>(object.payload).message = value.string();
}

Value errorNumber(const Object &object) {
    return std::any_cast<const ExceptionData &>(object.payload).errorNumber;
}

void setErrorNumber(Object &object, const Value &value) {
    std::any_cast<ExceptionData &>(object.payload).errorNumber = value.integer();
}

void construct(Core &core, ObjectHandle handle, StringHandle text, std::int64_t number) {
    if (auto *data = payloadOf<ExceptionData>(core.heap, handle, "RuntimeException"))
        *data = {.message = StringRef::share(text), .errorNumber = number};
}

constexpr std::array<const char *, 7> derivedExceptions{
    "OutOfMemoryException",   "OutOfBoundsException", "IllegalCastException",
    "NilObjectException",     "KeyNotFoundException", "UnsupportedOperationException",
    "StackOverflowException",
};

} // namespace

void addExceptions(ClassTable &classes) {
    HostClass base{.name = "RuntimeException",
                   .makePayload = [] { return std::any(ExceptionData{}); }};
    base.properties = {
        Property{
            .name = "Message", .type = parseType("String"), .read = message, .write = setMessage},
        Property{.name = "ErrorNumber",
                 .type = parseType("Integer"),
                 .read = errorNumber,
                 .write = setErrorNumber},
    };
    base.methods = {nativeMethod("Constructor(message As String, errorNumber As Integer = 0)",
                                 hostMethod<"RuntimeException.Constructor", construct>())};
    const HostClass &superclass = classes.add(std::move(base));
    for (const char *name : derivedExceptions)
        classes.add(HostClass{.name = name, .superclass = &superclass});
}

void raise(Core &core, ObjectHandle exception) {
    const Object *object = core.heap.check(exception);
    if (object == nullptr)
        return;
    if (!object->type->isKindOf(*core.classes.findAny("RuntimeException"))) {
        core.heap.violation("got " + Heap::name(*object) + ", which is no exception (" +
                            object->history.text() + ")");
        return;
    }
    core.pending.set(ObjectRef::share(exception));
}

void raiseNew(Core &core, std::string_view className, std::string_view text) {
    Object *exception = instantiate(core, *core.classes.findAny(className));
    const ObjectRef owner = ObjectRef::adopt(exception->handle());
    setMessage(*exception, Value(text));
    raise(core, owner.handle());
}

} // namespace host
