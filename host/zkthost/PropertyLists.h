#pragma once

#include <map>
#include <string>
#include <string_view>

namespace zkthost {

/// The texts of the dictionary that a property list is, by key; values of other kinds are left out.
/// Empty for bytes that are no such list.
std::map<std::string, std::string> textsOfPropertyList(std::string_view bytes);

} // namespace zkthost
