#include "host/Host.h"
#include "host/classes/Builtins.h"
#include "host/classes/CallLine.h"
#include "host/classes/Instances.h"

#include <array>

namespace host {

namespace {

Value message(const Object &object) {
    return std::get<ExceptionData>(object.payload).message;
}

void setMessage(Object &object, const Value &value) {
    std::get<ExceptionData>(object.payload).message = value.string();
}

Value errorNumber(const Object &object) {
    return std::get<ExceptionData>(object.payload).errorNumber;
}

void setErrorNumber(Object &object, const Value &value) {
    std::get<ExceptionData>(object.payload).errorNumber = value.integer();
}

void construct(Host &host, ObjectHandle handle, StringHandle text, std::int64_t number) {
    if (auto *data = payloadOf<ExceptionData>(host.heap(), handle, "RuntimeException"))
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
                   .makePayload = [] { return Payload(ExceptionData{}); }};
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

void raiseNew(Host &host, std::string_view className, std::string_view text) {
    Object *exception = instantiate(host, *host.classes().findAny(className));
    const ObjectRef owner = ObjectRef::adopt(exception->handle());
    setMessage(*exception, Value(text));
    host.raise(owner.handle());
}

} // namespace host
