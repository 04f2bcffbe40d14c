// File names as HFS Plus stores them and the File Manager tells them.

#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace standin {

/// The name of a POSIX file in UTF-16, canonically decomposed but for the characters that HFS Plus
/// leaves composed. ':' is the separator here, so that "a:b" is called "a/b". Nothing when the
/// bytes are not UTF-8.
std::optional<std::u16string> hfsName(std::string_view utf8);

} // namespace standin
