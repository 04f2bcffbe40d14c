// Host folder items from the URLs of items that do not exist, but whose folder does.

#import "FolderItemScene.h"

#include "../WithoutPrivileges.h"

#include <CoreServices/CoreServices.h>

#include <gmock/gmock.h>

#include <cstring>
#include <limits>
#include <optional>

using testing::Contains;
using testing::ElementsAre;

namespace fs = std::filesystem;

namespace {

std::optional<HFSUniStr255> nameReceived;
host::ObjectHandle receiveName(const void *, const void *name) {
    nameReceived.emplace();
    std::memcpy(&*nameReceived, name, sizeof *nameReceived);
    return nullptr;
}

} // namespace

TEST(MissingFolderItem, IsMadeFromTheFolderAndTheName) {
    FolderItemScene scene;
    const fs::path path = scene.folder.path() / "absent";
    const host::ObjectRef item = scene.convert(path);
    EXPECT_THAT(scene.host.calls(),
                ElementsAre("CFURLGetFSRef(url) = false",
                            "CFURLCreateCopyDeletingLastPathComponent(nil, url) = parent",
                            "CFURLGetFSRef(parent) = true",
                            "CFURLCopyLastPathComponent(url) = component",
                            "CFStringCreateMutableCopy(nil, 0, component) = copy",
                            "CFStringNormalize(copy, 0)", "CFStringGetLength",
                            "CFStringGetCharacters(copy, 0, 6)", "CFRelease(copy)",
                            "CFRelease(component)", "CFRelease(parent)",
                            "REALFolderItemFromParentFSRef(pointer, pointer) = FolderItem#1"));
    const host::FolderContent content = host::folderItem(item);
    EXPECT_TRUE(content.fromParent);
    EXPECT_EQ(content.parent, scene.folder.path());
    EXPECT_EQ(content.name, u"absent");
    EXPECT_EQ(content.path, path);
    EXPECT_FALSE(fs::exists(path)) << "naming it does not make it";
}

TEST(MissingFolderItem, HasItsNameDecomposed) {
    struct Row {
        const char *name;
        const char16_t *decomposed;
    };
    constexpr Row rows[] = {
        {"plain", u"plain"},
        {"\xC3\xA9", u"e\u0301"},                         // é
        {"e\xCC\x81", u"e\u0301"},                        // é, as it is already
        {"\xE2\x84\xAB", u"A\u030A"},                     // the Angstrom sign
        {"\xEA\xB0\x81", u"\u1100\u1161\u11A8"},          // a Hangul syllable
        {"\xE1\xBB\x87", u"e\u0323\u0302"},               // marks in canonical order
        {"e\xCC\x82\xCC\xA3", u"e\u0323\u0302"},          // given in the other order
        {"\xE2\x89\xA0", u"=\u0338"},                     // not equal to
        {"\xEF\xAC\x81", u"\uFB01"},                      // a compatibility form only
        {"\xF0\x9D\x85\x9E", u"\U0001D157\U0001D165"},    // a note, beyond 16 bits
        {"\xF0\x9F\x98\x80", u"\U0001F600"},              // a face
        {"a\xC3\xBC.t\xC3\xA4xt", u"au\u0308.ta\u0308xt"} // within other text
    };
    FolderItemScene scene;
    for (const Row &row : rows) {
        SCOPED_TRACE(row.name);
        EXPECT_EQ(scene.nameGiven(scene.folder.path() / row.name), row.decomposed);
    }
}

TEST(MissingFolderItem, HasItsNameUnescaped) {
    FolderItemScene scene;
    const std::string folder = "file://" + scene.folder.path().string();
    const host::ObjectRef item = scene.convert(urlFrom(folder + "/caf%C3%A9%20%2525"));
    EXPECT_EQ(host::folderItem(item).name, u"cafe\u0301 %25");
}

TEST(MissingFolderItem, MayBeWrittenAsAFolder) {
    FolderItemScene scene;
    const host::ObjectRef item =
        scene.convert(urlFrom("file://" + scene.folder.path().string() + "/absent/"));
    EXPECT_EQ(host::folderItem(item).name, u"absent");
    EXPECT_EQ(host::folderItem(item).parent, scene.folder.path());
}

TEST(MissingFolderItem, HasItsNameCutTo255Units) {
    FolderItemScene scene;
    const auto expectName = [&](const std::string &name, const std::u16string &given) {
        SCOPED_TRACE(name);
        EXPECT_EQ(scene.nameGiven(scene.folder.path() / name), given);
    };
    const auto repeated = [](int count, const char *text) {
        std::string result;
        for (int i = 0; i < count; ++i)
            result += text;
        return result;
    };
    expectName(std::string(254, 'x'), std::u16string(254, u'x'));
    expectName(std::string(255, 'x'), std::u16string(255, u'x'));
    expectName(std::string(256, 'x'), std::u16string(255, u'x'));
    expectName(std::string(255, 'x') + std::string(45, 'y'), std::u16string(255, u'x'));
    expectName(std::string(3000, 'x'), std::u16string(255, u'x'));

    // The units are counted after decomposition: here the last letter loses its accent.
    std::u16string accents;
    for (int i = 0; i < 127; ++i)
        accents += u"e\u0301";
    expectName(repeated(127, "\xC3\xA9"), accents);
    expectName(repeated(128, "\xC3\xA9"), accents + u'e');
    expectName(repeated(150, "\xC3\xA9"), accents + u'e');
}

// A cut is made between units, be they of one character or not.
TEST(MissingFolderItem, MayLoseHalfOfASurrogatePair) {
    FolderItemScene scene;
    scene.host.services().replace("REALFolderItemFromParentFSRef", receiveName);
    const std::string face = "\xF0\x9F\x98\x80"; // D83D DE00
    scene.convert(scene.folder.path() / (std::string(254, 'x') + face));
    ASSERT_TRUE(nameReceived);
    EXPECT_EQ(nameReceived->length, 255);
    EXPECT_EQ(nameReceived->unicode[253], u'x');
    EXPECT_EQ(nameReceived->unicode[254], 0xD83D);
    scene.convert(scene.folder.path() / (std::string(253, 'x') + face));
    EXPECT_EQ(nameReceived->length, 255);
    EXPECT_EQ(nameReceived->unicode[253], 0xD83D);
    EXPECT_EQ(nameReceived->unicode[254], 0xDE00);
}

TEST(MissingFolderItem, HasANameOfNoUnitsWhereItsLengthIsNegative) {
    FolderItemScene scene;
    scene.host.services().replace("REALFolderItemFromParentFSRef", receiveName);
    for (const long length : {-1L, -256L, std::numeric_limits<long>::min()}) {
        SCOPED_TRACE(length);
        scene.files.answerLength(length);
        nameReceived.reset();
        scene.convert(scene.folder.path() / "absent");
        ASSERT_TRUE(nameReceived);
        EXPECT_EQ(nameReceived->length, 0);
    }
}

TEST(MissingFolderItem, HasTheNameAsItIsWhereNoCopyCanBeMade) {
    FolderItemScene scene;
    scene.files.refuse("CFStringCreateMutableCopy");
    EXPECT_EQ(scene.nameGiven(scene.folder.path() / "\xC3\xA9"), u"\u00E9");
    EXPECT_THAT(
        scene.host.calls(),
        ElementsAre("CFURLGetFSRef(url) = false",
                    "CFURLCreateCopyDeletingLastPathComponent(nil, url) = parent",
                    "CFURLGetFSRef(parent) = true", "CFURLCopyLastPathComponent(url) = component",
                    "CFStringCreateMutableCopy(nil, 0, component) = nil", "CFRetain(component)",
                    "CFStringGetLength", "CFStringGetCharacters(component, 0, 1)",
                    "CFRelease(component)", "CFRelease(component)", "CFRelease(parent)",
                    "REALFolderItemFromParentFSRef(pointer, pointer) = FolderItem#1"));
}

TEST(MissingFolderItem, WithoutAUrlAboveIsNil) {
    FolderItemScene scene;
    scene.files.refuse("CFURLCreateCopyDeletingLastPathComponent");
    EXPECT_EQ(scene.convert(scene.folder.path() / "absent").handle(), nullptr);
    EXPECT_THAT(scene.host.trace(),
                ElementsAre("CFURLGetFSRef(url) = false",
                            "CFURLCreateCopyDeletingLastPathComponent(nil, url) = nil"));
}

TEST(MissingFolderItem, WithoutItsFolderIsNil) {
    FolderItemScene scene;
    for (const fs::path &path : {scene.folder.path() / "absent" / "deeper",
                                 scene.folder.file("file") / "absent" / "deeper"}) {
        SCOPED_TRACE(path);
        scene.host.clearTrace();
        EXPECT_EQ(scene.convert(path).handle(), nullptr);
        EXPECT_THAT(scene.host.trace(),
                    ElementsAre("CFURLGetFSRef(url) = false",
                                "CFURLCreateCopyDeletingLastPathComponent(nil, url) = parent",
                                "CFURLGetFSRef(parent) = false", "CFRelease(parent)"));
    }
}

TEST(MissingFolderItem, WithoutALastComponentIsNil) {
    FolderItemScene scene;
    scene.files.refuse("CFURLCopyLastPathComponent");
    EXPECT_EQ(scene.convert(scene.folder.path() / "absent").handle(), nullptr);
    EXPECT_THAT(scene.host.trace(),
                ElementsAre("CFURLGetFSRef(url) = false",
                            "CFURLCreateCopyDeletingLastPathComponent(nil, url) = parent",
                            "CFURLGetFSRef(parent) = true", "CFURLCopyLastPathComponent(url) = nil",
                            "CFRelease(parent)"));
}

TEST(MissingFolderItem, WhoseEscapesAreNoTextIsNil) {
    FolderItemScene scene;
    NSURL *url = urlFrom("file://" + scene.folder.path().string() + "/%FF");
    ASSERT_NE(url, nil);
    EXPECT_EQ(scene.convert(url).handle(), nullptr);
    EXPECT_THAT(scene.host.calls(), Contains("CFURLCopyLastPathComponent(url) = nil"));
}

TEST(MissingFolderItem, IsNilWithoutTheService) {
    FolderItemScene scene;
    scene.host.services().hide("REALFolderItemFromParentFSRef");
    EXPECT_EQ(scene.convert(scene.folder.path() / "absent").handle(), nullptr);
    const auto trace = scene.host.trace();
    EXPECT_THAT(trace, Contains("miss REALFolderItemFromParentFSRef"));
    for (const char *released : {"CFRelease(copy)", "CFRelease(component)", "CFRelease(parent)"})
        EXPECT_THAT(trace, Contains(released).Times(1));
}

TEST(MissingFolderItem, InAFolderThatMayNotBeSearchedIsStillNamed) {
    FolderItemScene scene;
    const fs::path closed = scene.folder.path() / "closed";
    fs::create_directory(closed);
    std::ofstream(closed / "item").put('x');
    fs::permissions(scene.folder.around(), fs::perms::all);
    fs::permissions(closed, fs::perms::none);
    host::ObjectRef item;
    host::ObjectRef below;
    {
        const WithoutPrivileges user;
        item = scene.convert(closed / "item");
        below = scene.convert(closed / "deeper" / "item");
    }
    fs::permissions(closed, fs::perms::all);
    ASSERT_NE(item.handle(), nullptr);
    EXPECT_EQ(host::folderItem(item).parent, closed);
    EXPECT_EQ(host::folderItem(item).name, u"item");
    EXPECT_EQ(below.handle(), nullptr) << "its folder cannot be seen";
}

TEST(UrlOfNoFile, IsNil) {
    FolderItemScene scene;
    EXPECT_EQ(scene.convert(urlFrom("http://example.com/folder/page?q=1#part")).handle(), nullptr);
    EXPECT_THAT(scene.host.trace(),
                ElementsAre("CFURLGetFSRef(url) = false",
                            "CFURLCreateCopyDeletingLastPathComponent(nil, url) = parent",
                            "CFURLGetFSRef(parent) = false", "CFRelease(parent)"));
    // A path that exists does not make a web address a file.
    EXPECT_EQ(scene.convert(urlFrom("http://example.com" + scene.folder.path().string())).handle(),
              nullptr);
}

TEST(UrlOfNoFile, WithoutAPathIsNil) {
    FolderItemScene scene;
    for (const char *text : {"mailto:someone@example.com", "file:a/b"}) {
        SCOPED_TRACE(text);
        scene.host.clearTrace();
        EXPECT_EQ(scene.convert(urlFrom(text)).handle(), nullptr);
        EXPECT_THAT(scene.host.trace(),
                    ElementsAre("CFURLGetFSRef(url) = false",
                                "CFURLCreateCopyDeletingLastPathComponent(nil, url) = nil"));
    }
}

TEST(UrlOfNoFile, WithAnEmptyPathIsNil) {
    FolderItemScene scene;
    EXPECT_EQ(scene.convert(urlFrom("http://example.com")).handle(), nullptr);
    EXPECT_THAT(scene.host.trace(),
                ElementsAre("CFURLGetFSRef(url) = false",
                            "CFURLCreateCopyDeletingLastPathComponent(nil, url) = parent",
                            "CFURLGetFSRef(parent) = false", "CFRelease(parent)"));
}
