// File references: what an FSRef of this File Manager holds.

#pragma once

#include <CoreServices/CoreServices.h>

#include <sys/stat.h>

#include <optional>
#include <string>

namespace standin {

/// An existing item.
struct File {
    std::string path; // absolute, without symbolic links before the last component
    struct stat status;
};

/// Makes `ref` refer to the item at the absolute path. The last component is not followed when it
/// is a symbolic link. False when there is no such item.
bool makeReference(const std::string &path, FSRef &ref);

/// The item that the reference was made of. Nothing when the bytes are no reference, or when the
/// item has gone or made room for another since.
std::optional<File> resolveReference(const FSRef &ref);

/// The folder that holds the item; the path must be one of File's.
std::string parentPath(const std::string &path);

} // namespace standin
