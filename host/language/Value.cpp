#include "host/language/Value.h"

#include "host/core/Core.h"
#include "host/core/Text.h"
#include "host/memory/Heap.h"

namespace host {

namespace {

template <typename Wanted>
[[noreturn]] void failAs(const Value &value, const Wanted &wanted) {
    throw UsageError(std::string(wanted) + " wanted, but the value is " + describe(value));
}

} // namespace

Value::Value(const char *utf8Text) : Value(std::string_view(utf8Text)) {}

Value::Value(std::string_view utf8Text) {
    if (!utf8Text.empty())
        emplace<StringRef>(makeString(utf8Text));
}

std::int64_t Value::integer() const {
    if (const auto *number = std::get_if<std::int64_t>(this))
        return *number;
    failAs(*this, "an integer");
}

std::uint64_t Value::unsignedInteger() const {
    if (const auto *number = std::get_if<std::uint64_t>(this))
        return *number;
    failAs(*this, "an unsigned integer");
}

double Value::number() const {
    if (const auto *number = std::get_if<double>(this))
        return *number;
    failAs(*this, "a double");
}

bool Value::boolean() const {
    if (const auto *truth = std::get_if<bool>(this))
        return *truth;
    failAs(*this, "a Boolean");
}

StringRef Value::string() const {
    if (isNil())
        return {};
    if (const auto *string = std::get_if<StringRef>(this))
        return *string;
    failAs(*this, "a string");
}

ObjectRef Value::object() const {
    if (isNil())
        return {};
    if (const auto *object = std::get_if<ObjectRef>(this))
        return *object;
    failAs(*this, "an object");
}

std::string Value::text() const {
    return textOf(string().handle());
}

StringRef makeString(std::string_view bytes, std::uint32_t encoding) {
    return StringRef::adopt(Core::current().heap.makeString(std::string(bytes), encoding).handle());
}

std::string textOf(StringHandle handle) {
    const String *string = Core::current().heap.findLive(handle);
    return string == nullptr ? "" : toUtf8(string->bytes, string->encoding);
}

std::string describe(const Value &value) {
    struct Describe {
        std::string operator()(std::monostate) const { return "nil"; }
        std::string operator()(std::int64_t number) const { return std::to_string(number); }
        std::string operator()(std::uint64_t number) const { return std::to_string(number); }
        std::string operator()(double number) const { return shortest(number); }
        std::string operator()(bool truth) const { return truth ? "true" : "false"; }
        std::string operator()(const StringRef &string) const {
            return inQuotes(textOf(string.handle()));
        }
        std::string operator()(const ObjectRef &object) const {
            return Core::current().heap.name(object.handle());
        }
    };
    return std::visit(Describe{}, static_cast<const ValueAlternatives &>(value));
}

ObjectRef Outcome::object() && {
    ObjectRef owner = result().object();
    value = {};
    return owner;
}

const Value &Outcome::result() const {
    if (!exception)
        return value;
    std::string text = "the call raised " + exception->className;
    if (exception->message)
        text += ": " + *exception->message;
    throw UsageError(text);
}

} // namespace host
