#pragma once

// Text for terminals: what it may contain, how wide it is, how it is put into columns.

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace zkthost {

/// A blank in the place of each character that would leave the line or steer the terminal:
/// controls, DEL, line and paragraph separators.
std::string printable(std::string_view utf8);

/// Columns that a terminal takes for the text: two for the wide letters of East Asia and for most
/// pictures, none for marks above and below the letter before.
std::size_t displayWidth(std::string_view utf8);

/// The text with blanks behind it up to that width; a wider one as it is.
std::string padded(std::string text, std::size_t width);

/// The text in pieces that fit into that width, at least one; a piece ends where the width does, in
/// the middle of words too.
std::vector<std::string> folded(std::string_view utf8, std::size_t width);

} // namespace zkthost
