#pragma once

#include <nlohmann/json.hpp>

#include <cstdint>
#include <stdexcept>
#include <string>
#include <string_view>

using Json = nlohmann::json;

/// Throws nlohmann::json::parse_error when the text is no JSON.
inline Json parsedJson(std::string_view text) {
    return Json::parse(text);
}

/// A member that has to be there. Throws std::runtime_error.
inline const Json &member(const Json &object, std::string_view name) {
    const auto found = object.find(name);
    if (found == object.end())
        throw std::runtime_error("no member " + std::string(name));
    return *found;
}

inline const Json &arrayMember(const Json &object, std::string_view name) {
    const Json &array = member(object, name);
    if (!array.is_array())
        throw std::runtime_error("no array " + std::string(name));
    return array;
}

inline std::string stringMember(const Json &object, std::string_view name) {
    const Json &text = member(object, name);
    return text.is_string() ? text.get<std::string>() : "(no string)";
}

/// Of a number that must not be there as a fraction.
inline std::int64_t integerIn(const Json &number) {
    if (!number.is_number_integer())
        throw std::runtime_error("no integer: " + number.dump());
    return number.get<std::int64_t>();
}

inline std::int64_t integerMember(const Json &object, std::string_view name) {
    return integerIn(member(object, name));
}
