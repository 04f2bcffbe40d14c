#pragma once

#include "host/language/Declaration.h"
#include "host/language/Value.h"

#include <string>
#include <string_view>
#include <vector>

namespace host {
struct ArrayData;
}

namespace host::program {

/// A method of every array.
struct ArrayMember {
    /// "Variant" stands for the type of the elements.
    MethodDeclaration declaration;
    /// The arguments have the declared types. Throws Raised.
    Value (*run)(ArrayData &array, const Values &arguments);
};

/// Null when there is none.
const ArrayMember *findArrayMember(std::string_view name);
std::vector<std::string> namesOfArrayMembers();

} // namespace host::program
