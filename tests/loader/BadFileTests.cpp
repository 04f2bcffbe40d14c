#include "tests/loader/DamagedImages.h"

#include "macos/loader/MachOFile.h"

#include <gmock/gmock.h>
#include <unistd.h>

namespace {

using testing::AllOf;
using testing::EndsWith;
using testing::HasSubstr;
using testing::StartsWith;

TEST(BadFile, missing) {
    EXPECT_EQ(loadError("/nowhere/at/all"), "/nowhere/at/all: there is no such file");
}

TEST(BadFile, folder) {
    EXPECT_THAT(loadError(TEST_IMAGES), AllOf(StartsWith(std::string(TEST_IMAGES) + ": a folder"),
                                              HasSubstr("Contents/MacOS")));
}

TEST(BadFile, device) {
    EXPECT_EQ(loadError("/dev/null"), "/dev/null: not a regular file");
}

TEST(BadFile, unreadable) {
    if (geteuid() == 0)
        GTEST_SKIP() << "root reads everything";
    const TemporaryFile file(goodImage());
    std::filesystem::permissions(file.path(), std::filesystem::perms::none);
    EXPECT_THAT(loadError(file.path()), HasSubstr("cannot be read: Permission denied"));
}

TEST(BadFile, empty) {
    const TemporaryFile file({});
    EXPECT_EQ(loadError(file.path()), file.path().string() + ": the file is empty");
}

TEST(BadFile, text) {
    EXPECT_EQ(parseError(bytes("#!/bin/sh\necho hello\n")),
              "the file: not a Mach-O file: it starts with 0x23 0x21 0x2f 0x62");
    EXPECT_EQ(parseError(bytes("x")), "the file: not a Mach-O file: it starts with 0x78");
}

TEST(BadFile, sharedObject) {
    EXPECT_THAT(loadError("/proc/self/exe"), HasSubstr("it starts with 0x7f 0x45 0x4c 0x46"));
}

TEST(BadFile, program) {
    EXPECT_EQ(loadError(imageFile("Program")),
              imageFile("Program").string() + ": header: a program, not a bundle or library");
}

TEST(BadFile, unresolvedSymbolsAreAllNamed) {
    EXPECT_EQ(loadError(imageFile("Unresolved")),
              imageFile("Unresolved").string() +
                  ": 3 symbols are exported by nobody here:\n"
                  "  absentData (from /usr/lib/libnowhere.dylib)\n"
                  "  absentFunction (from /usr/lib/libnowhere.dylib)\n"
                  "  anotherAbsentFunction (from /usr/lib/libnowhere.dylib)");
}

TEST(BadFile, withThreadLocalVariables) {
    EXPECT_THAT(loadError(imageFile("ThreadLocal")),
                HasSubstr("thread-local variables are not supported"));
}

TEST(BadFile, withClassesOfItsOwn) {
    EXPECT_THAT(loadError(imageFile("OwnClass")),
                HasSubstr("__objc_classlist: Objective-C classes in the image are not supported"));
    EXPECT_THAT(loadError(imageFile("OwnCategory")),
                HasSubstr("__objc_catlist: Objective-C categories in the image are not supported"));
}

TEST(BadFile, goodOneIsGood) {
    for (const auto *processor : allProcessors)
        EXPECT_EQ(parseError(goodImage(*processor), *processor), "parsed");
}

class CutFile : public testing::TestWithParam<std::tuple<const macho::Processor *, const char *>> {
protected:
    [[nodiscard]] static ByteString image() {
        return readFile(imageFile(std::string(std::get<1>(GetParam())) + "/Messages", processor()));
    }
    [[nodiscard]] static std::string parseError(const ByteString &contents) {
        return ::parseError(contents, processor());
    }

private:
    static const macho::Processor &processor() { return *std::get<0>(GetParam()); }
};
INSTANTIATE_TEST_SUITE_P(
    , CutFile, testing::Combine(testing::ValuesIn(allProcessors), testing::ValuesIn(allVariants)),
    [](const auto &info) {
        return std::string(std::get<0>(info.param)->name) + "_" + std::get<1>(info.param);
    });

TEST_P(CutFile, atEveryLoadCommand) {
    const auto whole = image();
    for (const auto offset : loadCommands(whole))
        for (const auto end : {offset, offset + 4, offset + 8, offset + 12}) {
            const auto message = parseError(cut(whole, end));
            EXPECT_THAT(message, AllOf(StartsWith("the file: header: the load commands take"),
                                       EndsWith("the file, which ends at " + hexOf(end))));
        }
}

TEST_P(CutFile, atEvery64thByte) {
    const auto whole = image();
    for (std::size_t end = 0; end < whole.size(); end += 64)
        EXPECT_THAT(parseError(cut(whole, end)), StartsWith("the file: ")) << end;
    EXPECT_THAT(parseError(ByteString(whole.begin(), whole.end() - 1)), StartsWith("the file: "));
    EXPECT_EQ(parseError(whole), "parsed");
}

TEST_P(CutFile, namesTheLoadCommandThatAsksForTooMuch) {
    auto whole = image();
    const auto end = get<std::uint64_t>(whole, loadCommands(whole)[0] + 48); // of the first segment
    whole.resize(end);
    EXPECT_THAT(parseError(whole), AllOf(StartsWith("the file: load command 1 (LC_SEGMENT_64) at "),
                                         HasSubstr(": segment __DATA"),
                                         EndsWith(" of the file, which ends at " + hexOf(end))));
}

TEST_P(CutFile, withEveryByteOfTheTablesWrongInTurn) {
    // Whatever such a file says, reading it ends with an answer.
    const auto whole = image();
    const auto commandsEnd = 32 + get<std::uint32_t>(whole, 20);
    for (std::size_t at = 0; at < commandsEnd; ++at)
        for (const int flip : {0x01, 0x80, 0xff}) {
            auto damaged = whole;
            damaged[at] ^= static_cast<std::uint8_t>(flip);
            EXPECT_NE(parseError(damaged), "");
        }
}

constexpr std::uint32_t x86 = 0x01000007, anyX86 = 3, arm = 0x0100000c, anyArm = 0, arm64e = 2;

UniversalPart goodPart(const macho::Processor &processor) {
    return {processor.cpuType, processor.cpuSubtypes[0], goodImage(processor)};
}

TEST(UniversalFile, givesItsPartForThisProcessor) {
    auto other = goodPart(otherProcessor());
    other.contents = bytes("not looked at");
    for (const auto &parts : {std::vector{other, goodPart(macho::Processor::ofThisProgram())},
                              std::vector{goodPart(macho::Processor::ofThisProgram()), other}}) {
        const TemporaryFile file(universal(parts));
        const auto image = macho::Image::load(file.path());
        EXPECT_EQ(*static_cast<int *>(image.exportedSymbol("exportedData")), 17);
    }
}

TEST(UniversalFile, givesItsPartForTheProcessorThatIsAskedFor) {
    const auto whole =
        universal({goodPart(macho::Processor::x86_64), goodPart(macho::Processor::arm64)});
    for (const auto *processor : allProcessors) {
        const auto file = macho::MachOFile::parse(whole, "the file", *processor);
        EXPECT_EQ(file.plan().pageSize, processor->pageSize);
    }
}

TEST(UniversalFile, givesItsPartWithoutSignedPointers) {
    const auto good = goodPart(macho::Processor::arm64);
    auto pointersSigned = good;
    pointersSigned.subtype = arm64e;
    pointersSigned.contents = bytes("not looked at");
    EXPECT_EQ(parseError(universal({pointersSigned, good}), macho::Processor::arm64), "parsed");
}

TEST(UniversalFile, withoutAPartForTheProcessorSaysWhatItHas) {
    const auto image = goodImage(macho::Processor::arm64);
    const auto armAndPowerPc = universal({{arm, anyArm, image}, {18, 0, image}});
    EXPECT_EQ(parseError(armAndPowerPc, macho::Processor::x86_64),
              "the file: universal header: the file is for arm64, ppc; " +
                  macho::Processor::x86_64.wanted());
    const auto x86AndSigned = universal({{x86, anyX86, image}, {arm, arm64e, image}});
    EXPECT_EQ(parseError(x86AndSigned, macho::Processor::arm64),
              "the file: universal header: the file is for x86_64, arm64e; " +
                  macho::Processor::arm64.wanted());
    EXPECT_EQ(parseError(universal({goodPart(otherProcessor())})),
              "the file: universal header: the file is for " + std::string(otherProcessor().name) +
                  "; only " + std::string(macho::Processor::ofThisProgram().name) +
                  " images run here");
}

TEST(UniversalFile, cutAnywhere) {
    auto other = goodPart(otherProcessor());
    other.contents = bytes("not looked at");
    const auto whole = universal({other, goodPart(macho::Processor::ofThisProgram())});
    for (std::size_t end = 0; end < whole.size(); end += 64)
        EXPECT_THAT(parseError(cut(whole, end)), StartsWith("the file: ")) << end;
}

TEST(UniversalFile, withWrongPlaces) {
    const auto whole = universal({goodPart(macho::Processor::ofThisProgram())});
    for (std::size_t at = 4; at < 28; ++at)
        for (const int flip : {0x01, 0x80, 0xff}) {
            auto damaged = whole;
            damaged[at] ^= static_cast<std::uint8_t>(flip);
            EXPECT_NE(parseError(damaged), "");
        }
}

TEST(BadFile, personalityBetweenSegments) {
    const auto file = readFile(TEST_CORPUS "/personality-between-segments");
    EXPECT_EQ(parseError(file, macho::Processor::x86_64),
              "the file: the unwind record of the function at 0x530: the pointer to its "
              "personality at 0x2008 lies in no readable segment");
}

/// Inputs that once did harm: found by the fuzzer, or made to try a way of doing harm.
TEST(Corpus, isReadWithoutHarm) {
    int files = 0;
    for (const auto &entry : std::filesystem::directory_iterator(TEST_CORPUS)) {
        SCOPED_TRACE(entry.path().filename());
        for (const auto *processor : allProcessors) {
            const auto message = parseError(readFile(entry.path()), *processor);
            EXPECT_TRUE(message == "parsed" || message.starts_with("the file: ")) << message;
        }
        ++files;
    }
    EXPECT_GT(files, 0);
}

/// What the fuzzer begins with. These have no gaps between segments, as linkers leave them.
TEST(Corpus, beginsWithSoundImagesForArm64) {
    for (const char *name : {"/arm64-classic", "/arm64-chained", "/arm64-and-x86_64"})
        EXPECT_EQ(parseError(readFile(TEST_CORPUS + std::string(name)), macho::Processor::arm64),
                  "parsed")
            << name;
    EXPECT_EQ(parseError(readFile(TEST_CORPUS "/arm64-and-x86_64"), macho::Processor::x86_64),
              "parsed");
}

} // namespace
