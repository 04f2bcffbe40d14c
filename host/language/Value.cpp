#include "host/language/Value.h"

#include "host/Host.h"
#include "host/core/Trace.h"
#include "host/memory/Heap.h"

namespace host {

namespace {

Heap *heapIfAny() {
    return Host::exists() ? &Host::current().heap() : nullptr;
}

template <typename Wanted>
[[noreturn]] void failAs(const Value &value, const Wanted &wanted) {
    throw UsageError(std::string(wanted) + " wanted, but the value is " + describe(value));
}

} // namespace

StringRef::StringRef(const StringRef &other) : handle_(other.handle_) {
    if (Heap *heap = heapIfAny(); heap != nullptr && handle_ != nullptr)
        heap->hostLock(handle_);
}

StringRef::~StringRef() {
    if (Heap *heap = heapIfAny(); heap != nullptr && handle_ != nullptr)
        heap->hostUnlock(handle_);
}

StringRef StringRef::adopt(StringHandle handle) {
    StringRef result;
    if (handle != nullptr && Host::current().heap().adopt(handle))
        result.handle_ = handle;
    return result;
}

StringRef StringRef::share(StringHandle handle) {
    StringRef result;
    if (handle != nullptr && Host::current().heap().check(handle) != nullptr) {
        Host::current().heap().hostLock(handle);
        result.handle_ = handle;
    }
    return result;
}

StringHandle StringRef::release() {
    if (Heap *heap = heapIfAny(); heap != nullptr && handle_ != nullptr)
        heap->giveAway(handle_);
    return std::exchange(handle_, nullptr);
}

ObjectRef::ObjectRef(const ObjectRef &other) : handle_(other.handle_) {
    if (Heap *heap = heapIfAny(); heap != nullptr && handle_ != nullptr)
        heap->hostLock(handle_);
}

ObjectRef::~ObjectRef() {
    Heap *heap = heapIfAny();
    if (heap == nullptr || handle_ == nullptr)
        return;
    const ObjectHandle handle = handle_;
    try {
        drop();
    } catch (...) {
        heap->violation("a foreign exception left the destructor of " + heap->name(handle));
    }
}

void ObjectRef::drop() {
    const ObjectHandle handle = std::exchange(handle_, nullptr);
    if (Heap *heap = heapIfAny(); heap != nullptr && handle != nullptr)
        heap->hostUnlock(handle);
}

ObjectRef ObjectRef::adopt(ObjectHandle handle) {
    ObjectRef result;
    if (handle != nullptr && Host::current().heap().adopt(handle))
        result.handle_ = handle;
    return result;
}

ObjectRef ObjectRef::share(ObjectHandle handle) {
    ObjectRef result;
    if (handle != nullptr && Host::current().heap().check(handle) != nullptr) {
        Host::current().heap().hostLock(handle);
        result.handle_ = handle;
    }
    return result;
}

ObjectHandle ObjectRef::release() {
    if (Heap *heap = heapIfAny(); heap != nullptr && handle_ != nullptr)
        heap->giveAway(handle_);
    return std::exchange(handle_, nullptr);
}

Value::Value(const char *utf8Text) : Value(std::string_view(utf8Text)) {}

Value::Value(std::string_view utf8Text) {
    if (!utf8Text.empty())
        emplace<StringRef>(Host::current().makeString(utf8Text));
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
    const StringRef held = string();
    return held.handle() == nullptr ? std::string{} : Host::current().text(held.handle());
}

std::string describe(const Value &value) {
    struct Describe {
        std::string operator()(std::monostate) const { return "nil"; }
        std::string operator()(std::int64_t number) const { return std::to_string(number); }
        std::string operator()(std::uint64_t number) const { return std::to_string(number); }
        std::string operator()(double number) const { return shortest(number); }
        std::string operator()(bool truth) const { return truth ? "true" : "false"; }
        std::string operator()(const StringRef &string) const {
            return inQuotes(Host::current().text(string.handle()));
        }
        std::string operator()(const ObjectRef &object) const {
            return Host::current().name(object.handle());
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
