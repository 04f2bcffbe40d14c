#pragma once

#include "macos/loader/LoadError.h"

#include <cstddef>
#include <filesystem>
#include <functional>
#include <memory>
#include <set>
#include <string>
#include <string_view>

namespace macho {

struct LoadOptions {
    /// Imports that are to be missing, as on a system that lacks them: null where the image imports
    /// them weakly, else unresolved. Names without the leading underscore.
    std::set<std::string, std::less<>> withheldImports;
};

/// A Mach-O bundle or library for macOS on this program's kind of processor that has been brought
/// to life in this process. Its code, its data and its literals live as long as this object;
/// nothing of them may be in use when it ends, neither on a stack nor as an exception. Images may
/// be loaded and used from any thread.
class Image {
public:
    /// Reads, maps, binds and initialises an image. Throws LoadError, which says what and where.
    /// The image's terminators are not run at the end, as for images that are never unloaded; what
    /// its initialisers registered to be run at exit is run when this object ends.
    static Image load(const std::filesystem::path &file, const LoadOptions &options = {});

    Image(Image &&) noexcept;
    Image &operator=(Image &&) noexcept;
    ~Image();

    /// The address of an exported symbol, named without the leading underscore; null when there is
    /// none.
    [[nodiscard]] void *exportedSymbol(std::string_view name) const;
    /// The same for every symbol that the file names, local ones too; of several with that name the
    /// first in memory.
    [[nodiscard]] void *localSymbol(std::string_view name) const;

    void forEachExport(const std::function<void(std::string_view name, void *address)> &use) const;
    void forEachSymbol(const std::function<void(std::string_view name, void *address)> &use) const;

    [[nodiscard]] void *base() const;       // where the header is
    [[nodiscard]] std::size_t size() const; // in bytes, whole pages
    [[nodiscard]] const std::filesystem::path &source() const;

private:
    struct State;
    explicit Image(std::unique_ptr<State> state);
    std::unique_ptr<State> state_;
};

} // namespace macho
