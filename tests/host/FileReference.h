#pragma once

#include <filesystem>

/// Fills in the 80 bytes with which the File Manager refers to an existing item.
bool makeFileReference(const std::filesystem::path &path, void *reference);
