#include "tests/loader/DamagedImages.h"

#include "macos/loader/LoadError.h"
#include "macos/loader/MachOFile.h"
#include "macos/loader/PreparedImage.h"

#include <cstring>
#include <stdexcept>

using macho::Image;
using macho::LoadError;
using macho::MachOFile;

std::string loadError(const std::filesystem::path &file) {
    try {
        Image::load(file);
        return "loaded";
    } catch (const LoadError &error) {
        return error.what();
    }
}

std::string parseError(const ByteString &contents, const macho::Processor &processor) {
    static char symbol[64];
    try {
        const auto file = MachOFile::parse(contents, "the file", processor);
        const macho::PreparedImage image(
            file.plan(),
            {[](const macho::Import &) -> void * { return symbol; },
             [](const char *name) -> void * { return symbol + (std::strlen(name) & 1); }});
        return "parsed";
    } catch (const LoadError &error) {
        return error.what();
    }
}

ByteString goodImage(const macho::Processor &processor) {
    return readFile(imageFile("classicOptimised/Plain", processor));
}

const macho::Processor &otherProcessor() {
    return &macho::Processor::ofThisProgram() == &macho::Processor::x86_64
               ? macho::Processor::arm64
               : macho::Processor::x86_64;
}

std::vector<std::size_t> loadCommands(const ByteString &image) {
    std::vector<std::size_t> offsets;
    std::size_t offset = 32;
    for (std::uint32_t i = 0; i < get<std::uint32_t>(image, 16); ++i) {
        offsets.push_back(offset);
        offset += get<std::uint32_t>(image, offset + 4);
    }
    return offsets;
}

std::size_t findCommand(const ByteString &image, std::uint32_t type) {
    for (const auto offset : loadCommands(image))
        if (get<std::uint32_t>(image, offset) == type)
            return offset;
    throw std::runtime_error("no such load command");
}
