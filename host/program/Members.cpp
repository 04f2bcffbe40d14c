#include "host/program/Members.h"

#include "host/language/Names.h"

#include <algorithm>

namespace host::program {

bool assigns(const Method &method) {
    return !method.parsed.parameters.empty() && method.parsed.parameters.back().assigns;
}

const Method *calledMethod(const HostClass &type, std::string_view name, std::size_t count) {
    const Method *method = type.method(name, count);
    return method == nullptr || assigns(*method) ? nullptr : method;
}

const Method *anyMethod(const std::vector<Method> &methods, std::string_view name) {
    const auto found = std::ranges::find_if(methods, [&](const Method &method) {
        return sameName(method.parsed.name, name) && !assigns(method);
    });
    return found == methods.end() ? nullptr : &*found;
}

const Method *anyMethod(const HostClass &type, std::string_view name) {
    for (const HostClass *next = &type; next != nullptr; next = next->superclass)
        if (const Method *method = anyMethod(next->methods, name))
            return method;
    return nullptr;
}

void addMemberNames(std::vector<std::string> &names, const HostClass &type, bool ofInstances) {
    for (const HostClass *next = &type; ofInstances && next != nullptr; next = next->superclass) {
        for (const Property &property : next->properties)
            names.push_back(property.name);
        for (const Method &method : next->methods)
            names.push_back(method.parsed.name);
    }
    for (const Method &method : type.sharedMethods)
        names.push_back(method.parsed.name);
    for (const Constant &constant : type.constants)
        names.push_back(constant.name);
}

bool hasMember(const HostClass &type, std::string_view name) {
    std::vector<std::string> names;
    addMemberNames(names, type, true);
    return std::ranges::any_of(names, [&](const auto &known) { return sameName(known, name); });
}

} // namespace host::program
