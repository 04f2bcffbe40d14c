#pragma once

#include "Json.h"

#include <optional>
#include <stdexcept>
#include <string>
#include <string_view>

/// What a part of an image imports from the library whose name ends so.
inline const Json &libraryOf(const Json &part, std::string_view name) {
    for (const Json &library : arrayMember(part, "libraries"))
        if (stringMember(library, "name").ends_with(name))
            return library;
    throw std::runtime_error("no library " + std::string(name));
}

/// Whether it is imported weakly; nothing when it is not imported.
inline std::optional<bool> weakness(const Json &library, std::string_view import) {
    for (const Json &each : arrayMember(library, "imports"))
        if (stringMember(each, "name") == import)
            return member(each, "weak").get<bool>();
    return std::nullopt;
}
