#pragma once

// The functions that programs have without any class.

#include "host/language/Declaration.h"
#include "host/language/Value.h"

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace host::program {

struct Function {
    /// An array of Variants stands for an array of anything.
    MethodDeclaration declaration;
    /// The arguments have the declared types. Throws Raised.
    Value (*run)(const Values &arguments);
};

/// The function with this name that takes so many arguments; null when there is none.
const Function *findFunction(std::string_view name, std::size_t argumentCount);
/// One with this name, whatever it takes.
const Function *findFunction(std::string_view name);
std::vector<std::string> namesOfFunctions();

/// Array(...) has no declaration: its values make its type.
inline constexpr std::string_view arrayFunction = "Array";

} // namespace host::program
