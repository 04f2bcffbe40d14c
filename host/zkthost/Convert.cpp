#include "host/zkthost/Convert.h"

#include "host/classes/Inspect.h"
#include "host/zkthost/Call.h"
#include "host/zkthost/Report.h"
#include "host/zkthost/ValueTree.h"

#include <cstdint>

namespace zkthost {

namespace {

using namespace host;

constexpr std::string_view className = "NSProcessInfoZKT";

/// The plug-in converts whatever its object's environment holds, and the object behind an instance
/// is a property that programs may set.
Outcome environmentOf(Host &host, const ObjectRef &instance, void *cocoaObject) {
    host.set(instance, "Handle", Value(reinterpret_cast<std::int64_t>(cocoaObject))).result();
    Outcome environment = host.get(instance, "environment");
    // The instance would release at its end what it never retained.
    host.set(instance, "Handle", Value(0)).result();
    return environment;
}

} // namespace

Conversion convert(Host &host, const Image &image, const CocoaSource &source) {
    const ObjectRef instance = host.newInstance(className);
    if (instance.handle() == nullptr)
        throw UsageError(image.file().string() + ": registered no class " + std::string(className));
    const Outcome environment = environmentOf(host, instance, source.asEnvironment());
    if (environment.exception)
        return {.text = inWords(*environment.exception), .raised = true};
    if (environment.isNil())
        return {.text = "nil (no Dictionary was made to hold the value)"};
    const auto entries = dictionaryObjects(environment.object());
    if (entries.size() != 1)
        return {.text = "nil (the Dictionary was left empty)"};
    const Value &value = entries.front().second;
    std::string text = treeAsText(value);
    if (value.isNil() && host.options().siblings != Siblings::wrappers)
        text += " (the host has no class for it; --sibling wrappers adds the family's)";
    return {.text = std::move(text), .json = treeAsJson(value)};
}

std::string conversionAsJson(const Conversion &conversion, const Account &account) {
    return jsonText({{"value", conversion.json}, {"account", accountAsJson(account)}});
}

} // namespace zkthost
