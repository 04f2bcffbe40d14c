#pragma once

#include "macos/loader/ImagePlan.h"
#include "macos/loader/Imports.h"
#include "macos/loader/Mapping.h"

#include <cstdint>
#include <functional>
#include <vector>

namespace macho {

/// What an image is connected to.
struct Surroundings {
    ImportFinder findImport;
    /// The runtime's selector of a name that ends with a zero byte.
    std::function<void *(const char *name)> selector;
};

/// An image in memory that is ready to run; none of its code has run yet.
struct PreparedImage {
    Mapping mapping;
    std::vector<std::uintptr_t> initialisers; // functions, in the order in which they run
    std::vector<std::uint8_t> ehFrame;        // for the process's unwinder

    /// Maps and connects the image. Throws LoadError.
    PreparedImage(const ImagePlan &plan, const Surroundings &surroundings);
};

} // namespace macho
