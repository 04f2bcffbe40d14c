#include "host/zkthost/Words.h"

#include "host/zkthost/Options.h"

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <fstream>
#include <string_view>
#include <system_error>

namespace zkthost {

namespace {

constexpr std::string_view heading = "## ";

std::string withoutBlankEnds(const std::string &text) {
    const std::size_t first = text.find_first_not_of('\n');
    return first == std::string::npos ? ""
                                      : text.substr(first, text.find_last_not_of('\n') + 1 - first);
}

Words wordsIn(const std::filesystem::path &file) {
    std::ifstream stream(file, std::ios::binary);
    if (!stream)
        throw InputError(file.string() + ": " + std::strerror(errno));
    Words words{.file = file, .introduction = {}, .sections = {}};
    for (std::string line; std::getline(stream, line);) {
        if (line.starts_with(heading)) {
            const std::string name = line.substr(heading.size());
            if (words.find(name) != nullptr)
                throw InputError(file.string() + ": has words for " + name + " twice");
            words.sections.push_back({name, {}});
        } else {
            (words.sections.empty() ? words.introduction : words.sections.back().text) +=
                line + '\n';
        }
    }
    words.introduction = withoutBlankEnds(words.introduction);
    for (NamedWords &section : words.sections)
        section.text = withoutBlankEnds(section.text);
    return words;
}

} // namespace

const NamedWords *Words::find(const std::string &name) const {
    const auto found = std::ranges::find(sections, name, &NamedWords::name);
    return found == sections.end() ? nullptr : &*found;
}

std::map<std::string, Words> readWords(const std::filesystem::path &folder) {
    std::map<std::string, Words> all;
    std::error_code error;
    for (std::filesystem::directory_iterator file(folder, error), end; !error && file != end;
         file.increment(error))
        if (file->path().extension() == ".md")
            all.emplace(file->path().stem().string(), wordsIn(file->path()));
    if (error)
        throw InputError("--words " + folder.string() + ": " + error.message());
    return all;
}

} // namespace zkthost
