// Cocoa strings from host strings: which of the host's services are asked, and in which order.

#import "HostStringScene.h"
#import "TracedObject.h"

#include <gmock/gmock.h>

#include <cmath>
#include <limits>

using testing::ElementsAre;
using testing::IsEmpty;

namespace {

// What the host hands out in these tests, one after the other, with a reference each.
std::vector<id> handedOut;

void *handOut(host::StringHandle, std::int32_t) {
    if (handedOut.empty())
        return nullptr;
    const id next = handedOut.front();
    handedOut.erase(handedOut.begin());
    return [next retain];
}

} // namespace

TEST(HostString, ThatIsNilIsNil) {
    HostStringScene scene;
    EXPECT_EQ(scene.convert(nullptr), nil);
    EXPECT_THAT(scene.host.trace(), IsEmpty());
}

TEST(HostString, IsTheOneThatTheHostHandsOut) {
    HostStringScene scene;
    const Traced string("string");
    handedOut = {string};
    scene.host.services().replace("REALGetStringCFString", handOut);
    EXPECT_EQ(static_cast<id>(scene.convertBytes("abc", host::encoding::utf8)),
              static_cast<TracedObject *>(string));
    EXPECT_THAT(scene.host.trace(), ElementsAre("find REALGetStringEncoding",
                                                "REALGetStringEncoding(String#1) = 0x08000100",
                                                "find REALGetStringCFString",
                                                "REALGetStringCFString(String#1, 0) = pointer",
                                                "[string retain]", "[string autorelease]"));
}

TEST(HostString, BelongsToTheAutoreleasePool) {
    HostStringScene scene;
    const Traced string("string");
    handedOut = {string};
    scene.host.services().replace("REALGetStringCFString", handOut);
    const NSUInteger before = [string retainCount];
    NSAutoreleasePool *pool = [[NSAutoreleasePool alloc] init];
    scene.convertBytes("abc", host::encoding::utf8);
    EXPECT_EQ([string retainCount], before + 1);
    [pool drain];
    EXPECT_EQ([string retainCount], before);
}

TEST(HostString, MadeFromBytesBelongsToTheAutoreleasePool) {
    HostStringScene scene;
    scene.handOutNoCFString();
    for (const std::uint32_t encoding :
         {host::encoding::utf8, host::encoding::utf16, host::encoding::unknown}) {
        SCOPED_TRACE(encoding);
        const Traced string("string");
        scene.creation.answer([string retain]);
        NSAutoreleasePool *pool = [[NSAutoreleasePool alloc] init];
        EXPECT_EQ(static_cast<id>(scene.convertBytes("abcd", encoding)),
                  static_cast<TracedObject *>(string));
        EXPECT_EQ([string retainCount], 2u);
        [pool drain];
        EXPECT_EQ([string retainCount], 1u);
    }
}

TEST(HostString, IsBorrowed) {
    HostStringScene scene;
    scene.convertBytes("abc", host::encoding::utf8);
    EXPECT_EQ(scene.host.references(scene.string.handle()), 1);
    scene.handOutNoCFString();
    scene.convert(scene.string);
    EXPECT_EQ(scene.host.references(scene.string.handle()), 1);
}

TEST(HostString, IsReadFromItsBytesIfTheHostHandsOutNone) {
    HostStringScene scene;
    scene.handOutNoCFString();
    NSString *result = scene.convertBytes("abc", host::encoding::utf8);
    EXPECT_EQ(unitsOf(result), u"abc");
    EXPECT_THAT(
        scene.host.calls(),
        ElementsAre("REALGetStringEncoding(String#1) = 0x08000100",
                    "REALGetStringCFString(String#1, 0) = nil",
                    "REALGetStringCFString(String#1, 0) = nil", "REALLockString(String#1)",
                    "StringGetCString(String#1) = pointer",
                    "REALLoadGlobalMethod(nil, \"LenB( s as string ) as integer\") = pointer",
                    "LenB(String#1) = 3", "CFStringCreateWithBytes(\"abc\", 3, 0x08000100, true)",
                    "REALUnlockString(String#1)"));
}

TEST(HostString, LooksEachServiceUpOnceButTheCFStringTwice) {
    HostStringScene scene;
    scene.handOutNoCFString();
    scene.convertBytes("abc", host::encoding::utf8);
    scene.convertBytes("def", host::encoding::utf8);
    EXPECT_THAT(scene.host.lookups(),
                ElementsAre("find REALGetStringEncoding", "find REALGetStringCFString",
                            "find REALGetStringCFString", "find REALLockString",
                            "find StringGetCString", "find REALLoadGlobalMethod",
                            "find REALUnlockString"));
}

TEST(HostString, FindsLenBOnce) {
    HostStringScene scene;
    scene.handOutNoCFString();
    scene.convertBytes("abc", host::encoding::utf8);
    EXPECT_EQ(unitsOf(scene.convertBytes("defg", host::encoding::utf8)), u"defg");
    EXPECT_EQ(scene.host.services().calls("REALLoadGlobalMethod"), 1u);
}

TEST(HostString, GivesBackNoStringData) {
    HostStringScene scene;
    scene.handOutNoCFString();
    scene.convertBytes("abc", host::encoding::utf8);
    EXPECT_EQ(scene.host.services().lookups("PluginDisposeStringData"), 0u);
}

TEST(HostStringWithoutEncoding, IsReadAsMacRomanThoughTheHostCouldHandOneOut) {
    HostStringScene scene;
    const Traced string("string");
    handedOut = {string};
    scene.host.services().replace("REALGetStringCFString", handOut);
    EXPECT_EQ(unitsOf(scene.convertBytes("\x8E", host::encoding::unknown)), u"\u00E9");
    EXPECT_THAT(
        scene.host.trace(),
        ElementsAre("find REALGetStringEncoding", "REALGetStringEncoding(String#1) = 0x0000FFFF",
                    "find REALLockString", "REALLockString(String#1)", "find StringGetCString",
                    "StringGetCString(String#1) = pointer", "find REALLoadGlobalMethod",
                    "REALLoadGlobalMethod(nil, \"LenB( s as string ) as integer\") = "
                    "pointer",
                    "LenB(String#1) = 1", "CFStringCreateWithBytes(\"\\x8E\", 1, 0x00000000, true)",
                    "find REALUnlockString", "REALUnlockString(String#1)"));
}

TEST(HostStringWithoutEncoding, IsReadAlikeOnEveryHost) {
    HostStringScene scene({.version = 2011.1});
    EXPECT_EQ(unitsOf(scene.convertBytes("\x8E", host::encoding::unknown)), u"\u00E9");
    EXPECT_EQ(scene.host.services().lookups("REALGetStringCFString"), 0u);
}

TEST(HostStringWithoutEncoding, AcceptsEveryByte) {
    HostStringScene scene;
    std::string every;
    for (int byte = 1; byte < 256; ++byte)
        every += static_cast<char>(byte);
    const std::u16string units = unitsOf(scene.convertBytes(every, host::encoding::unknown));
    ASSERT_EQ(units.size(), 255u);
    EXPECT_EQ(units.substr(0, 0x7F), std::u16string(every.begin(), every.begin() + 0x7F));
    EXPECT_EQ(units[0x80 - 1], u'\u00C4');
    EXPECT_EQ(units[0xFF - 1], u'\u02C7');
}

namespace {

struct HostOfVersion {
    const char *name;
    std::optional<double> version;
    bool copies; ///< asks for a copy first
};

class CFStringOfAHost : public testing::TestWithParam<HostOfVersion> {
protected:
    // In this order; a host that is asked for a copy is asked twice.
    HostStringScene scene{{.version = GetParam().version}};
    const Traced first{"first"}, second{"second"};

    void SetUp() override { scene.host.services().replace("REALGetStringCFString", handOut); }
    [[nodiscard]] std::vector<std::string> requests() const {
        std::vector<std::string> result;
        for (const std::string &line : scene.host.trace())
            if (line.find("REALGetStringCFString") != std::string::npos)
                result.push_back(line);
        return result;
    }
};

// As handOut, but nil at first.
bool refused;
void *handOutTheSecondTime(host::StringHandle string, std::int32_t argument) {
    return std::exchange(refused, true) ? handOut(string, argument) : nullptr;
}

} // namespace

TEST_P(CFStringOfAHost, IsAskedForOnceIfThereIsOne) {
    handedOut = {first, second};
    EXPECT_EQ(static_cast<id>(scene.convertBytes("abc", host::encoding::utf8)),
              static_cast<TracedObject *>(first));
    EXPECT_THAT(requests(), ElementsAre("find REALGetStringCFString",
                                        "REALGetStringCFString(String#1, 0) = pointer"));
    EXPECT_THAT(handedOut, testing::SizeIs(1));
}

TEST_P(CFStringOfAHost, IsAskedForAgainByItsOtherNameIfThereIsNone) {
    handedOut = {};
    EXPECT_EQ(unitsOf(scene.convertBytes("abc", host::encoding::utf8)), u"abc");
    if (GetParam().copies)
        EXPECT_THAT(requests(), ElementsAre("find REALGetStringCFString",
                                            "REALGetStringCFString(String#1, 0) = nil",
                                            "find REALGetStringCFString",
                                            "REALGetStringCFString(String#1, 0) = nil"));
    else
        EXPECT_THAT(requests(), ElementsAre("find REALGetStringCFString",
                                            "REALGetStringCFString(String#1, 0) = nil"));
}

TEST_P(CFStringOfAHost, MayComeFromTheSecondRequest) {
    refused = false;
    handedOut = {second};
    scene.host.services().replace("REALGetStringCFString", handOutTheSecondTime);
    const id result = scene.convertBytes("abc", host::encoding::utf8);
    if (GetParam().copies) {
        EXPECT_EQ(result, static_cast<TracedObject *>(second));
        EXPECT_EQ(scene.host.services().lookups("REALLockString"), 0u);
    } else {
        EXPECT_EQ(unitsOf(result), u"abc") << "from its bytes";
    }
}

INSTANTIATE_TEST_SUITE_P(
    OfVersion, CFStringOfAHost,
    testing::Values(HostOfVersion{"ExactlyTheFirstThatCopies", 2012.0, true},
                    HostOfVersion{"JustBelow", std::nextafter(2012.0, 0.0), false},
                    HostOfVersion{"JustAbove", std::nextafter(2012.0, 3000.0), true},
                    HostOfVersion{"Newest", 2013.04, true}, HostOfVersion{"Old", 2011.9, false},
                    HostOfVersion{"Infinite", std::numeric_limits<double>::infinity(), true},
                    HostOfVersion{"Zero", 0.0, false}, HostOfVersion{"Negative", -2013.0, false},
                    HostOfVersion{"NotANumber", std::nan(""), false},
                    HostOfVersion{"Untold", std::nullopt, false}),
    [](const auto &tested) { return std::string(tested.param.name); });
