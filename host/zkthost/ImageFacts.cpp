#include "host/zkthost/ImageFacts.h"

#include "host/zkthost/ImageParts.h"
#include "host/zkthost/Options.h"
#include "host/zkthost/PropertyLists.h"

#include <llvm/Object/MachOUniversal.h>

#include <fstream>
#include <iterator>
#include <map>

namespace zkthost {

namespace {

using llvm::object::ELF64LEObjectFile;
using llvm::object::MachOObjectFile;
using llvm::object::MachOUniversalBinary;

[[noreturn]] void refuse(const std::filesystem::path &file, llvm::Error error) {
    throw InputError(file.string() + ": " + llvm::toString(std::move(error)));
}

/// Of an executable in a bundle's Contents/MacOS.
std::string propertyListBeside(const std::filesystem::path &file) {
    std::ifstream stream(file.parent_path().parent_path() / "Info.plist", std::ios::binary);
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

void addMachO(const MachOObjectFile &file, ImageFacts &facts) {
    facts.parts.push_back(partOf(file));
    if (!facts.bundle)
        facts.bundle = bundleFacts(embeddedPropertyList(file));
}

} // namespace

ImageFacts factsOf(const std::filesystem::path &file) {
    auto opened = llvm::object::createBinary(file.string());
    if (!opened)
        refuse(file, opened.takeError());
    const llvm::object::Binary &binary = *opened->getBinary();
    ImageFacts facts{.file = file.string(), .format = "Mach-O"};
    if (const auto *elf = llvm::dyn_cast<ELF64LEObjectFile>(&binary)) {
        facts.format = "ELF";
        facts.parts.push_back(partOf(*elf));
        return facts;
    }
    facts.bundle = bundleFacts(propertyListBeside(file));
    if (const auto *single = llvm::dyn_cast<MachOObjectFile>(&binary))
        addMachO(*single, facts);
    if (const auto *several = llvm::dyn_cast<MachOUniversalBinary>(&binary))
        for (const auto &slice : several->objects()) {
            auto object = slice.getAsObjectFile();
            if (!object)
                refuse(file, object.takeError());
            addMachO(**object, facts);
        }
    return facts;
}

} // namespace zkthost
