// What comes of a fault, by the place where it happens.

#include "FaultMatrix.h"

#include <algorithm>
#include <cctype>
#include <utility>

namespace matrix {

namespace {

constexpr Fault everyFault[] = {Fault::missing,    Fault::null,        Fault::badAlloc,
                                Fault::outOfRange, Fault::lengthError, Fault::number,
                                Fault::cocoa};
constexpr Fault fewFaults[] = {Fault::missing, Fault::badAlloc, Fault::cocoa};
bool few = false;

constexpr const char *unnamed = "Sorry, but there was an unnamed C++ Exception.";

std::string mappingOf(Fault fault) {
    switch (fault) {
    case Fault::badAlloc:
        return "OutOfMemoryException: Failed to allocate memory.";
    case Fault::outOfRange:
        return "OutOfBoundsException: out of range";
    case Fault::lengthError:
        return "RuntimeException: too long";
    default:
        return std::string("RuntimeException: ") + unnamed;
    }
}

void append(std::string &text, std::string_view what, const Lines &lines) {
    for (const std::string &line : lines)
        text.append("  ").append(what).append(" ").append(line).append("\n");
}

Aftermath passed(Aftermath after, Fault fault) {
    after.left = exceptionOf(fault);
    after.value.clear();
    return after;
}

Aftermath reported(const Aftermath &after) {
    return after.logging("Fault: raised").raising("NSExceptionZKT: Fault: raised");
}

} // namespace

std::span<const Fault> faults() {
    return few ? std::span<const Fault>(fewFaults) : everyFault;
}

void tryFewFaults() {
    few = true;
}

std::string_view nameOf(Fault fault) {
    constexpr std::string_view names[] = {"present",
                                          "missing",
                                          "answering null",
                                          "throwing std::bad_alloc",
                                          "throwing std::out_of_range",
                                          "throwing std::length_error",
                                          "throwing an int",
                                          "throwing an NSException"};
    return names[static_cast<std::size_t>(fault)];
}

std::string exceptionOf(Fault fault) {
    constexpr std::string_view names[] = {"",
                                          "",
                                          "",
                                          "std::bad_alloc",
                                          "std::out_of_range: out of range",
                                          "std::length_error: too long",
                                          "int 42",
                                          "NSException Fault: raised"};
    return std::string(names[static_cast<std::size_t>(fault)]);
}

std::vector<const Operation *> each(const Operations &operations) {
    std::vector<const Operation *> addresses;
    for (const Operation &operation : operations)
        addresses.push_back(&operation);
    return addresses;
}

std::string testNameOf(const testing::TestParamInfo<const Operation *> &tested) {
    std::string name;
    bool startsWord = true;
    for (const char character : tested.param->name) {
        const auto code = static_cast<unsigned char>(character);
        if (std::isalnum(code) != 0)
            name += startsWord ? static_cast<char>(std::toupper(code)) : character;
        startsWord = std::isalnum(code) == 0;
    }
    return name;
}

std::function<std::string(const Lines &)> always(std::string value) {
    return [value = std::move(value)](const Lines &) { return value; };
}

std::function<Lines(const Lines &, bool)> keeping(Lines references) {
    return [references = std::move(references)](const Lines &, bool) { return references; };
}

Handling trapping(std::string fallback) {
    return {.fallback = always(std::move(fallback))};
}

const Operations &everyOperation() {
    static const Operations all = [] {
        Operations operations;
        for (const Operations *some :
             {&propertyOperations(), &methodOperations(), &lifeOperations(), &valueOperations(),
              &memoryOperations(), &collectionOperations(), &wrapperOperations(),
              &textOperations()})
            operations.insert(operations.end(), some->begin(), some->end());
        return operations;
    }();
    return all;
}

Aftermath gives(std::string value) {
    return Aftermath{.value = std::move(value)};
}

Aftermath Aftermath::giving(std::string newValue) const {
    Aftermath result = *this;
    result.value = std::move(newValue);
    return result;
}

Aftermath Aftermath::raising(std::string exception) const {
    Aftermath result = *this;
    result.raised.push_back(std::move(exception));
    return result;
}

Aftermath Aftermath::logging(std::string line) const {
    Aftermath result = *this;
    result.logged.push_back(std::move(line));
    return result;
}

Aftermath Aftermath::holding(Lines references) const {
    Aftermath result = *this;
    result.held.insert(result.held.end(), references.begin(), references.end());
    return result;
}

Aftermath Aftermath::doing(Lines messages) const {
    Aftermath result = *this;
    result.effects = std::move(messages);
    return result;
}

Aftermath Aftermath::in(std::string newState) const {
    Aftermath result = *this;
    result.state = std::move(newState);
    return result;
}

Aftermath Aftermath::leftBy(std::string exception) const {
    Aftermath result = *this;
    result.left = std::move(exception);
    result.value.clear();
    return result;
}

Aftermath Aftermath::complaining(std::string complaint) const {
    Aftermath result = *this;
    result.hostComplaints.push_back(std::move(complaint));
    return result;
}

Aftermath Aftermath::ofOneRun() const {
    return {.value = value, .raised = raised, .state = state, .left = left};
}

std::string Aftermath::text() const {
    std::string result;
    if (!left.empty())
        result += "  left by " + left + '\n';
    else
        result += "  gives " + value + '\n';
    append(result, "raises", raised);
    append(result, "logs", logged);
    Lines sorted = held;
    std::ranges::sort(sorted);
    append(result, "holds", sorted);
    append(result, "sends", effects);
    if (!state.empty())
        result += "  state " + state + '\n';
    append(result, "host says", hostComplaints);
    return result;
}

Rule passing(Aftermath after) {
    return [after = std::move(after)](Fault fault) { return passed(after, fault); };
}

Rule trapped(Aftermath caught, Aftermath whenPassed) {
    return [caught = std::move(caught), whenPassed = std::move(whenPassed)](Fault fault) {
        return fault == Fault::cocoa ? reported(caught) : passed(whenPassed, fault);
    };
}

Rule trappedUnreleased(Aftermath caught, Aftermath whenPassed) {
    return [caught = std::move(caught), whenPassed = std::move(whenPassed)](Fault fault) {
        return passed(fault == Fault::cocoa ? reported(caught).holding({"NSExceptionZKT"})
                                            : whenPassed,
                      fault);
    };
}

Rule mapped(Aftermath caught) {
    return [caught = std::move(caught)](Fault fault) {
        Aftermath after = caught;
        after.raised.insert(after.raised.begin(), mappingOf(fault));
        return after;
    };
}

Rule outOfMemory(const std::string &message, Aftermath caught, Aftermath whenPassed) {
    return [message, caught = std::move(caught), whenPassed = std::move(whenPassed)](Fault fault) {
        return fault == Fault::badAlloc ? caught.raising("OutOfMemoryException: " + message)
                                        : passed(whenPassed, fault);
    };
}

Rows stringBuilding(const Aftermath &without, const Aftermath &undeclared) {
    return {
        {.service = "REALBuildString", .silent = without, .thrown = mapped(without), .once = true},
        {.service = "REALSetStringEncoding",
         .silent = undeclared,
         .thrown = mapped(without),
         .once = true}};
}

Rows raisingInHost(const std::string &className, const std::string &message,
                   const Aftermath &after) {
    const Aftermath told = after.raising(className + ": " + message);
    const Aftermath untitled = after.raising(className + ": nil");
    return {
        {"REALBuildString", untitled, mapped(untitled), true},
        {"REALSetStringEncoding", told, mapped(untitled), true},
        {"PluginNewInstance", after, passing(after)},
        {"REALSetPropValueString", untitled, passing(after)},
        {"REALSetPropValueInteger", told, passing(after)},
        {"RuntimeRaiseException", after, passing(after)},
        {"REALUnlockObject", told.holding({className}), passing(told.holding({className}))},
        {"REALUnlockString", told.holding({"String"}), passing(told.holding({"String"}))},
    };
}

Aftermath troubled(const Aftermath &after) {
    return after.logging("Trouble: on the way").raising("NSExceptionZKT: Trouble: on the way");
}

Rows trapReport(const Aftermath &after) {
    const Aftermath quiet = after.logging("Trouble: on the way");
    const Aftermath kept = troubled(after).holding({"NSExceptionZKT"});
    return {{"RuntimeRaiseException", quiet, passing(quiet)},
            {"REALUnlockObject", kept, passing(kept)}};
}

} // namespace matrix
