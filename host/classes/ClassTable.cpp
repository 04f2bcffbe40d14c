#include "host/classes/ClassTable.h"

#include "host/core/UsageError.h"
#include "host/language/Names.h"

#include <algorithm>
#include <utility>

namespace host {

namespace {

const Method *findMethod(const std::vector<Method> &methods, std::string_view name,
                         std::size_t argumentCount) {
    const auto found = std::ranges::find_if(methods, [&](const Method &method) {
        return sameName(method.parsed.name, name) && accepts(method.parsed, argumentCount);
    });
    return found == methods.end() ? nullptr : &*found;
}

} // namespace

bool accepts(const MethodDeclaration &method, std::size_t argumentCount) {
    const auto required = std::ranges::count_if(
        method.parameters, [](const Parameter &parameter) { return !parameter.defaultValue; });
    return std::cmp_less_equal(required, argumentCount) &&
           argumentCount <= method.parameters.size();
}

bool HostClass::isKindOf(const HostClass &other) const {
    return this == &other || (superclass != nullptr && superclass->isKindOf(other));
}

const Property *HostClass::property(std::string_view propertyName) const {
    const auto found = std::ranges::find_if(properties, [&](const Property &candidate) {
        return sameName(candidate.name, propertyName);
    });
    if (found != properties.end())
        return &*found;
    return superclass == nullptr ? nullptr : superclass->property(propertyName);
}

const Method *HostClass::method(std::string_view methodName, std::size_t argumentCount) const {
    if (const Method *own = findMethod(methods, methodName, argumentCount))
        return own;
    return superclass == nullptr ? nullptr : superclass->method(methodName, argumentCount);
}

const Method *HostClass::method(const MethodDeclaration &signature) const {
    const auto found = std::ranges::find_if(methods, [&](const Method &candidate) {
        return sameSignature(candidate.parsed, signature);
    });
    if (found != methods.end())
        return &*found;
    return superclass == nullptr ? nullptr : superclass->method(signature);
}

const Method *HostClass::sharedMethod(std::string_view methodName,
                                      std::size_t argumentCount) const {
    return findMethod(sharedMethods, methodName, argumentCount);
}

const Constant *HostClass::constant(std::string_view constantName) const {
    const auto found = std::ranges::find_if(constants, [&](const Constant &candidate) {
        return sameName(candidate.name, constantName);
    });
    return found == constants.end() ? nullptr : &*found;
}

const HostClass *ClassTable::findAny(std::string_view name) const {
    const auto found = byName_.find(foldedName(name));
    return found == byName_.end() ? nullptr : found->second;
}

const HostClass *ClassTable::find(std::string_view name) const {
    return std::ranges::find(hidden_, foldedName(name)) == hidden_.end() ? findAny(name) : nullptr;
}

HostClass &ClassTable::add(HostClass type) {
    auto [place, added] = byName_.try_emplace(foldedName(type.name), nullptr);
    if (!added)
        throw UsageError("the host already has a class " + place->second->name);
    classes_.push_back(std::make_unique<HostClass>(std::move(type)));
    place->second = classes_.back().get();
    return *place->second;
}

void ClassTable::add(const ClassSpec &spec) {
    if (spec.dataOffset < objectHeaderSize)
        throw UsageError("class " + spec.name + ": data cannot lie inside the object header");
    if (spec.initialData.size() > spec.dataSize)
        throw UsageError("class " + spec.name + ": more initial data than data");
    const HostClass *superclass = spec.superclass.empty() ? nullptr : findAny(spec.superclass);
    if (superclass == nullptr && !spec.superclass.empty())
        throw UsageError("class " + spec.name + ": no superclass " + spec.superclass);
    add(HostClass{.name = spec.name,
                  .superclass = superclass,
                  .dataSize = spec.dataSize,
                  .dataOffset = spec.dataOffset,
                  .initialData = spec.initialData});
}

void ClassTable::hide(std::string_view name) {
    hidden_.push_back(foldedName(name));
}

void ClassTable::show(std::string_view name) {
    std::erase(hidden_, foldedName(name));
}

const Method *ClassTable::global(const MethodDeclaration &signature) const {
    const auto found = std::ranges::find_if(
        globals_, [&](const Method &method) { return sameSignature(method.parsed, signature); });
    return found == globals_.end() ? nullptr : &*found;
}

void ClassTable::showMethod(const MethodDeclaration &method) {
    std::erase_if(hiddenMethods_,
                  [&](const auto &hidden) { return sameSignature(hidden, method); });
}

bool ClassTable::isHidden(const MethodDeclaration &method) const {
    return std::ranges::any_of(hiddenMethods_,
                               [&](const auto &hidden) { return sameSignature(hidden, method); });
}

void ClassTable::placeData(std::string_view className, std::size_t offset) {
    dataOffsets_[foldedName(className)] = offset;
}

std::size_t ClassTable::dataOffsetFor(std::string_view className) const {
    const auto found = dataOffsets_.find(foldedName(className));
    return found == dataOffsets_.end() ? objectHeaderSize : found->second;
}

std::vector<const HostClass *> ClassTable::registered() const {
    std::vector<const HostClass *> result;
    for (const auto &type : classes_)
        if (type->record != nullptr)
            result.push_back(type.get());
    return result;
}

std::vector<const HostClass *> ClassTable::all() const {
    std::vector<const HostClass *> result;
    result.reserve(classes_.size());
    for (const auto &type : classes_)
        result.push_back(type.get());
    return result;
}

} // namespace host
