#pragma once

// The two kinds of image, behind openImage.

#include "host/image/Image.h"

#include <filesystem>
#include <memory>

namespace host {

inline constexpr const char *entryPointName = "REALPluginMain";

std::unique_ptr<Image> openElfImage(const std::filesystem::path &file, const ImageOptions &options);
std::unique_ptr<Image> openMachOImage(const std::filesystem::path &file,
                                      const ImageOptions &options);

} // namespace host
