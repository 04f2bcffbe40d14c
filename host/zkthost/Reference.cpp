#include "host/zkthost/Reference.h"

#include "host/classes/ClassTable.h"
#include "host/zkthost/Options.h"
#include "host/zkthost/Words.h"

#include <set>
#include <utility>

namespace zkthost {

namespace {

constexpr const char *conversion = "Conversion";

/// Takes words out by name and knows which were taken.
class WordsOfClass {
public:
    explicit WordsOfClass(const Words &words) : words_(words) {}

    std::string take(const std::string &name) {
        const NamedWords *found = words_.find(name);
        if (found == nullptr || found->text.empty())
            throw InputError(words_.file.string() + ": has no words for " + name +
                             " (below a line \"## " + name + "\")");
        taken_.insert(name);
        return found->text;
    }

    void expectAllTaken() const {
        for (const NamedWords &section : words_.sections)
            if (!taken_.contains(section.name))
                throw InputError(words_.file.string() + ": has words for " + section.name +
                                 ", which is not registered");
    }

private:
    const Words &words_;
    std::set<std::string> taken_;
};

ReferenceGroup propertiesOf(const host::HostClass &type, WordsOfClass &words) {
    ReferenceGroup group{.title = "Properties"};
    for (const host::Property &property : type.properties)
        group.entries.push_back({property.name, property.name + " As " + describe(property.type),
                                 property.isWritable() ? "Read and write." : "Read-only.",
                                 words.take(property.name)});
    return group;
}

ReferenceGroup methodsOf(const std::vector<host::Method> &methods, std::string title,
                         const std::string &note, WordsOfClass &words) {
    ReferenceGroup group{.title = std::move(title)};
    for (const host::Method &method : methods)
        group.entries.push_back(
            {method.parsed.name, method.declaration, note, words.take(method.parsed.name)});
    return group;
}

ReferenceGroup constantsOf(const host::HostClass &type, WordsOfClass &words) {
    ReferenceGroup group{.title = "Constants", .isTable = true};
    for (const host::Constant &constant : type.constants)
        group.entries.push_back({constant.name, constant.declaration,
                                 std::to_string(constant.value), words.take(constant.name)});
    return group;
}

ReferenceChapter chapterOf(const host::HostClass &type, const Words &file) {
    if (file.introduction.empty())
        throw InputError(file.file.string() + ": does not begin with what the class is for");
    WordsOfClass words(file);
    ReferenceChapter chapter{.title = type.name, .introduction = file.introduction};
    const auto add = [&](ReferenceGroup group) {
        if (!group.entries.empty())
            chapter.groups.push_back(std::move(group));
    };
    add(propertiesOf(type, words));
    add(methodsOf(type.methods, "Methods", "", words));
    add(methodsOf(type.sharedMethods, "Shared methods", "Called on the class.", words));
    add(constantsOf(type, words));
    words.expectAllTaken();
    return chapter;
}

ReferenceChapter chapterOf(const Words &file) {
    ReferenceGroup group;
    for (const NamedWords &section : file.sections)
        group.entries.push_back({section.name, "", "", section.text});
    return {.title = conversion, .introduction = file.introduction, .groups = {std::move(group)}};
}

/// A cell's text may have neither line ends nor bars.
std::string asCell(const std::string &text) {
    std::string cell;
    for (const char c : text)
        cell += c == '\n' ? " " : c == '|' ? "\\|" : std::string(1, c);
    return cell;
}

std::string tableAsMarkdown(const ReferenceGroup &group) {
    std::string text = "\n| Declaration | Value | Meaning |\n|---|---|---|\n";
    for (const ReferenceEntry &entry : group.entries)
        text += "| `" + asCell(entry.declaration) + "` | " + asCell(entry.note) + " | " +
                asCell(entry.words) + " |\n";
    return text;
}

std::string entryAsMarkdown(const ReferenceEntry &entry) {
    std::string text = "\n#### " + entry.name + '\n';
    if (!entry.declaration.empty())
        text += "\n```vb\n" + entry.declaration + "\n```\n";
    if (!entry.note.empty())
        text += '\n' + entry.note + '\n';
    return text + '\n' + entry.words + '\n';
}

} // namespace

std::vector<ReferenceChapter> makeReference(const host::Host &host,
                                            const std::filesystem::path &words) {
    auto files = readWords(words);
    std::vector<ReferenceChapter> chapters;
    for (const host::HostClass *type : host.classes().registered()) {
        const auto file = files.extract(type->name);
        if (file.empty())
            throw InputError("--words " + words.string() + ": has no file " + type->name + ".md");
        chapters.push_back(chapterOf(*type, file.mapped()));
    }
    if (const auto file = files.extract(conversion); !file.empty())
        chapters.push_back(chapterOf(file.mapped()));
    if (!files.empty())
        throw InputError(files.begin()->second.file.string() + ": describes no registered class");
    return chapters;
}

std::string referenceAsMarkdown(const std::vector<ReferenceChapter> &chapters) {
    std::string text =
        "<!-- Made by zkthost describe --words: change the words, not this file. -->\n"
        "# Reference\n";
    for (const ReferenceChapter &chapter : chapters) {
        text += "\n## " + chapter.title + '\n';
        if (!chapter.introduction.empty())
            text += '\n' + chapter.introduction + '\n';
        for (const ReferenceGroup &group : chapter.groups) {
            if (!group.title.empty())
                text += "\n### " + group.title + '\n';
            if (group.isTable)
                text += tableAsMarkdown(group);
            else
                for (const ReferenceEntry &entry : group.entries)
                    text += entryAsMarkdown(entry);
        }
    }
    return text;
}

} // namespace zkthost
