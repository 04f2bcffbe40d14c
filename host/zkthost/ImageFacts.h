#pragma once

// What a plug-in's file says of itself, without being run.

#include "host/core/Json.h"

#include <filesystem>
#include <optional>
#include <string>
#include <vector>

namespace zkthost {

struct ImportFact {
    std::string name; ///< as sources write it, without Mach-O's leading underscore
    bool isWeak = false;
};

struct LibraryFact {
    std::string name; ///< install name or file name; "" for imports that name no library
    bool isWeak = false;
    std::vector<ImportFact> imports = {};
};

struct SignatureFact {
    bool isAdHoc = false; ///< else there is a certificate behind it, which is not checked
    std::string identifier;
};

/// The image for one processor. Optional facts are those that a file need not have.
struct ImagePart {
    std::string processor;                       ///< in the words of compilers: "x86_64"
    std::string kind;                            ///< "bundle", "shared object"
    std::optional<std::string> leastSystem = {}; ///< "10.9": of macOS
    std::optional<std::string> builtFor = {};    ///< "10.11": the version of the SDK
    std::optional<std::string> identity = {};    ///< UUID or build ID
    std::optional<SignatureFact> signature = {};
    std::vector<LibraryFact> libraries = {};
};

/// What the Info.plist of a bundle says, where it says it.
struct BundleFacts {
    std::optional<std::string> identifier = {};
    std::optional<std::string> version = {}; ///< for people: CFBundleShortVersionString
    std::optional<std::string> build = {};   ///< CFBundleVersion
};

struct ImageFacts {
    std::string file;                       ///< with the code
    std::string format;                     ///< "Mach-O", "ELF"
    std::string loaded;                     ///< the processor of the part that the host has loaded
    std::optional<BundleFacts> bundle = {}; ///< no property list: none
    std::vector<ImagePart> parts = {};
};

/// Of a file that the host has loaded. Throws InputError when its reader refuses it.
ImageFacts factsOf(const std::filesystem::path &file);

// Without the imports, which are long.
std::string factsAsText(const ImageFacts &facts);
std::string factsAsMarkdown(const ImageFacts &facts);
std::string importsAsText(const ImageFacts &facts);
std::string importsAsMarkdown(const ImageFacts &facts);
/// {"file": ..., "format": "Mach-O", "loaded": "x86_64", "identifier": ..., "version": ...,
/// "build": ..., "parts":
/// [...]}; what a file does not say is null.
host::Json factsAsJson(const ImageFacts &facts);

} // namespace zkthost
