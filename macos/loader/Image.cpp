#include "macos/loader/Image.h"

#include "macos/loader/EhFrame.h"
#include "macos/loader/MachOFile.h"
#include "macos/loader/Messages.h"
#include "macos/loader/ObjcRuntime.h"
#include "macos/loader/PreparedImage.h"
#include "macos/loader/ProcessSymbols.h"

#include <algorithm>
#include <exception>
#include <vector>

#include <unistd.h>

// Of the C library, which declares it in no header.
extern "C" void runExitFunctions(void *image) asm("__cxa_finalize");

namespace macho {

struct Image::State {
    std::filesystem::path source;
    std::vector<NamedOffset> exports; // by name
    std::vector<NamedOffset> symbols; // by name, then address
    PreparedImage memory;
    RegisteredFrames frames;

    State(std::filesystem::path file, const ImagePlan &plan, const Surroundings &surroundings)
        : source(std::move(file)), exports(plan.exports), symbols(plan.symbols),
          memory(plan, surroundings), frames(std::move(memory.ehFrame)) {
        std::ranges::sort(symbols);
    }
    ~State() { runExitFunctions(address(0)); }

    [[nodiscard]] void *address(std::uint64_t offset) const {
        return reinterpret_cast<void *>(memory.mapping.base() + offset);
    }

    [[nodiscard]] void *find(const std::vector<NamedOffset> &names, std::string_view name) const {
        const auto found = std::ranges::lower_bound(names, name, {}, &NamedOffset::name);
        return found != names.end() && found->name == name ? address(found->offset) : nullptr;
    }
};

namespace {

void runInitialisers(const ImagePlan &plan, const std::vector<std::uintptr_t> &functions) {
    using Initialiser = void (*)(int count, char **arguments, char **environment, char **extra);
    const Reporter reporter(plan.source);
    char *none[] = {nullptr};
    try {
        for (const auto function : functions)
            reinterpret_cast<Initialiser>(function)(0, none, environ, none);
    } catch (const std::exception &error) {
        reporter.fail("an initialiser failed", error.what());
    } catch (...) {
        reporter.fail("an initialiser failed with an exception");
    }
}

} // namespace

Image Image::load(const std::filesystem::path &file, const LoadOptions &options) {
    const auto contents = MachOFile::open(file);
    const auto &plan = contents.plan();
    auto state = std::make_unique<State>(
        file, plan, Surroundings{processSymbols(options.withheldImports), objc::selector});
    runInitialisers(plan, state->memory.initialisers);
    return Image(std::move(state));
}

Image::Image(std::unique_ptr<State> state) : state_(std::move(state)) {}
Image::Image(Image &&) noexcept = default;
Image &Image::operator=(Image &&) noexcept = default;
Image::~Image() = default;

void *Image::exportedSymbol(std::string_view name) const {
    return state_->find(state_->exports, name);
}

void *Image::localSymbol(std::string_view name) const {
    return state_->find(state_->symbols, name);
}

void Image::forEachExport(
    const std::function<void(std::string_view name, void *address)> &use) const {
    for (const auto &[name, offset] : state_->exports)
        use(name, state_->address(offset));
}

void Image::forEachSymbol(
    const std::function<void(std::string_view name, void *address)> &use) const {
    for (const auto &[name, offset] : state_->symbols)
        use(name, state_->address(offset));
}

void *Image::base() const {
    return state_->address(0);
}

std::size_t Image::size() const {
    return state_->memory.mapping.size();
}

const std::filesystem::path &Image::source() const {
    return state_->source;
}

} // namespace macho
