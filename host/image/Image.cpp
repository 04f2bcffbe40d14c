#include "host/image/Image.h"

#include "host/core/Text.h"
#include "host/core/Trace.h"
#include "host/image/ImageFiles.h"

#include <cxxabi.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <sstream>

namespace host {

namespace {

namespace fs = std::filesystem;

/// The value of CFBundleExecutable in a property list in XML form; "" when there is none.
std::string executableName(const fs::path &propertyList) {
    std::ifstream stream(propertyList, std::ios::binary);
    std::ostringstream content;
    content << stream.rdbuf();
    const std::string text = content.str();
    constexpr std::string_view key = "<key>CFBundleExecutable</key>";
    constexpr std::string_view open = "<string>";
    const std::size_t start = text.find(open, std::min(text.find(key), text.size()));
    if (start == std::string::npos)
        return "";
    const std::size_t end = text.find("</string>", start);
    return end == std::string::npos ? ""
                                    : text.substr(start + open.size(), end - start - open.size());
}

/// The executable inside a bundle's folder.
fs::path executableOf(const fs::path &bundle) {
    const fs::path contents = bundle / "Contents";
    std::error_code ignored;
    if (!fs::is_directory(contents, ignored))
        throw ImageError(bundle, "a folder, but no bundle: it has no Contents");
    std::string name = executableName(contents / "Info.plist");
    if (name.empty())
        name =
            bundle.has_filename() ? bundle.stem().string() : bundle.parent_path().stem().string();
    const fs::path executable = contents / "MacOS" / name;
    if (!fs::is_regular_file(executable, ignored))
        throw ImageError(bundle, "a bundle without its executable " + executable.string());
    return executable;
}

std::string firstBytes(const fs::path &file) {
    std::ifstream stream(file, std::ios::binary);
    if (!stream)
        throw ImageError(file, std::string("cannot be read: ") + std::strerror(errno));
    std::array<char, 16> bytes{};
    stream.read(bytes.data(), bytes.size());
    return {bytes.data(), static_cast<std::size_t>(stream.gcount())};
}

/// As the compiler's names are written in sources; other names as they are.
std::string demangled(const std::string &name) {
    if (!name.starts_with("_Z"))
        return name;
    const std::unique_ptr<char, decltype(&std::free)> readable(
        abi::__cxa_demangle(name.c_str(), nullptr, nullptr, nullptr), &std::free);
    return readable ? readable.get() : name;
}

bool startsLikeMachO(std::string_view bytes) {
    // Thin files of both widths and byte orders, and files for several processors.
    constexpr std::array<std::string_view, 6> magics{"\xCF\xFA\xED\xFE", "\xCE\xFA\xED\xFE",
                                                     "\xFE\xED\xFA\xCF", "\xFE\xED\xFA\xCE",
                                                     "\xCA\xFE\xBA\xBE", "\xCA\xFE\xBA\xBF"};
    return std::ranges::any_of(magics,
                               [&](std::string_view magic) { return bytes.starts_with(magic); });
}

} // namespace

void *Image::symbol(std::string_view name) const {
    for (const ImageSymbol &candidate : symbols())
        if (candidate.name == name)
            return candidate.address;
    return nullptr;
}

void *Image::symbolDemangled(std::string_view name) const {
    const std::string withParameters = std::string(name) + '(';
    void *found = nullptr;
    bool several = false;
    for (const ImageSymbol &candidate : symbols()) {
        const std::string readable = demangled(candidate.name);
        if (readable == name)
            return candidate.address;
        if (readable.starts_with(withParameters)) {
            several |= found != nullptr && found != candidate.address;
            found = candidate.address;
        }
    }
    return several ? nullptr : found;
}

std::unique_ptr<Image> openImage(const fs::path &path, const ImageOptions &options) {
    std::error_code error;
    const fs::file_status status = fs::status(path, error);
    if (path.empty() || !fs::exists(status))
        throw ImageError(path.empty() ? fs::path("\"\"") : path, "no such file");
    const fs::path file = fs::is_directory(status) ? executableOf(path) : path;
    if (!fs::is_regular_file(file, error))
        throw ImageError(file, "not a regular file");
    const std::string start = firstBytes(file);
    if (start.empty())
        throw ImageError(file, "empty");
    if (startsLikeMachO(start))
        return openMachOImage(file, options);
    if (start.starts_with("\x7F"
                          "ELF"))
        return openElfImage(fs::absolute(file), options);
    throw ImageError(file, "neither a Mach-O bundle nor a shared object: it starts with " +
                               inQuotes(start));
}

} // namespace host
