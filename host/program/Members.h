#pragma once

// What programs find in the host's class tables.

#include "host/classes/ClassTable.h"

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace host::program {

/// Whether it is called by an assignment: object.method(arguments) = value.
bool assigns(const Method &method);
/// The method that a program calls with so many arguments; null when there is none.
const Method *calledMethod(const HostClass &type, std::string_view name, std::size_t count);
/// Some method of that name, whatever it takes; of a class, its superclasses' too.
const Method *anyMethod(const std::vector<Method> &methods, std::string_view name);
const Method *anyMethod(const HostClass &type, std::string_view name);

/// Of a class by itself, or of its instances too.
void addMemberNames(std::vector<std::string> &names, const HostClass &type, bool ofInstances);
bool hasMember(const HostClass &type, std::string_view name);

} // namespace host::program
