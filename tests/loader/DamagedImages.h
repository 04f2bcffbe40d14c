#pragma once

#include "tests/loader/ByteStrings.h"
#include "tests/loader/TestImages.h"

#include <cstdint>
#include <string>
#include <vector>

/// Images that are damaged on purpose, and what is said about them.

/// The message of the error that loading `file` ends with.
std::string loadError(const std::filesystem::path &file);

/// The same for a file with these contents, which is not run. Everything else is tried: mapping,
/// binding, the unwind records.
std::string parseError(const ByteString &contents);

/// An image with the classic tables of fixups, in which nothing is wrong yet.
ByteString goodImage();

/// Where the load commands of an image begin.
std::vector<std::size_t> loadCommands(const ByteString &image);

/// The place of the first load command of a type.
std::size_t findCommand(const ByteString &image, std::uint32_t type);

constexpr std::uint32_t segmentCommand = 0x19, uuidCommand = 0x1b, libraryCommand = 0xc,
                        dyldInfoCommand = 0x80000022, chainedFixupsCommand = 0x80000034;
