#include "host/services/Services.h"

#include "host/classes/Builtins.h"
#include "host/classes/CallLine.h"
#include "host/core/Core.h"
#include "host/core/UsageError.h"
#include "host/language/EditDistance.h"
#include "host/language/Names.h"
#include "host/memory/Heap.h"
#include "host/services/ServiceBodies.h"

#include <algorithm>
#include <array>
#include <utility>

namespace host {

namespace {

/// What a plug-in reaches through an entry point: trace, switches, body.
template <std::size_t Index, FixedName Name, auto Body>
struct Gate;

template <std::size_t Index, FixedName Name, typename Result, typename... Arguments,
          Result (*Body)(Core &, Arguments...)>
struct Gate<Index, Name, Body> {
    static auto enter(Arguments... arguments) {
        Core &core = Core::current();
        ServiceState &state = core.services.state(Index);
        ++state.calls;
        CallLine call(core, Name.text, state.mode != ServiceMode::replaced, arguments...);
        if constexpr (std::is_void_v<Result>) {
            run(core, state, arguments...);
            call.done();
        } else {
            return widened(call.result(run(core, state, arguments...)));
        }
    }

private:
    static Result run(Core &core, const ServiceState &state, Arguments... arguments) {
        switch (state.mode) {
        case ServiceMode::null:
            return Result();
        case ServiceMode::failing: {
            // The thrower may change this very state.
            const auto thrower = state.thrower;
            thrower();
            break;
        }
        case ServiceMode::replaced:
            return reinterpret_cast<Result (*)(Arguments...)>(state.replacement)(arguments...);
        case ServiceMode::present:
        case ServiceMode::missing:
            break;
        }
        return Body(core, arguments...);
    }
};

template <FixedName Name, auto Body>
struct Service {
    static constexpr std::string_view name = Name.text;
    template <std::size_t Index>
    static void *function() {
        return reinterpret_cast<void *>(&Gate<Index, Name, Body>::enter);
    }
};

struct Entry {
    std::string_view name;
    void *(*function)();
};

template <typename... Rows>
struct Table {
    static constexpr auto entries = []<std::size_t... Index>(std::index_sequence<Index...>) {
        return std::array{Entry{Rows::name, &Rows::template function<Index>}...};
    }(std::index_sequence_for<Rows...>{});
};

using namespace services;

// clang-format off
using AllServices = Table<
    Service<"REALGetRBVersion", hostVersion>,
    Service<"RegisterPluginVersion", registerPluginVersion>,
    Service<"PluginRegisterClass", registerClass>,
    Service<"PluginNewInstance", newInstance>,
    Service<"REALLockObject", lockObject>,
    Service<"REALUnlockObject", unlockObject>,
    Service<"REALLockString", lockString>,
    Service<"REALUnlockString", unlockString>,
    Service<"RuntimeRaiseException", raiseException>,
    Service<"StringToVariant", stringToVariant>,
    Service<"IntegerToVariant", integerToVariant>,
    Service<"DoubleToVariant", doubleToVariant>,
    Service<"BooleanToVariant", booleanToVariant>,
    Service<"UInt32ToVariant", uint32ToVariant>,
    Service<"SingleToVariant", singleToVariant>,
    Service<"REALSetPropValueInteger", setPropertyInteger>,
    Service<"REALSetPropValueString", setPropertyString>,
    Service<"REALGetPropValueInteger", getPropertyInteger>,
    Service<"RuntimeArrayCreateSingleDimBoundedArray", createArray>,
    Service<"PluginStringArrayInsertProc", stringArrayInsertProcedure>,
    Service<"PluginObjectArrayInsertProc", objectArrayInsertProcedure>,
    Service<"REALLoadObjectMethod", loadObjectMethod>,
    Service<"REALLoadGlobalMethod", loadGlobalMethod>,
    Service<"REALBuildString", buildString>,
    Service<"REALBuildStringWithEncoding", buildStringWithEncoding>,
    Service<"REALConvertString", convertString>,
    Service<"REALSetStringEncoding", setStringEncoding>,
    Service<"REALGetStringEncoding", stringEncoding>,
    Service<"StringGetCString", stringBytes>,
    Service<"PluginDisposeStringData", disposeStringData>,
    Service<"REALGetStringCFString", stringCFString>,
    Service<"REALFolderItemFromParentFSRef", folderItemFromParent>,
    Service<"newMemoryBlock", newMemoryBlock>,
    Service<"memoryBlockGetPtr", pointerOfMemoryBlock>,
    Service<"memoryBlockGetSize", sizeOfMemoryBlock>,
    Service<"PluginCallFunctionWithExceptionHandler", callWithExceptionHandler>>;
// clang-format on

constexpr std::size_t notFound = AllServices::entries.size();

std::size_t indexOf(std::string_view name) {
    return static_cast<std::size_t>(std::ranges::find(AllServices::entries, name, &Entry::name) -
                                    AllServices::entries.begin());
}

std::size_t existingIndex(std::string_view name) {
    const std::size_t index = indexOf(name);
    if (index == notFound)
        throw UsageError("there is no host service \"" + std::string(name) +
                         "\"; the nearest is \"" + Services::nearest(name) + '"');
    return index;
}

} // namespace

Services::Services() : states_(AllServices::entries.size()) {}

ServiceState &Services::stateOf(std::string_view name) {
    return states_[existingIndex(name)];
}

void Services::hide(std::string_view name) {
    stateOf(name).mode = ServiceMode::missing;
}

void Services::restore(std::string_view name) {
    stateOf(name).mode = ServiceMode::present;
}

void Services::answerNull(std::string_view name) {
    stateOf(name).mode = ServiceMode::null;
}

void Services::fail(std::string_view name, std::function<void()> thrower) {
    ServiceState &state = stateOf(name);
    state.mode = ServiceMode::failing;
    state.thrower = std::move(thrower);
}

void Services::replaceWith(std::string_view name, void *function) {
    ServiceState &state = stateOf(name);
    state.mode = ServiceMode::replaced;
    state.replacement = function;
}

std::size_t Services::lookups(std::string_view name) const {
    return states_[existingIndex(name)].lookups;
}

std::size_t Services::calls(std::string_view name) const {
    return states_[existingIndex(name)].calls;
}

void *Services::find(const char *name) {
    Core &core = Core::current();
    if (name == nullptr) {
        core.heap.violation("the resolver was asked for a service without a name");
        return nullptr;
    }
    const std::size_t index = indexOf(name);
    const bool found = index != notFound && states_[index].mode != ServiceMode::missing;
    if (index != notFound)
        ++states_[index].lookups;
    core.trace.lookup(name, found);
    return found ? AllServices::entries[index].function() : nullptr;
}

void *Services::entry(std::string_view name) const {
    return AllServices::entries[existingIndex(name)].function();
}

const std::vector<std::string_view> &Services::names() {
    static const std::vector<std::string_view> names = [] {
        std::vector<std::string_view> result;
        result.reserve(std::size(AllServices::entries));
        for (const Entry &entry : AllServices::entries)
            result.push_back(entry.name);
        return result;
    }();
    return names;
}

bool Services::has(std::string_view name) {
    return indexOf(name) != notFound;
}

std::string Services::nearest(std::string_view name) {
    return std::string(std::ranges::min(names(), {}, [name](std::string_view candidate) {
        return editDistance(foldedName(name), foldedName(candidate));
    }));
}

} // namespace host
