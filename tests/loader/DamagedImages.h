#pragma once

#include "tests/loader/ByteStrings.h"
#include "tests/loader/TestImages.h"

#include <cstdint>
#include <string>
#include <vector>

/// Images that are damaged on purpose, and what is said about them.

/// The message of the error that loading `file` ends with.
std::string loadError(const std::filesystem::path &file);

/// The same for a file with these contents, which is read for a processor and not run. Everything
/// else is tried: mapping, binding, the unwind records.
std::string parseError(const ByteString &contents,
                       const macho::Processor &processor = macho::Processor::ofThisProgram());

/// An image with the classic tables of fixups, in which nothing is wrong yet.
ByteString goodImage(const macho::Processor &processor = macho::Processor::ofThisProgram());

inline const macho::Processor *const allProcessors[] = {&macho::Processor::x86_64,
                                                        &macho::Processor::arm64};

inline std::string processorName(const testing::TestParamInfo<const macho::Processor *> &info) {
    return std::string(info.param->name);
}

/// The other kind than this program's.
const macho::Processor &otherProcessor();

/// A test that reads the images for each processor, also those that this one does not run.
class OnEveryProcessor : public testing::TestWithParam<const macho::Processor *> {
protected:
    [[nodiscard]] static ByteString goodImage() { return ::goodImage(*GetParam()); }
    [[nodiscard]] static std::string parseError(const ByteString &contents) {
        return ::parseError(contents, *GetParam());
    }
    [[nodiscard]] static ByteString read(const std::string &image) {
        return readFile(imageFile(image, *GetParam()));
    }
};

/// Where the load commands of an image begin.
std::vector<std::size_t> loadCommands(const ByteString &image);

/// The place of the first load command of a type.
std::size_t findCommand(const ByteString &image, std::uint32_t type);

constexpr std::uint32_t segmentCommand = 0x19, uuidCommand = 0x1b, libraryCommand = 0xc,
                        dyldInfoCommand = 0x80000022, chainedFixupsCommand = 0x80000034;
