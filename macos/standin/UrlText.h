// URLs as text: their path, its last component, and what a relative URL comes to.

#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace standin {

/// Where the parts of a URL that matter for files lie in its text. One that the URL lacks is empty;
/// a path may be there and be empty all the same ("http://host").
struct UrlParts {
    std::string_view scheme;
    std::string_view authority;
    std::optional<std::string_view> path; // a ';' belongs to it
};

/// The parts point into the text. Behind a scheme that no slash follows there is no path.
UrlParts partsOf(std::string_view url);

/// What a URL comes to against an absolute one. "." and ".." are folded where a path is joined with
/// the base's, and only there.
std::string resolved(std::string_view url, std::string_view base);

/// The path that an absolute file URL names, its escapes undone, without a slash at its end.
/// Nothing for another URL, without a path, and when the bytes are not UTF-8.
std::optional<std::string> fileSystemPath(std::string_view url);

/// The last component of the path with its escapes undone, "/" for the root, empty without a path.
/// Nothing when the escapes are not UTF-8.
std::optional<std::u16string> lastComponent(std::string_view url);

/// The text with the last component cut off, or with "../" behind it where that would not lead to
/// the folder above. Nothing without a path.
std::optional<std::string> withoutLastComponent(std::string_view url);

} // namespace standin
