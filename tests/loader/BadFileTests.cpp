#include "tests/loader/DamagedImages.h"

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
    EXPECT_EQ(parseError(goodImage()), "parsed");
}

class CutFile : public testing::TestWithParam<const char *> {
protected:
    [[nodiscard]] ByteString image() const {
        return readFile(imageFile(std::string(GetParam()) + "/Messages"));
    }
};
INSTANTIATE_TEST_SUITE_P(, CutFile, testing::ValuesIn(allVariants), variantName);

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

TEST(UniversalFile, givesItsPartForThisProcessor) {
    const auto part = goodImage();
    const TemporaryFile file(universal({{0x0100000c, bytes("not looked at")}, {0x01000007, part}}));
    const auto image = macho::Image::load(file.path());
    EXPECT_EQ(*static_cast<int *>(image.exportedSymbol("exportedData")), 17);
}

TEST(UniversalFile, withoutThisProcessorSaysWhatItHas) {
    auto other = goodImage();
    set<std::uint32_t>(other, 4, 0x0100000c);
    EXPECT_EQ(parseError(universal({{0x0100000c, other}, {18, other}})),
              "the file: universal header: the file is for arm64, ppc; only x86_64 images run "
              "here");
}

TEST(UniversalFile, cutAnywhere) {
    const auto whole = universal({{0x0100000c, bytes("not looked at")}, {0x01000007, goodImage()}});
    for (std::size_t end = 0; end < whole.size(); end += 64)
        EXPECT_THAT(parseError(cut(whole, end)), StartsWith("the file: ")) << end;
}

TEST(UniversalFile, withWrongPlaces) {
    const auto whole = universal({{0x01000007, goodImage()}});
    for (std::size_t at = 4; at < 28; ++at)
        for (const int flip : {0x01, 0x80, 0xff}) {
            auto damaged = whole;
            damaged[at] ^= static_cast<std::uint8_t>(flip);
            EXPECT_NE(parseError(damaged), "");
        }
}

TEST(BadFile, personalityBetweenSegments) {
    const auto file = readFile(TEST_CORPUS "/personality-between-segments");
    EXPECT_EQ(parseError(file),
              "the file: the unwind record of the function at 0x530: the pointer to its "
              "personality at 0x2008 lies in no readable segment");
}

/// Inputs that once did harm: found by the fuzzer, or made to try a way of doing harm.
TEST(Corpus, isReadWithoutHarm) {
    int files = 0;
    for (const auto &entry : std::filesystem::directory_iterator(TEST_CORPUS)) {
        SCOPED_TRACE(entry.path().filename());
        const auto message = parseError(readFile(entry.path()));
        EXPECT_TRUE(message == "parsed" || message.starts_with("the file: ")) << message;
        ++files;
    }
    EXPECT_GT(files, 0);
}

} // namespace
