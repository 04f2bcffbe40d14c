#include "host/zkthost/ImageFacts.h"

#include "host/processor/Processor.h"
#include "host/zkthost/ImageParts.h"
#include "host/zkthost/Options.h"
#include "host/zkthost/PropertyLists.h"

#include <fstream>
#include <iterator>
#include <map>

namespace zkthost {

namespace {

std::string contentsOf(const std::filesystem::path &file) {
    std::ifstream stream(file, std::ios::binary);
    return {std::istreambuf_iterator<char>(stream), {}};
}

std::optional<std::string> valueOf(const std::map<std::string, std::string> &texts,
                                   const char *key) {
    const auto found = texts.find(key);
    return found == texts.end() ? std::nullopt : std::optional(found->second);
}

std::optional<BundleFacts> bundleFacts(const std::string &propertyList) {
    const auto texts = textsOfPropertyList(propertyList);
    if (texts.empty())
        return std::nullopt;
    return BundleFacts{.identifier = valueOf(texts, "CFBundleIdentifier"),
                       .version = valueOf(texts, "CFBundleShortVersionString"),
                       .build = valueOf(texts, "CFBundleVersion")};
}

ImageFacts factsOfMachO(const std::filesystem::path &file, std::string_view bytes) {
    // Of an executable in a bundle's Contents/MacOS.
    const auto propertyList = file.parent_path().parent_path() / "Info.plist";
    ImageFacts facts{.file = file.string(),
                     .format = "Mach-O",
                     .loaded = std::string(processor::name),
                     .bundle = bundleFacts(contentsOf(propertyList))};
    for (MachOPart &part : machOParts(bytes)) {
        facts.parts.push_back(std::move(part.facts));
        if (!facts.bundle)
            facts.bundle = bundleFacts(part.propertyList);
    }
    return facts;
}

} // namespace

ImageFacts factsOf(const std::filesystem::path &file) {
    const std::string bytes = contentsOf(file);
    try {
        if (bytes.starts_with("\x7F"
                              "ELF"))
            return {.file = file.string(),
                    .format = "ELF",
                    .loaded = std::string(processor::name),
                    .parts = {elfPart(file)}};
        return factsOfMachO(file, bytes);
    } catch (const InputError &error) {
        throw InputError(file.string() + ": " + error.what());
    }
}

} // namespace zkthost
