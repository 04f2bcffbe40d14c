#pragma once

// A plug-in's image: a Mach-O bundle or an ELF shared object, told apart by the first bytes.

#include "host/core/PluginRecords.h"

#include <cstddef>
#include <filesystem>
#include <memory>
#include <set>
#include <span>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

namespace host {

/// A file that cannot be used as a plug-in: what and where, in one message.
class ImageError : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
    ImageError(const std::filesystem::path &file, const std::string &what)
        : std::runtime_error(file.string() + ": " + what) {}
};

enum class ImageFormat { machO, elf };

struct ImageOptions {
    /// Weak imports that this system shall lack, without a leading underscore.
    std::set<std::string, std::less<>> withheldImports = {};
};

struct ImageSymbol {
    std::string name; ///< as in the symbol table, without Mach-O's leading underscore
    void *address;
};

class Image {
public:
    virtual ~Image() = default;

    [[nodiscard]] virtual ImageFormat format() const = 0;
    /// The file that holds the code (inside a bundle: its executable).
    [[nodiscard]] virtual const std::filesystem::path &file() const = 0;
    /// Every defined symbol, local and hidden ones too.
    [[nodiscard]] virtual const std::vector<ImageSymbol> &symbols() const = 0;
    /// Never null.
    [[nodiscard]] virtual EntryPoint entryPoint() const = 0;
    /// From the first to the last byte that the image was loaded to; there may be gaps.
    [[nodiscard]] virtual std::span<const std::byte> memory() const = 0;
    /// Whether the address lies in the memory that the image was loaded to.
    virtual bool contains(const void *address) const = 0;

    /// By its name in the symbol table; null when absent. Several local symbols of one name: the
    /// first.
    [[nodiscard]] void *symbol(std::string_view name) const;
    /// By demangled name, e.g. "REALBuildUnicodeString(unsigned char const*, long, unsigned
    /// int)", or by what stands before the parameters when that is unique. Null when absent.
    [[nodiscard]] void *symbolDemangled(std::string_view name) const;
};

/// Opens a Mach-O bundle (the file, or the folder X.bundle around it) or a shared object, and
/// resolves its imports against this process. Throws ImageError. A shared object stays loaded
/// when the Image dies: Foundation keeps what it saw of it.
std::unique_ptr<Image> openImage(const std::filesystem::path &path,
                                 const ImageOptions &options = {});

} // namespace host
