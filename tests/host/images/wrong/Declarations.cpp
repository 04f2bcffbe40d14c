// Declarations that do not fit their functions.

#include "Plugin.h"

namespace {

void resultOfOtherClass(Plugin &plugin) {
    plugin.setMethod("act as Date", [](ObjectHandle) { return newInstance("MemoryBlock"); });
}

void numberForAString(Plugin &plugin) {
    plugin.setMethod("act as String", [](ObjectHandle) { return std::int64_t{42}; });
}

void numberForAnObject(Plugin &plugin) {
    plugin.setMethod("act as Date", [](ObjectHandle) { return std::int64_t{42}; });
}

void stringForAnObjectResult(Plugin &plugin) {
    plugin.setMethod("act as Date", [](ObjectHandle) { return buildString("no date"); });
}

void objectForAnArray(Plugin &plugin) {
    plugin.setMethod("act as String()", [](ObjectHandle) { return newInstance("Date"); });
}

void resultWithoutReference(Plugin &plugin) {
    plugin.setMethod("act as WrongZKT", [](ObjectHandle self) { return self; });
}

void resultReleased(Plugin &plugin) {
    plugin.setMethod("act as Date", [](ObjectHandle) {
        const ObjectHandle date = newInstance("Date");
        unlockObject(date);
        return date;
    });
}

void undeclaredResult(Plugin &plugin) {
    plugin.setMethod("act", [](ObjectHandle) { return newInstance("Date"); });
}

void undeclaredParameter(Plugin &plugin) {
    plugin.setMethod("act", [](ObjectHandle, ObjectHandle other) { lockObject(other); });
}

void undeclaredParameterReturned(Plugin &plugin) {
    plugin.setMethod("act as Integer",
                     [](ObjectHandle, std::int64_t, std::int64_t number) { return number; });
}

void integerForADouble(Plugin &plugin) {
    plugin.setMethod("act as Double", [](ObjectHandle) { return std::int64_t{42}; });
}

void integerForASingle(Plugin &plugin) {
    plugin.setMethod("act as Single", [](ObjectHandle) { return std::int64_t{42}; });
}

void doubleForAnIntegerParameter(Plugin &plugin) {
    plugin.setMethod("act(number as Integer = 1) as Double",
                     [](ObjectHandle, double number) { return number; });
}

void getterForADouble(Plugin &plugin) {
    plugin.properties[0].type = "Double";
}

constexpr Fault faults[] = {
    {"resultOfOtherClass", resultOfOtherClass},
    {"numberForAString", numberForAString},
    {"numberForAnObject", numberForAnObject},
    {"stringForAnObjectResult", stringForAnObjectResult},
    {"objectForAnArray", objectForAnArray},
    {"resultWithoutReference", resultWithoutReference},
    {"resultReleased", resultReleased},
    {"undeclaredResult", undeclaredResult},
    {"undeclaredParameter", undeclaredParameter},
    {"undeclaredParameterReturned", undeclaredParameterReturned},
    {"integerForADouble", integerForADouble},
    {"integerForASingle", integerForASingle},
    {"doubleForAnIntegerParameter", doubleForAnIntegerParameter},
    {"getterForADouble", getterForADouble},
};

} // namespace

std::span<const Fault> declarationFaults() {
    return faults;
}
