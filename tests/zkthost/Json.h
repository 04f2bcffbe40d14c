#pragma once

#include <llvm/Support/JSON.h>
#include <stdexcept>
#include <string>
#include <string_view>

/// Throws std::runtime_error when the text is no JSON.
inline llvm::json::Value parsedJson(std::string_view text) {
    auto value = llvm::json::parse(text);
    if (!value)
        throw std::runtime_error("no JSON: " + llvm::toString(value.takeError()));
    return std::move(*value);
}

/// A member that has to be there. Throws std::runtime_error.
inline const llvm::json::Value &member(const llvm::json::Value &object, std::string_view name) {
    const auto *members = object.getAsObject();
    const auto *value = members == nullptr ? nullptr : members->get(name);
    if (value == nullptr)
        throw std::runtime_error("no member " + std::string(name));
    return *value;
}

inline const llvm::json::Array &arrayMember(const llvm::json::Value &object,
                                            std::string_view name) {
    const auto *array = member(object, name).getAsArray();
    if (array == nullptr)
        throw std::runtime_error("no array " + std::string(name));
    return *array;
}

inline std::string stringMember(const llvm::json::Value &object, std::string_view name) {
    return member(object, name).getAsString().value_or("(no string)").str();
}

/// Of a number that must not be there as a fraction.
inline std::int64_t integerMember(const llvm::json::Value &object, std::string_view name) {
    const auto number = member(object, name).getAsInteger();
    if (!number)
        throw std::runtime_error("no integer " + std::string(name));
    return *number;
}
