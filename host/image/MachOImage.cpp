#include "host/image/ImageFiles.h"

#include "macos/loader/Image.h"

namespace host {

namespace {

class MachOImage final : public Image {
public:
    MachOImage(macho::Image image, std::filesystem::path path)
        : image_(std::move(image)), path_(std::move(path)) {
        entry_ = reinterpret_cast<EntryPoint>(image_.exportedSymbol(entryPointName));
        if (entry_ == nullptr)
            throw ImageError(path_,
                             std::string("no plug-in: it does not export ") + entryPointName);
        image_.forEachSymbol([this](std::string_view name, void *address) {
            symbols_.push_back({std::string(name), address});
        });
    }

    [[nodiscard]] ImageFormat format() const override { return ImageFormat::machO; }
    [[nodiscard]] const std::filesystem::path &file() const override { return path_; }
    [[nodiscard]] const std::vector<ImageSymbol> &symbols() const override { return symbols_; }
    [[nodiscard]] EntryPoint entryPoint() const override { return entry_; }
    [[nodiscard]] std::span<const std::byte> memory() const override {
        return {static_cast<const std::byte *>(image_.base()), image_.size()};
    }
    bool contains(const void *address) const override {
        return address >= memory().data() && address < memory().data() + memory().size();
    }

private:
    macho::Image image_;
    std::filesystem::path path_;
    EntryPoint entry_ = nullptr;
    std::vector<ImageSymbol> symbols_;
};

} // namespace

std::unique_ptr<Image> openMachOImage(const std::filesystem::path &file,
                                      const ImageOptions &options) {
    try {
        return std::make_unique<MachOImage>(
            macho::Image::load(file, {.withheldImports = options.withheldImports}), file);
    } catch (const macho::LoadError &error) {
        throw ImageError(error.what());
    }
}

} // namespace host
