#include "host/classes/Invoker.h"

#include "host/classes/Builtins.h"
#include "host/classes/NativeData.h"
#include "host/core/Core.h"
#include "host/core/PluginCall.h"
#include "host/core/UsageError.h"
#include "host/language/Names.h"
#include "host/processor/Processor.h"

#include <ffi.h>

#include <algorithm>
#include <array>
#include <cstring>
#include <deque>
#include <limits>

namespace host {

namespace {

/// Room for one value of any type, as libffi wants it.
union Slot {
    std::uint8_t byte;
    std::int32_t int32;
    std::uint32_t uint32;
    std::int64_t integer;
    std::uint64_t uint64;
    double real;
    float single;
    void *pointer;
};

ffi_type *ffiTypeOf(const Type &type) {
    if (type.isHandle())
        return &ffi_type_pointer;
    switch (type.kind) {
    case TypeKind::boolean:
        return &ffi_type_uint8;
    case TypeKind::int32:
        return &ffi_type_sint32;
    case TypeKind::uint32:
        return &ffi_type_uint32;
    case TypeKind::integer:
        return &ffi_type_sint64;
    case TypeKind::uint64:
        return &ffi_type_uint64;
    case TypeKind::real:
        return &ffi_type_double;
    case TypeKind::single:
        return &ffi_type_float;
    default:
        return &ffi_type_pointer;
    }
}

[[noreturn]] void misfit(const Value &value, const Type &type) {
    throw UsageError(describe(value) + " is no value for " + describe(type));
}

template <typename Integer>
Integer integerFor(const Value &value, const Type &type) {
    if (const auto *number = std::get_if<std::int64_t>(&value);
        number != nullptr && std::in_range<Integer>(*number))
        return static_cast<Integer>(*number);
    if (const auto *number = std::get_if<std::uint64_t>(&value);
        number != nullptr && std::in_range<Integer>(*number))
        return static_cast<Integer>(*number);
    misfit(value, type);
}

double realFor(const Value &value, const Type &type) {
    if (const auto *number = std::get_if<double>(&value))
        return *number;
    if (const auto *number = std::get_if<std::int64_t>(&value))
        return static_cast<double>(*number);
    misfit(value, type);
}

/// Whether a declaration of this type admits the object.
bool admits(const Core &core, const Type &type, const Object &object) {
    if (type.isArray || object.type->name == arrayClassName) {
        const auto *array = std::any_cast<ArrayData>(&object.payload);
        return type.isArray && array != nullptr &&
               (array->elementType == stringElements) == (type.kind == TypeKind::string);
    }
    if (type.kind == TypeKind::variant)
        return true;
    const HostClass *wanted = core.classes.findAny(type.className);
    return type.kind == TypeKind::object && wanted != nullptr && object.type->isKindOf(*wanted);
}

/// Puts a value where libffi or an instance field takes it from. Temporary Variants for plain
/// values stay in "held".
Slot toSlot(Core &core, const Value &value, const Type &type, std::deque<ObjectRef> &held) {
    Slot slot{};
    if (type.isHandle()) {
        if (value.isNil())
            return slot;
        if (type.kind == TypeKind::string && !type.isArray) {
            const auto *string = std::get_if<StringRef>(&value);
            if (string == nullptr)
                misfit(value, type);
            slot.pointer = string->handle();
            return slot;
        }
        if (type.kind == TypeKind::variant && !type.isArray)
            held.push_back(box(value));
        else if (const auto *given = std::get_if<ObjectRef>(&value))
            held.push_back(*given);
        else
            misfit(value, type);
        const Object *object = core.heap.find(held.back().handle());
        if (object == nullptr || !admits(core, type, *object))
            misfit(value, type);
        slot.pointer = held.back().handle();
        return slot;
    }
    switch (type.kind) {
    case TypeKind::boolean:
        // A number passes any byte, as code that writes the byte itself can.
        if (const auto *truth = std::get_if<bool>(&value))
            slot.byte = *truth ? 1 : 0;
        else
            slot.byte = integerFor<std::uint8_t>(value, type);
        break;
    case TypeKind::int32:
        slot.int32 = integerFor<std::int32_t>(value, type);
        break;
    case TypeKind::uint32:
        slot.uint32 = integerFor<std::uint32_t>(value, type);
        break;
    case TypeKind::integer:
        slot.integer = integerFor<std::int64_t>(value, type);
        break;
    case TypeKind::uint64:
    case TypeKind::pointer:
        slot.uint64 = integerFor<std::uint64_t>(value, type);
        break;
    case TypeKind::real:
        slot.real = realFor(value, type);
        break;
    case TypeKind::single:
        slot.single = static_cast<float>(realFor(value, type));
        break;
    default:
        misfit(value, type);
    }
    return slot;
}

/// An object or string that a plug-in's function returned: its reference becomes the host's.
Value adoptResult(Core &core, void *pointer, const Type &type) {
    if (pointer == nullptr)
        return {};
    if (type.kind == TypeKind::string && !type.isArray)
        return StringRef::adopt(static_cast<StringHandle>(pointer));
    ObjectRef object = ObjectRef::adopt(static_cast<ObjectHandle>(pointer));
    if (object.handle() != nullptr && !admits(core, type, *core.heap.find(object.handle()))) {
        core.heap.violation("returned " + core.heap.name(object.handle()) +
                            " where the declaration says " + describe(type));
        return {};
    }
    return object;
}

Value fromSlot(Core &core, const Slot &slot, const Type &type) {
    if (type.isHandle())
        return adoptResult(core, slot.pointer, type);
    switch (type.kind) {
    case TypeKind::boolean:
        return slot.byte != 0;
    case TypeKind::int32:
        return std::int64_t{slot.int32};
    case TypeKind::uint32:
        return std::uint64_t{slot.uint32};
    case TypeKind::integer:
        return slot.integer;
    case TypeKind::real:
        return slot.real;
    case TypeKind::single:
        return double{slot.single};
    default:
        return slot.uint64;
    }
}

/// Whether the callee answered with what the host had left in a register: it sets another one, or
/// gives back an argument that its declaration does not have. Booleans and 32-bit integers are not
/// asked: theirs may be so by chance. What a sanitizer adds to the callee may write any register
/// that is free: such a callee can go unnoticed, but none is accused wrongly.
bool isRegisterFiller(const Slot &answer, const Type &type) {
    switch (type.kind) {
    case TypeKind::integer:
    case TypeKind::uint64:
    case TypeKind::pointer:
    case TypeKind::real:
        return answer.uint64 == registerFiller;
    case TypeKind::single:
        return answer.uint32 == static_cast<std::uint32_t>(registerFiller);
    default:
        return false;
    }
}

/// A call being put together; at most this many arguments, the object included.
class Call {
public:
    using Kind = PluginCall::Kind;

    /// What the callee does is filed under the member's name. Both must live as long as the host.
    Call(Core &core, const HostClass &type, const std::string &member, Kind kind = Kind::member)
        : core_(core), acting_(core.heap, member.c_str()), type_(type), member_(member),
          kind_(kind) {}

    void addHandle(ObjectHandle handle) { next(&ffi_type_pointer).pointer = handle; }
    void addInteger(std::int64_t number) { next(&ffi_type_sint64).integer = number; }
    void add(const Value &value, const Type &type) {
        Slot slot = toSlot(core_, value, type, held_);
        next(ffiTypeOf(type)) = slot;
    }
    void addAll(const std::vector<Parameter> &parameters, const Values &values);
    Value run(void *function, const std::optional<Type> &result);

private:
    static constexpr std::size_t limit = 16;
    static constexpr std::size_t places =
        limit + processor::integerRegisters + processor::realRegisters;

    Slot &next(ffi_type *type) {
        if (count_ == limit)
            throw UsageError("more than " + std::to_string(limit) + " arguments");
        return append(type);
    }
    Slot &append(ffi_type *type) {
        types_[count_] = type;
        return slots_[count_++];
    }
    void fillRegisters();

    Core &core_;
    Heap::Acting acting_;
    const HostClass &type_;
    const std::string &member_;
    Kind kind_;
    std::size_t count_ = 0;
    std::array<Slot, places> slots_{};
    std::array<ffi_type *, places> types_{};
    std::deque<ObjectRef> held_;
};

/// The value of a default as the declaration writes it.
Value valueOf(const std::string &literal, const Type &type) {
    if (sameName(literal, "true") || sameName(literal, "false"))
        return sameName(literal, "true");
    if (sameName(literal, "nil"))
        return {};
    if (literal.starts_with('"'))
        return std::string_view(literal).substr(1, literal.size() - 2);
    if (type.kind == TypeKind::real || type.kind == TypeKind::single)
        return std::stod(literal);
    return parseInteger(literal);
}

void Call::addAll(const std::vector<Parameter> &parameters, const Values &values) {
    if (values.size() > parameters.size())
        throw UsageError(std::to_string(values.size()) + " arguments for " +
                         std::to_string(parameters.size()) + " parameters");
    for (std::size_t i = 0; i < parameters.size(); ++i) {
        const Parameter &parameter = parameters[i];
        if (i < values.size())
            add(values[i], parameter.type);
        else if (parameter.defaultValue)
            add(valueOf(*parameter.defaultValue, parameter.type), parameter.type);
        else
            throw UsageError("no argument for the parameter " + parameter.name);
    }
}

/// More arguments than the callee knows of: as long as they fit into registers, it cannot tell.
void Call::fillRegisters() {
    const auto reals = static_cast<std::size_t>(
        std::count_if(types_.begin(), types_.begin() + count_,
                      [](auto *t) { return t == &ffi_type_double || t == &ffi_type_float; }));
    const std::size_t integers = count_ - reals;
    for (std::size_t i = integers; i < processor::integerRegisters; ++i)
        append(&ffi_type_uint64).uint64 = registerFiller;
    for (std::size_t i = reals; i < processor::realRegisters; ++i)
        append(&ffi_type_double).uint64 = registerFiller;
}

Value Call::run(void *function, const std::optional<Type> &result) {
    fillRegisters();
    ffi_cif interface;
    ffi_type *const resultType = result ? ffiTypeOf(*result) : &ffi_type_void;
    if (ffi_prep_cif(&interface, FFI_DEFAULT_ABI, static_cast<unsigned>(count_), resultType,
                     types_.data()) != FFI_OK)
        throw UsageError("libffi refuses the call");
    std::array<void *, places> values;
    for (std::size_t i = 0; i < count_; ++i)
        values[i] = &slots_[i];
    // libffi widens small integers to a register; their low bytes come first.
    Slot answer{};
    PluginCall pluginCall(kind_, type_.name, member_);
    ffi_call(&interface, FFI_FN(function), &answer, values.data());
    pluginCall.done();
    if (result && !result->isArray && isRegisterFiller(answer, *result))
        core_.heap.violation("returned what the host had left in a register where the "
                             "declaration says " +
                             describe(*result));
    return result ? fromSlot(core_, answer, *result) : Value{};
}

std::byte *fieldOf(Object &object, const Property &property) {
    return object.data() + property.parameter;
}

Value readField(Core &core, Object &object, const Property &property) {
    Slot slot{};
    std::memcpy(&slot, fieldOf(object, property), widthOf(property.type));
    if (!property.type.isHandle())
        return fromSlot(core, slot, property.type);
    // The field keeps its reference; the program gets one of its own.
    if (property.type.kind == TypeKind::string)
        return StringRef::share(static_cast<StringHandle>(slot.pointer));
    return ObjectRef::share(static_cast<ObjectHandle>(slot.pointer));
}

void writeField(Core &core, Object &object, const Property &property, const Value &value) {
    std::deque<ObjectRef> held;
    Slot slot = toSlot(core, value, property.type, held);
    Slot old{};
    std::memcpy(&old, fieldOf(object, property), widthOf(property.type));
    // References in fields are the plug-in's: its destructor gives them back.
    if (property.type.isHandle()) {
        if (property.type.kind == TypeKind::string) {
            if (slot.pointer != nullptr)
                core.heap.lock(static_cast<StringHandle>(slot.pointer));
        } else if (slot.pointer != nullptr) {
            core.heap.lock(static_cast<ObjectHandle>(slot.pointer));
        }
    }
    std::memcpy(fieldOf(object, property), &slot, widthOf(property.type));
    if (!property.type.isHandle() || old.pointer == nullptr)
        return;
    if (property.type.kind == TypeKind::string)
        core.heap.unlock(static_cast<StringHandle>(old.pointer));
    else
        core.heap.unlock(static_cast<ObjectHandle>(old.pointer));
}

} // namespace

Value callMethod(Core &core, const Method &method, Object &object, const Values &arguments) {
    Call call(core, *object.type, method.parsed.name);
    call.addHandle(object.handle());
    call.addAll(method.parsed.parameters, arguments);
    return call.run(method.function, method.parsed.result);
}

Value callSharedMethod(Core &core, const HostClass &type, const Method &method,
                       const Values &arguments) {
    Call call(core, type, method.parsed.name);
    call.addAll(method.parsed.parameters, arguments);
    return call.run(method.function, method.parsed.result);
}

Value readProperty(Core &core, Object &object, const Property &property) {
    if (property.read != nullptr)
        return property.read(object);
    if (property.isField())
        return readField(core, object, property);
    Call call(core, *object.type, property.name);
    call.addHandle(object.handle());
    call.addInteger(property.parameter);
    return call.run(property.getter, property.type);
}

void writeProperty(Core &core, Object &object, const Property &property, const Value &value) {
    if (!property.isWritable())
        throw UsageError(object.type->name + '.' + property.name + " is read-only");
    if (property.write != nullptr) {
        property.write(object, value);
    } else if (property.isField()) {
        writeField(core, object, property, value);
    } else {
        Call call(core, *object.type, property.name, PluginCall::Kind::setter);
        call.addHandle(object.handle());
        call.addInteger(property.parameter);
        call.add(value, property.type);
        call.run(property.setter, std::nullopt);
    }
}

} // namespace host
