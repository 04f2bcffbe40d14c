#pragma once

#include "macos/loader/Image.h"
#include "macos/loader/Processor.h"

#include <filesystem>
#include <stdexcept>
#include <string>

#include <gtest/gtest.h>

/// The images of the folder images/, as the build left them; those for this program's processor,
/// which can be run, unless another is named.

inline std::filesystem::path
imageFile(const std::string &name,
          const macho::Processor &processor = macho::Processor::ofThisProgram()) {
    return std::filesystem::path(TEST_IMAGES) / processor.name / name;
}

/// The ways in which most images are compiled: with the classic tables of fixups or with chained
/// ones, with frame pointers or without.
inline const char *const allVariants[] = {"classicPlain", "classicOptimised", "classicFrameless",
                                          "chainedOptimised", "chainedFrameless"};

inline std::string variantName(const testing::TestParamInfo<const char *> &info) {
    return info.param;
}

/// An image in the variant that the test runs with.
class LoadedImage {
public:
    LoadedImage(const std::string &variant, const std::string &name,
                const macho::LoadOptions &options = {})
        : image(macho::Image::load(imageFile(variant + "/" + name), options)) {}

    /// An exported function of the image, to be called.
    template <class Function>
    Function *function(const char *name) const {
        void *address = image.exportedSymbol(name);
        if (address == nullptr)
            throw std::runtime_error(std::string("the test image does not export ") + name);
        return reinterpret_cast<Function *>(address);
    }

    macho::Image image;
};
