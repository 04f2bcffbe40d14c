// Cocoa strings from host strings when the host lacks a service, or something throws on the way.

#import "HostStringScene.h"
#import "TracedObject.h"

#include "Caught.h"

#include <gmock/gmock.h>

#include <stdexcept>

using testing::Contains;
using testing::ElementsAre;

TEST(HostStringWithout, REALGetStringEncodingIsAskedForAsACFString) {
    HostStringScene scene;
    scene.host.services().hide("REALGetStringEncoding");
    EXPECT_EQ(unitsOf(scene.convertBytes("Gr\xC3\xBC\xC3\x9F"
                                         "e",
                                         host::encoding::utf8)),
              u"Gr\u00FC\u00DFe");
    EXPECT_THAT(scene.host.trace(),
                ElementsAre("miss REALGetStringEncoding", "find REALGetStringCFString",
                            "REALGetStringCFString(String#1, 0) = pointer"));
}

TEST(HostStringWithout, REALGetStringEncodingIsMacRomanInItsBytes) {
    HostStringScene scene;
    scene.host.services().hide("REALGetStringEncoding");
    scene.handOutNoCFString();
    EXPECT_EQ(unitsOf(scene.convertBytes("\x8E", host::encoding::latin1)), u"\u00E9");
    EXPECT_THAT(scene.host.calls(),
                Contains("CFStringCreateWithBytes(\"\\x8E\", 1, 0x00000000, true)"));
}

// Bytes and count come from two places. Core Foundation must not be told to read bytes nowhere.
TEST(HostStringWithout, BytesIsNil) {
    HostStringScene scene;
    scene.handOutNoCFString();
    scene.host.services().hide("StringGetCString");
    for (const std::uint32_t encoding : {host::encoding::utf8, host::encoding::utf16})
        for (const char *text : {"abcd", "a"}) {
            EXPECT_EQ(scene.convertBytes(text, encoding), nil);
            EXPECT_THAT(scene.host.calls(),
                        testing::Not(Contains(testing::HasSubstr("CFStringCreate"))));
        }
}

TEST(HostStringWithout, LenBIsEmpty) {
    HostStringScene scene;
    scene.handOutNoCFString();
    scene.host.hideMethod("LenB(s as string) as integer");
    NSString *result = scene.convertBytes("abc", host::encoding::utf8);
    ASSERT_NE(result, nil);
    EXPECT_EQ(unitsOf(result), u"");
    EXPECT_THAT(scene.host.calls(), Contains("CFStringCreateWithBytes(\"\", 0, 0x08000100, true)"));
}

// No bytes are all bytes of an empty string, wherever they are.
TEST(HostStringWithout, BytesAndLenBIsEmpty) {
    HostStringScene scene;
    scene.handOutNoCFString();
    scene.host.services().hide("StringGetCString");
    scene.host.hideMethod("LenB(s as string) as integer");
    for (const std::uint32_t encoding :
         {host::encoding::utf8, host::encoding::utf16, host::encoding::unknown}) {
        NSString *result = scene.convertBytes("abc", encoding);
        ASSERT_NE(result, nil) << encoding;
        EXPECT_EQ(unitsOf(result), u"");
    }
}

namespace {

enum class Place { bytes, methodLoading, length, creation };
enum class Kind { cocoa, standard };

struct Way {
    const char *name;
    Place place;
    Kind kind;
    std::uint32_t encoding;
};

void throwOf(Kind kind) {
    if (kind == Kind::standard)
        throw std::runtime_error("on the way");
    refusing("way")("way");
}

Kind kindOfLength;
std::int64_t throwingLength(host::StringHandle) {
    throwOf(kindOfLength);
    return 0;
}
void *loadThrowingLength(void *, const char *) {
    return reinterpret_cast<void *>(throwingLength);
}

class HostStringLeft : public testing::TestWithParam<Way> {
protected:
    void arrange() {
        const Kind kind = GetParam().kind;
        switch (GetParam().place) {
        case Place::bytes:
            return scene.host.services().fail("StringGetCString", [kind] { throwOf(kind); });
        case Place::methodLoading:
            return scene.host.services().fail("REALLoadGlobalMethod", [kind] { throwOf(kind); });
        case Place::length:
            kindOfLength = kind;
            return scene.host.services().replace("REALLoadGlobalMethod", loadThrowingLength);
        case Place::creation:
            return scene.creation.before([kind] { throwOf(kind); });
        }
    }

    HostStringScene scene;
};

std::vector<Way> everyWay() {
    constexpr std::pair<Place, const char *> places[] = {{Place::bytes, "Bytes"},
                                                         {Place::methodLoading, "MethodLoading"},
                                                         {Place::length, "Length"},
                                                         {Place::creation, "Creation"}};
    std::vector<Way> ways;
    for (const auto &[place, name] : places)
        for (const Kind kind : {Kind::cocoa, Kind::standard})
            for (const std::uint32_t encoding :
                 {host::encoding::utf8, host::encoding::utf16, host::encoding::unknown})
                ways.push_back({name, place, kind, encoding});
    return ways;
}

std::string nameOf(const testing::TestParamInfo<Way> &tested) {
    const Way &way = tested.param;
    return std::string(way.name) + (way.kind == Kind::cocoa ? "Cocoa" : "Standard") +
           (way.encoding == host::encoding::utf8    ? "UTF8"
            : way.encoding == host::encoding::utf16 ? "UTF16"
                                                    : "WithoutEncoding");
}

} // namespace

TEST_P(HostStringLeft, ByAnExceptionIsUnlocked) {
    scene.handOutNoCFString();
    arrange();
    const auto convert = [this] { scene.convertBytes("abcd", GetParam().encoding); };
    if (GetParam().kind == Kind::cocoa)
        EXPECT_EQ(cocoaExceptionFrom(convert), "Refused: way");
    else
        EXPECT_EQ(standardExceptionFrom(convert), "on the way");
    EXPECT_THAT(scene.host.calls(), Contains("REALLockString(String#1)"));
    EXPECT_EQ(scene.host.calls().back(), "REALUnlockString(String#1)");
    EXPECT_EQ(scene.host.references(scene.string.handle()), 1);
}

INSTANTIATE_TEST_SUITE_P(At, HostStringLeft, testing::ValuesIn(everyWay()), nameOf);

TEST(HostStringThatCannotBeUnlocked, LeavesNoCocoaStringBehind) {
    const OwnObject<TracedObject> made;
    made->name = "made";
    HostStringScene scene;
    scene.handOutNoCFString();
    scene.creation.answer([made retain]);
    scene.host.services().fail("REALUnlockString", [] { throwOf(Kind::standard); });
    for (const std::uint32_t encoding : {host::encoding::utf8, host::encoding::unknown}) {
        EXPECT_EQ(standardExceptionFrom([&] { scene.convertBytes("abc", encoding); }),
                  "on the way");
        EXPECT_EQ(scene.host.calls().back(), "[made release]");
        scene.creation.answer([made retain]);
    }
    [made release];
    scene.host.shutDown();
    EXPECT_THAT(scene.host.violations(),
                ElementsAre(testing::StartsWith("String#1 leaked, 1 reference never released"),
                            testing::StartsWith("String#2 leaked, 1 reference never released")));
}
