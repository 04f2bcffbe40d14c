#pragma once

// One call by a plug-in into the host: its line in the trace, its place in the account and its
// name in the histories of what it touches. Formats: host/core/Trace.h.

#include "host/core/Core.h"
#include "host/core/Text.h"
#include "host/core/Trace.h"
#include "host/memory/Heap.h"

#include <algorithm>
#include <cstdint>
#include <string>
#include <string_view>
#include <tuple>
#include <type_traits>
#include <utility>

namespace host {

/// Arguments of services that are shown in a way of their own.
enum class TextEncoding : std::uint32_t {};
enum class BooleanByte : std::uint8_t {};

namespace callText {

template <typename Argument>
std::string show(Core &core, Argument argument, bool readable) {
    if constexpr (std::is_same_v<Argument, ObjectHandle> || std::is_same_v<Argument, StringHandle>)
        return core.heap.name(argument);
    else if constexpr (std::is_same_v<Argument, const char *>)
        return argument == nullptr ? "nil" : readable ? inQuotes(argument) : "pointer";
    else if constexpr (std::is_same_v<Argument, PluginClassRecord *>)
        return argument == nullptr                      ? "nil"
               : !readable || argument->name == nullptr ? "pointer"
                                                        : inQuotes(argument->name);
    else if constexpr (std::is_same_v<Argument, TextEncoding>)
        return "0x" + hexadecimal(static_cast<std::uint32_t>(argument), 8);
    else if constexpr (std::is_same_v<Argument, bool>)
        return argument ? "true" : "false";
    else if constexpr (std::is_same_v<Argument, BooleanByte>)
        return argument != BooleanByte{} ? "true" : "false";
    else if constexpr (std::is_pointer_v<Argument>)
        return argument == nullptr ? "nil" : "pointer";
    else if constexpr (std::is_floating_point_v<Argument>)
        return shortest(argument);
    else
        return std::to_string(argument);
}

/// Bytes are shown with the length that follows them.
template <typename Tuple, std::size_t Place>
std::string showAt(Core &core, const Tuple &arguments, bool readable) {
    using Argument = std::tuple_element_t<Place, Tuple>;
    if constexpr (std::is_same_v<Argument, const unsigned char *>) {
        const auto *bytes = std::get<Place>(arguments);
        const std::int64_t length = std::get<Place + 1>(arguments);
        if (bytes == nullptr)
            return "nil";
        return readable && length >= 0 ? inQuotes({reinterpret_cast<const char *>(bytes),
                                                   static_cast<std::size_t>(length)})
                                       : "pointer";
    } else {
        return show(core, std::get<Place>(arguments), readable);
    }
}

template <typename... Arguments>
std::string line(Core &core, std::string_view name, bool readable, Arguments... arguments) {
    const std::tuple<Arguments...> all(arguments...);
    std::string text(name);
    text += '(';
    [&]<std::size_t... Place>(std::index_sequence<Place...>) {
        ((text +=
          (Place == 0 ? "" : ", ") + showAt<std::tuple<Arguments...>, Place>(core, all, readable)),
         ...);
    }(std::index_sequence_for<Arguments...>{});
    return text + ')';
}

} // namespace callText

/// Lives as long as the call. A call that ends without done() or result() was left by an
/// exception.
class CallLine {
public:
    /// The name must live as long as the process.
    template <typename... Arguments>
    CallLine(Core &core, const char *name, bool readable, Arguments... arguments)
        : core_(core), acting_(core.heap, name), traced_(core.trace.on()) {
        ++core.calls;
        if (traced_)
            place_ = core.trace.begin(callText::line(core, name, readable, arguments...));
    }
    CallLine(const CallLine &) = delete;
    CallLine &operator=(const CallLine &) = delete;
    ~CallLine() {
        if (traced_ && !done_)
            core_.trace.end(place_, " threw");
    }

    void done() {
        done_ = true;
        if (traced_)
            core_.trace.end(place_, "");
    }
    template <typename Result>
    Result result(Result value) {
        done_ = true;
        if (traced_)
            core_.trace.end(place_, " = " + callText::show(core_, value, true));
        return value;
    }

private:
    Core &core_;
    Heap::Acting acting_;
    bool traced_;
    bool done_ = false;
    std::size_t place_ = 0;
};

/// What plug-ins are given as a result: integers below 32 bits widened to that, with their sign, as
/// compilers for macOS expect it. Linux leaves the rest of their register undefined on arm64.
template <typename Result>
constexpr auto widened(Result result) {
    if constexpr (std::is_integral_v<Result> && sizeof(Result) < sizeof(std::int32_t))
        return std::conditional_t<std::is_signed_v<Result>, std::int32_t, std::uint32_t>{result};
    else
        return result;
}

/// A name as a template argument.
template <std::size_t Size>
struct FixedName {
    char text[Size];
    consteval FixedName(const char (&name)[Size]) { std::copy_n(name, Size, text); }
};

/// Wraps the body of a host method: the function that plug-ins get the address of.
template <FixedName Name, auto Body>
struct HostMethod;

template <FixedName Name, typename Result, typename... Arguments,
          Result (*Body)(Core &, Arguments...)>
struct HostMethod<Name, Body> {
    static auto enter(Arguments... arguments) {
        Core &core = Core::current();
        CallLine call(core, Name.text, true, arguments...);
        if constexpr (std::is_void_v<Result>) {
            Body(core, arguments...);
            call.done();
        } else {
            return widened(call.result(Body(core, arguments...)));
        }
    }
};

/// The same as a pointer to put into tables.
template <FixedName Name, auto Body>
void *hostMethod() {
    return reinterpret_cast<void *>(&HostMethod<Name, Body>::enter);
}

} // namespace host
