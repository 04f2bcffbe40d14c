#include "tests/loader/DamagedImages.h"

#include <gmock/gmock.h>

namespace {

using testing::AllOf;
using testing::EndsWith;
using testing::HasSubstr;
using testing::StartsWith;

/// A field of the header with a value that is wrong, and what is said about it.
struct WrongField {
    std::string name;
    std::size_t offset;
    std::uint32_t value;
    std::string message;
};

class WrongHeader
    : public testing::TestWithParam<std::tuple<const macho::Processor *, WrongField>> {};
INSTANTIATE_TEST_SUITE_P(
    , WrongHeader,
    testing::Combine(
        testing::ValuesIn(allProcessors),
        testing::Values(
            WrongField{"magic", 0, 0x12345678,
                       "not a Mach-O file: it starts with 0x78 0x56 0x34 0x12"},
            WrongField{"magicOf32Bits", 0, 0xfeedface, "header: a Mach-O file of 32 bits"},
            WrongField{"magicOfOtherOrder", 0, 0xcffaedfe,
                       "header: a Mach-O file of 32 bits or of"},
            WrongField{"processorOf32Bits", 4, 7, "header: the image is for i386"},
            WrongField{"unknownProcessor", 4, 77, "header: the image is for processor type 0x4d"},
            WrongField{"processorSubtype", 8, 99, " processors of the unknown subtype 99"},
            WrongField{"object", 12, 1, "header: file type 1 is neither a bundle nor a library"},
            WrongField{"core", 12, 4, "header: file type 4 is neither a bundle nor a library"},
            WrongField{"noCommands", 16, 0, "header: its 0 load commands end at 0x20, but it says"},
            WrongField{"tooFewCommands", 16, 3, "header: its 3 load commands end at "},
            WrongField{"tooManyCommands", 16, 1000, "the header announces 1000 load commands"},
            WrongField{"noCommandBytes", 20, 0, "load command 0 at 0x20: the header announces"},
            WrongField{"tooFewCommandBytes", 20, 80,
                       "load command 0 (LC_SEGMENT_64) at 0x20: it takes "
                       "bytes 0x20 to "},
            WrongField{"tooManyCommandBytes", 20, 0x7fffffff,
                       "header: the load commands take bytes 0x20 to 0x8000001f of the file, which "
                       "ends at "},
            WrongField{"threadLocalFlag", 24, 0x00800085,
                       "header: thread-local variables are not supported"})),
    [](const auto &info) {
        return std::string(std::get<0>(info.param)->name) + "_" + std::get<1>(info.param).name;
    });

TEST_P(WrongHeader, isReported) {
    const auto &[processor, field] = GetParam();
    auto image = goodImage(*processor);
    set<std::uint32_t>(image, field.offset, field.value);
    EXPECT_THAT(parseError(image, *processor),
                AllOf(StartsWith("the file: "), HasSubstr(field.message)));
}

TEST(WrongProcessor, isNamedBesideTheOneThatRunsHere) {
    const std::string here(macho::Processor::ofThisProgram().name), other(otherProcessor().name);
    EXPECT_EQ(parseError(goodImage(otherProcessor())), "the file: header: the image is for " +
                                                           other + "; only " + here +
                                                           " images run here");
    EXPECT_EQ(parseError(goodImage(), otherProcessor()), "the file: header: the image is for " +
                                                             here + "; one for " + other +
                                                             " was asked for");
}

TEST(WrongProcessor, ofX86MayBeHaswellsAndOfArm64MayNotSignPointers) {
    auto image = goodImage(macho::Processor::x86_64);
    set<std::uint32_t>(image, 8, 8);
    EXPECT_EQ(parseError(image, macho::Processor::x86_64), "parsed");
    image = goodImage(macho::Processor::arm64);
    for (const std::uint32_t subtype : {0x80000002U, 2U}) {
        set<std::uint32_t>(image, 8, subtype);
        EXPECT_THAT(parseError(image, macho::Processor::arm64),
                    StartsWith("the file: header: the image is for arm64e, whose pointers are "
                               "signed; "));
    }
}

class BadCommand : public OnEveryProcessor {
protected:
    /// A 64-bit field of the first segment's load command, which holds the header and the code.
    static std::string errorWithSegmentField(std::size_t field, std::uint64_t value) {
        auto image = goodImage();
        set<std::uint64_t>(image, 32 + field, value);
        return parseError(image);
    }

    /// An otherwise good image in which the first command that may be left out has become another.
    static std::string errorWithCommand(std::uint32_t type, std::uint32_t firstField = 0) {
        auto image = goodImage();
        const auto offset = findCommand(image, uuidCommand); // the identifier, 24 bytes long
        set<std::uint32_t>(image, offset, type);
        set<std::uint32_t>(image, offset + 8, firstField);
        set<std::uint64_t>(image, offset + 12, 0);
        set<std::uint32_t>(image, offset + 20, 0);
        return parseError(image);
    }
};
INSTANTIATE_TEST_SUITE_P(, BadCommand, testing::ValuesIn(allProcessors), processorName);

TEST_P(BadCommand, sizeThatIsNoSize) {
    for (const std::uint32_t size : {0U, 7U, 12U, 0xffffffffU}) {
        auto image = goodImage();
        set<std::uint32_t>(image, 32 + 4, size);
        EXPECT_THAT(parseError(image), StartsWith("the file: load command 0 (LC_SEGMENT_64) at "
                                                  "0x20: its size is " +
                                                  std::to_string(size)));
    }
}

TEST_P(BadCommand, segmentOutsideTheFileOrMemory) {
    const std::string where = "the file: load command 0 (LC_SEGMENT_64) at 0x20: segment __TEXT";
    const auto pageSize = GetParam()->pageSize;
    for (const auto address : {pageSize + 1, pageSize / 2})
        EXPECT_THAT(errorWithSegmentField(24, address),
                    StartsWith(where + ": its address " + hexOf(address)));
    EXPECT_THAT(errorWithSegmentField(24, -pageSize),
                StartsWith(where + " takes bytes " + hexOf(-pageSize)));
    EXPECT_THAT(errorWithSegmentField(32, 0x10), StartsWith(where + ": "));
    EXPECT_THAT(errorWithSegmentField(40, 0xffffffffffffffff), StartsWith(where + " takes bytes"));
    EXPECT_THAT(errorWithSegmentField(48, 0xffffffffffffffff), StartsWith(where + " takes bytes"));
    EXPECT_THAT(errorWithSegmentField(48, 0xffffffffffffff00), StartsWith(where + " takes bytes"));
}

TEST_P(BadCommand, segmentsThatOverlap) {
    auto image = goodImage();
    const auto second = loadCommands(image)[1];
    set<std::uint64_t>(image, second + 24, 0); // and its sections are elsewhere
    EXPECT_THAT(parseError(image), HasSubstr(GetParam() == &macho::Processor::x86_64
                                                 ? "which has 0x1000 bytes in the file"
                                                 : "of memory, outside its segment"));
    image = goodImage();
    set<std::uint64_t>(image, 32 + 32, 0x100000);
    EXPECT_THAT(parseError(image), HasSubstr("two segments share the page at "));
}

TEST_P(BadCommand, segmentThatIsWritableAndExecutable) {
    auto image = goodImage();
    set<std::uint32_t>(image, 32 + 60, 7);
    EXPECT_THAT(parseError(image), HasSubstr("would be writable and executable"));
}

TEST_P(BadCommand, imageThatIsTooLarge) {
    auto image = goodImage();
    std::size_t last = 0;
    for (const auto offset : loadCommands(image))
        if (get<std::uint32_t>(image, offset) == segmentCommand)
            last = offset;
    set<std::uint64_t>(image, last + 32, 1ULL << 40);
    EXPECT_THAT(parseError(image), HasSubstr("no image is larger than"));
}

TEST_P(BadCommand, unknown) {
    EXPECT_EQ(errorWithCommand(0x7f), "parsed");
    EXPECT_THAT(errorWithCommand(0x8000007f),
                AllOf(HasSubstr("(unknown type 0x8000007f)"), HasSubstr("needed to load")));
}

TEST_P(BadCommand, ofAnotherKindOfFile) {
    EXPECT_THAT(errorWithCommand(0x80000028), HasSubstr("(LC_MAIN)"));
    EXPECT_THAT(errorWithCommand(0x5), HasSubstr("(LC_UNIXTHREAD)"));
    EXPECT_THAT(errorWithCommand(0x1), HasSubstr("(LC_SEGMENT)"));
    EXPECT_THAT(errorWithCommand(0x1a), HasSubstr("(LC_ROUTINES_64)"));
    EXPECT_THAT(errorWithCommand(0x25), HasSubstr("for another system than macOS"));
    EXPECT_THAT(errorWithCommand(0x32, 2), HasSubstr("for another system than macOS"));
    EXPECT_EQ(errorWithCommand(0x32, 1), "parsed");
}

TEST_P(BadCommand, encrypted) {
    auto image = goodImage();
    const auto offset = findCommand(image, uuidCommand);
    set<std::uint32_t>(image, offset, 0x2c);
    set<std::uint32_t>(image, offset + 8, 0);
    set<std::uint32_t>(image, offset + 12, 0);
    set<std::uint32_t>(image, offset + 16, 1);
    EXPECT_THAT(parseError(image), HasSubstr("(LC_ENCRYPTION_INFO_64) at "));
    EXPECT_THAT(parseError(image), EndsWith(": the image is encrypted"));
    set<std::uint32_t>(image, offset + 16, 0);
    EXPECT_EQ(parseError(image), "parsed");
}

TEST_P(BadCommand, libraryWhoseNameIsNowhere) {
    auto image = goodImage();
    const auto offset = findCommand(image, libraryCommand);
    for (const std::uint32_t place : {0U, 8U, 1000U}) {
        set<std::uint32_t>(image, offset + 8, place);
        EXPECT_THAT(parseError(image),
                    HasSubstr("(LC_LOAD_DYLIB) at " + hexOf(offset) +
                              ": the library's name is at " + std::to_string(place)));
    }
}

TEST_P(BadCommand, tablesOutsideTheFile) {
    const auto offset = findCommand(goodImage(), dyldInfoCommand);
    const char *const tables[] = {"rebase", "bind", "weak bind", "lazy bind", "export"};
    for (std::size_t i = 0; i < 5; ++i) {
        auto image = goodImage();
        set<std::uint32_t>(image, offset + 8 + 8 * i, 0xfffffff0);
        set<std::uint32_t>(image, offset + 12 + 8 * i, 0x20);
        EXPECT_THAT(parseError(image),
                    AllOf(HasSubstr("(LC_DYLD_INFO_ONLY) at " + hexOf(offset)),
                          HasSubstr(std::string("the ") + tables[i] +
                                    " table takes bytes 0xfffffff0 to 0x100000010 of the file")));
    }
}

class BadTable : public OnEveryProcessor {
protected:
    /// The image with another rebase table, at its end.
    static std::string errorWithRebases(const ByteString &opcodes) {
        auto image = goodImage();
        const auto offset = findCommand(image, dyldInfoCommand);
        set(image, offset + 8, static_cast<std::uint32_t>(image.size()));
        set(image, offset + 12, static_cast<std::uint32_t>(opcodes.size()));
        image.insert(image.end(), opcodes.begin(), opcodes.end());
        return parseError(image);
    }
};
INSTANTIATE_TEST_SUITE_P(, BadTable, testing::ValuesIn(allProcessors), processorName);

TEST_P(BadTable, rebaseOfWhatIsNotWritable) {
    EXPECT_THAT(errorWithRebases({0x11, 0x20, 0x80, 0x20, 0x51, 0x00}),
                AllOf(StartsWith("the file: rebase table: "), HasSubstr("not writable")));
}

TEST_P(BadTable, rebaseWithoutASegment) {
    EXPECT_THAT(errorWithRebases({0x11, 0x2e, 0x00, 0x51, 0x00}),
                StartsWith("the file: rebase table: "));
}

TEST_P(BadTable, rebaseOfAnotherKind) {
    EXPECT_THAT(errorWithRebases({0x12, 0x21, 0x00, 0x51, 0x00}),
                AllOf(StartsWith("the file: rebase table: "), HasSubstr("not supported")));
}

TEST_P(BadTable, rebasesOfTheSamePlaceForEver) {
    // 2^62 times, each time going back to where it was.
    EXPECT_THAT(
        errorWithRebases({0x11, 0x21, 0x00, 0x80, 0x80, 0x80, 0x80, 0x80, 0x80, 0x80, 0x80, 0x80,
                          0x40, 0xf8, 0xff, 0xff, 0xff, 0xff, 0xff, 0xff, 0xff, 0xff, 0x01, 0x00}),
        StartsWith("the file: rebase table: "));
}

} // namespace
