// Host strings from UTF-16 text: built by the host and always converted to UTF-8 by it.

#include "TextScene.h"

#include <gmock/gmock.h>

#include <cmath>
#include <cstdint>
#include <limits>
#include <optional>
#include <string>
#include <string_view>

using testing::ElementsAre;

namespace {

using namespace std::string_view_literals;
namespace encoding = host::encoding;

constexpr auto text = u"A\u00E9\U0001F600"sv;
constexpr double oldVersion = 2011.9;
constexpr double newVersion = 2012.0;

const HostOfVersion oldHosts[] = {{"Untold", std::nullopt},
                                  {"Zero", 0.0},
                                  {"NotANumber", std::nan("")},
                                  {"Negative", -2013.0},
                                  {"JustBelow", std::nextafter(2012.0, 0.0)}};
const HostOfVersion newHosts[] = {{"AtTheThreshold", 2012.0},
                                  {"BetweenTheThresholds", 2012.5},
                                  {"New", 2013.04},
                                  {"Infinite", std::numeric_limits<double>::infinity()}};

class Utf16TextOnAnOldHost : public testing::TestWithParam<HostOfVersion> {};
class Utf16TextOnANewHost : public testing::TestWithParam<HostOfVersion> {};

void buildEmptyUnchecked(TextScene &scene) {
    using Build = REALstringStruct *(const void *, std::int64_t);
    auto *build = imageFunction<Build>(scene.image, "REALBuildUnicodeStringUTF16");
    host::StringRef::adopt(build("unread", 0));
}

// In the place of host services.
REALstringStruct *answer;
std::int64_t recordedLength;

REALstringStruct *answering(REALstringStruct *, std::uint32_t) {
    return answer;
}

REALstringStruct *recordingBuild(const unsigned char *, std::int32_t length) {
    recordedLength = length;
    return nullptr;
}

REALstringStruct *recordingBuildWithEncoding(const unsigned char *, std::int32_t length,
                                             std::uint32_t) {
    recordedLength = length;
    return nullptr;
}

} // namespace

TEST_P(Utf16TextOnANewHost, IsBuiltWithItsEncodingThenConvertedThenReleased) {
    TextScene scene(GetParam().version);
    scene.build(bytesOf(text), encoding::utf16);
    EXPECT_THAT(scene.host.calls(),
                ElementsAre(R"(REALBuildStringWithEncoding("A\x00\xE9\x00=\xD8\x00\xDE", 8, )"
                            "0x00000100) = String#1",
                            "REALConvertString(String#1, 0x08000100) = String#2",
                            "REALUnlockString(String#1)"));
}

// The function behind it leaves the checks to its only caller.
TEST_P(Utf16TextOnANewHost, IsNotCheckedTwice) {
    TextScene scene(GetParam().version);
    buildEmptyUnchecked(scene);
    EXPECT_THAT(scene.host.calls(),
                ElementsAre(R"(REALBuildStringWithEncoding("", 0, 0x00000100) = String#1)",
                            "REALConvertString(String#1, 0x08000100) = String#2",
                            "REALUnlockString(String#1)"));
}

INSTANTIATE_TEST_SUITE_P(Host, Utf16TextOnANewHost, testing::ValuesIn(newHosts),
                         [](const auto &tested) { return tested.param.name; });

TEST_P(Utf16TextOnAnOldHost, IsBuiltThenDeclaredThenConvertedThenReleased) {
    TextScene scene(GetParam().version);
    scene.build(bytesOf(text), encoding::utf16);
    EXPECT_THAT(scene.host.calls(),
                ElementsAre(R"(REALBuildString("A\x00\xE9\x00=\xD8\x00\xDE", 8) = String#1)",
                            "REALSetStringEncoding(String#1, 0x00000100)",
                            "REALConvertString(String#1, 0x08000100) = String#2",
                            "REALUnlockString(String#1)"));
}

TEST_P(Utf16TextOnAnOldHost, IsNotCheckedTwice) {
    TextScene scene(GetParam().version);
    buildEmptyUnchecked(scene);
    EXPECT_THAT(scene.host.calls(),
                ElementsAre(R"(REALBuildString("", 0) = String#1)",
                            "REALSetStringEncoding(String#1, 0x00000100)",
                            "REALConvertString(String#1, 0x08000100) = String#2",
                            "REALUnlockString(String#1)"));
}

INSTANTIATE_TEST_SUITE_P(Host, Utf16TextOnAnOldHost, testing::ValuesIn(oldHosts),
                         [](const auto &tested) { return tested.param.name; });

TEST(Utf16Text, KeepsAnOddLength) {
    TextScene scene(newVersion);
    scene.build("A\0B"sv, encoding::utf16);
    EXPECT_EQ(scene.host.calls().front(),
              R"(REALBuildStringWithEncoding("A\x00B", 3, 0x00000100) = String#1)");
}

TEST(Utf16Text, MayHaveTheLargestLength) {
    TextScene scene(newVersion);
    scene.host.services().replace("REALBuildStringWithEncoding", recordingBuildWithEncoding);
    scene.build("nobody reads this", 0x7FFFFFFF, encoding::utf16);
    EXPECT_EQ(recordedLength, 0x7FFFFFFF);
}

TEST(Utf16Text, MayHaveTheLargestLengthOnAnOldHost) {
    TextScene scene(oldVersion);
    scene.host.services().replace("REALBuildString", recordingBuild);
    scene.build("nobody reads this", 0x7FFFFFFF, encoding::utf16);
    EXPECT_EQ(recordedLength, 0x7FFFFFFF);
}

TEST(Utf16Text, MayStandAtAnyAddress) {
    TextScene scene(newVersion);
    const std::string shifted = "." + std::string(bytesOf(text));
    const host::StringRef built = scene.build(
        shifted.data() + 1, static_cast<std::int64_t>(shifted.size() - 1), encoding::utf16);
    EXPECT_EQ(scene.host.text(built), "A\xC3\xA9\xF0\x9F\x98\x80");
}

TEST(Utf16ServicesOfANewHost, IsConvertedEvenWhenNothingWasBuilt) {
    TextScene scene(newVersion);
    scene.host.services().answerNull("REALBuildStringWithEncoding");
    EXPECT_EQ(scene.build("A\0"sv, encoding::utf16), nullptr);
    EXPECT_THAT(scene.host.calls(),
                ElementsAre(R"(REALBuildStringWithEncoding("A\x00", 2, 0x00000100) = nil)",
                            "REALConvertString(nil, 0x08000100) = nil"));
}

TEST(Utf16ServicesOfANewHost, IsWhateverTheHostMakesOfNil) {
    TextScene scene(newVersion);
    scene.host.services().answerNull("REALBuildStringWithEncoding");
    scene.host.services().replace("REALConvertString", answering);
    answer = scene.host.makeString("made of nil").release();
    EXPECT_EQ(scene.host.text(scene.build("A\0"sv, encoding::utf16)), "made of nil");
}

TEST(Utf16ServicesOfAnOldHost, IsNilWhenNothingWasBuilt) {
    TextScene scene(oldVersion);
    scene.host.services().answerNull("REALBuildString");
    EXPECT_EQ(scene.build("A\0"sv, encoding::utf16), nullptr);
    EXPECT_THAT(scene.host.calls(), ElementsAre(R"(REALBuildString("A\x00", 2) = nil)"));
}
