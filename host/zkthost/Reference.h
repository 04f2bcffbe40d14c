#pragma once

// The reference of the registered classes: their tables, and the words that stand beside them in
// files.

#include "host/Host.h"

#include <filesystem>
#include <string>
#include <vector>

namespace zkthost {

/// A member, a constant, or a section that describes neither.
struct ReferenceEntry {
    std::string name;
    std::string declaration; ///< "" for none
    std::string note;        ///< access or value, as Markdown; "" for none
    std::string words;       ///< Markdown
};

struct ReferenceGroup {
    std::string title;    ///< "" for none
    bool isTable = false; ///< constants: rows of declaration, note, words
    std::vector<ReferenceEntry> entries = {};
};

struct ReferenceChapter {
    std::string title;
    std::string introduction; ///< Markdown
    std::vector<ReferenceGroup> groups = {};
};

/// Classes and rows as they are registered, then the conversion. Throws InputError when something
/// registered has no words, or words describe nothing.
std::vector<ReferenceChapter> makeReference(const host::Host &host,
                                            const std::filesystem::path &words);

std::string referenceAsMarkdown(const std::vector<ReferenceChapter> &chapters);
/// One page that needs nothing else, with a search field.
std::string referenceAsHtml(const std::vector<ReferenceChapter> &chapters);

} // namespace zkthost
