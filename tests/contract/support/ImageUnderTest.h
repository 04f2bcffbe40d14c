#pragma once

#include "host/GoogleTest.h"
#include "host/Host.h"

#include <filesystem>
#include <string_view>

/// The image that this run tests: the macOS bundle or the Linux object (--image=FILE).
const std::filesystem::path &imageUnderTest();

/// A function of the image that no host call reaches, by its demangled name as it stands before the
/// parameters, e.g. "REALBuildUnicodeString". Throws std::runtime_error when the image has none.
void *imageFunction(host::Image &image, std::string_view name);

template <class Signature>
Signature *imageFunction(host::Image &image, std::string_view name) {
    return reinterpret_cast<Signature *>(imageFunction(image, name));
}
