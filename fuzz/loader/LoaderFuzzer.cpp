// Feeds the loader damaged files, up to the point where an image's code would run, as images for
// every processor that it knows.
//
//   fuzz_loader CORPUS                        CORPUS: a folder that begins with some real images
//
// Inputs that were found this way are kept in fuzz/corpus/loader and read by the loader's tests.

#include "macos/loader/LoadError.h"
#include "macos/loader/MachOFile.h"
#include "macos/loader/PreparedImage.h"

#include <cstddef>
#include <cstdint>
#include <cstring>

namespace {

/// Stands in for whatever an image imports; some names are missing.
void *findImport(const macho::Import &import) {
    static char symbol[64];
    return import.name.starts_with("absent") ? nullptr : symbol;
}

/// Reads the name to its end, as the runtime would.
void *selector(const char *name) {
    static std::size_t characters;
    characters += std::strlen(name);
    return &characters;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size) {
    for (const auto *processor : {&macho::Processor::x86_64, &macho::Processor::arm64})
        try {
            const auto file = macho::MachOFile::parse({data, size}, "input", *processor);
            const macho::PreparedImage image(file.plan(), {findImport, selector});
        } catch (const macho::LoadError &) {
            continue; // what a damaged file deserves
        }
    return 0;
}
