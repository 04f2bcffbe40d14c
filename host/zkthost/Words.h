#pragma once

// The words of the reference: a folder with a Markdown file for each class and one for the
// conversion. A file begins with what there is to say of the whole; "## name" begins the words of
// the member or constant of that name.

#include <filesystem>
#include <map>
#include <string>
#include <vector>

namespace zkthost {

struct NamedWords {
    std::string name;
    std::string text; ///< Markdown, without blank lines at its ends
};

struct Words {
    std::filesystem::path file;
    std::string introduction;
    std::vector<NamedWords> sections; ///< in the order of the file

    /// Null when there are none.
    [[nodiscard]] const NamedWords *find(const std::string &name) const;
};

/// The folder's Markdown files, by name without the extension. Throws InputError.
std::map<std::string, Words> readWords(const std::filesystem::path &folder);

} // namespace zkthost
