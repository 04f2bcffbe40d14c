#include "host/program/ValueText.h"

#include "host/Host.h"
#include "host/core/Text.h"

namespace host::program {

std::string textOf(const VariantContent &content) {
    if (content.type == VariantType::single)
        return shortestSingle(content.value.number());
    return content.value.isNil() ? "" : textOf(content.value); // the null string
}

std::string textOf(const Value &value) {
    if (value.isNil())
        return "Nil";
    if (const auto *truth = std::get_if<bool>(&value))
        return *truth ? "True" : "False";
    if (std::holds_alternative<StringRef>(value))
        return value.text();
    const auto *object = std::get_if<ObjectRef>(&value);
    if (object == nullptr)
        return describe(value);
    const std::string className = Host::current().className(*object);
    return className == "Variant" ? textOf(variant(*object)) : className;
}

} // namespace host::program
