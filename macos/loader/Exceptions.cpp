#include "macos/loader/Exceptions.h"

#include "macos/loader/BridgeSymbols.h"

#include <algorithm>
#include <array>
#include <map>
#include <memory>
#include <mutex>
#include <string>
#include <typeinfo>
#include <utility>
#include <vector>

#include <cxxabi.h>
#include <unwind.h>

extern "C" {
// Of the C++ library and of libobjc, which declare them in no header that fits here.
_Unwind_Reason_Code cxxPersonality(int version, _Unwind_Action actions,
                                   _Unwind_Exception_Class exceptionClass,
                                   _Unwind_Exception *exception,
                                   _Unwind_Context *context) asm("__gxx_personality_v0");
void objc_exception_throw(void *object);
}

namespace macho {
namespace {

/// The first field of the C++ library's per-thread record: the exceptions that are being handled.
void *caughtNatively() {
    return *reinterpret_cast<void **>(abi::__cxa_get_globals());
}

constexpr _Unwind_Exception_Class objcExceptionClass = 0x474e55434f424a43; // "GNUCOBJC"

bool isObjc(const _Unwind_Exception *exception) {
    return exception->exception_class == objcExceptionClass;
}

/// libobjc puts the thrown object behind the unwinder's header, and does not retain it.
objc::Object thrownObject(const _Unwind_Exception *exception) {
    return *reinterpret_cast<const objc::Object *>(exception + 1);
}
static_assert(sizeof(_Unwind_Exception) == 0x20);

/// An Objective-C exception that a handler of an image is dealing with, and the native exception
/// that was being handled when that handler was entered.
struct Caught {
    _Unwind_Exception *exception;
    void *nativeBelow;
    bool rethrown;
};

thread_local _Unwind_Exception *current = nullptr; // what the personality is looking at
thread_local std::vector<Caught> caught;           // innermost last

/// True when the innermost exception that is being handled is an Objective-C one.
bool handlesObjc() {
    return !caught.empty() && caught.back().nativeBelow == caughtNatively();
}

/// The handler type of a class. Images hold such objects themselves, with this layout, and point to
/// this class's virtual functions; the C++ library's personality asks them like any type.
class HandlerType : public std::type_info {
public:
    HandlerType(const char *name, objc::Object cls) noexcept : std::type_info(name), class_(cls) {}

    // NOLINTNEXTLINE(bugprone-reserved-identifier): the C++ library's name for it.
    bool __do_catch(const std::type_info *, void **, unsigned) const override;

private:
    objc::Object class_; // null: no class, nothing matches
};
static_assert(sizeof(HandlerType) == sizeof(std::type_info) + sizeof(void *));

/// The handler type of any object.
const HandlerType anyObject("id", nullptr);
const HandlerType noObject("a class that is missing here", nullptr);

bool HandlerType::__do_catch(const std::type_info *, void **, unsigned) const {
    if (current == nullptr || !isObjc(current))
        return false;
    if (this == &anyObject)
        return true;
    const auto object = thrownObject(current);
    return object != nullptr && class_ != nullptr && objc::isInstance(object, class_);
}

_Unwind_Reason_Code personality(int version, _Unwind_Action actions,
                                _Unwind_Exception_Class exceptionClass,
                                _Unwind_Exception *exception, _Unwind_Context *context) {
    auto *const before = std::exchange(current, exception);
    const auto reason = cxxPersonality(version, actions, exceptionClass, exception, context);
    current = before;
    // Once found, the handler owns a reference. Later would be too late: clean-ups on the way to
    // it may drop the last one.
    if (reason == _URC_HANDLER_FOUND && isObjc(exception))
        objc::retain(thrownObject(exception));
    return reason;
}

void *beginCatch(_Unwind_Exception *exception) {
    if (!isObjc(exception))
        return abi::__cxa_begin_catch(exception);
    for (auto &each : caught)
        if (each.exception == exception)
            each.rethrown = false;
    caught.push_back({exception, caughtNatively(), false});
    return thrownObject(exception);
}

void endCatch() {
    if (!handlesObjc())
        return abi::__cxa_end_catch();
    const auto [exception, nativeBelow, rethrown] = caught.back();
    caught.pop_back();
    const auto object = thrownObject(exception);
    const bool isHeld = std::ranges::find(caught, exception, &Caught::exception) != caught.end();
    if (!rethrown && !isHeld)
        _Unwind_DeleteException(exception);
    objc::release(object);
}

[[noreturn]] void rethrow() {
    if (!handlesObjc())
        abi::__cxa_rethrow();
    auto *const exception = caught.back().exception;
    for (auto &each : caught)
        if (each.exception == exception)
            each.rethrown = true;
    _Unwind_Resume_or_Rethrow(exception);
    // There is no handler.
    beginCatch(exception);
    std::terminate();
}

template <class Function>
void *address(Function *function) {
    return reinterpret_cast<void *>(function);
}

void *address(const HandlerType &type) {
    return const_cast<HandlerType *>(&type);
}

/// Where the virtual table's symbol stands: two words before the first function.
void *handlerTypeTable() {
    return static_cast<void *>(*static_cast<void ***>(address(anyObject)) - 2);
}

} // namespace

void *handlerType(objc::Object cls, std::string_view name) {
    struct Named {
        std::string name;
        HandlerType type;
        Named(std::string_view text, objc::Object of) : name(text), type(name.c_str(), of) {}
    };
    static std::mutex lock;
    static std::map<objc::Object, std::unique_ptr<Named>> types;
    const std::scoped_lock guard(lock);
    auto &found = types[cls];
    if (!found)
        found = std::make_unique<Named>(name, cls);
    return address(found->type);
}

void *handlerTypeOfMissingClass() {
    return address(noObject);
}

std::span<const BridgeSymbol> exceptionSymbols() {
    static const auto symbols = std::to_array<BridgeSymbol>({
        {"__objc_personality_v0", address(personality)},
        {"__gxx_personality_v0", address(personality)},
        {"objc_ehtype_vtable", handlerTypeTable()},
        {"OBJC_EHTYPE_id", address(anyObject)},
        {"objc_exception_throw", address(objc_exception_throw)},
        {"objc_begin_catch", address(beginCatch)},
        {"objc_end_catch", address(endCatch)},
        {"objc_exception_rethrow", address(rethrow)},
        {"__cxa_begin_catch", address(beginCatch)},
        {"__cxa_end_catch", address(endCatch)},
        {"__cxa_rethrow", address(rethrow)},
    });
    return symbols;
}

} // namespace macho
