#pragma once

#include "Json.h"

#include <algorithm>
#include <optional>
#include <stdexcept>
#include <string>
#include <string_view>

/// Text or Markdown without the facts before the classes and the imports behind them.
inline std::string classesOf(const std::string &text) {
    const std::size_t heading = text.find("\n\n# NSProcessInfoZKT\n");
    const std::size_t start =
        heading != std::string::npos ? heading : text.find("\n\nNSProcessInfoZKT\n");
    if (start == std::string::npos)
        throw std::runtime_error("no classes in: " + text);
    const std::size_t end =
        std::min(text.find("\nImports for ", start), text.find("\n# Imports for ", start));
    return text.substr(start + 2, end - start - 2);
}

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
