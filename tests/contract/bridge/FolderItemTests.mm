// Host folder items from the URLs of existing items.

#import "FolderItemScene.h"

#include <gmock/gmock.h>

using testing::Contains;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;

namespace fs = std::filesystem;

TEST(FolderItem, OfNilIsNil) {
    FolderItemScene scene;
    EXPECT_EQ(scene.convert(nil).handle(), nullptr);
    EXPECT_THAT(scene.host.trace(), IsEmpty());
}

TEST(FolderItem, OfAnExistingFileIsMadeFromItsFolderAndName) {
    FolderItemScene scene;
    const fs::path file = scene.folder.file("file");
    const host::ObjectRef item = scene.convert(file);
    EXPECT_THAT(scene.host.trace(),
                ElementsAre("CFURLGetFSRef(url) = true",
                            "FSGetCatalogInfo(\"file\", 0x10, info, nil, nil, ref) = 0",
                            "FSGetCatalogInfo(\"file\", 0x0, nil, name, nil, nil) = 0",
                            "FSGetCatalogInfo(\"folder\", 0x0, nil, nil, nil, nil) = 0",
                            "find REALFolderItemFromParentFSRef",
                            "REALFolderItemFromParentFSRef(pointer, pointer) = FolderItem#1"));
    const host::FolderContent content = host::folderItem(item);
    EXPECT_TRUE(content.fromParent);
    EXPECT_EQ(content.parent, scene.folder.path());
    EXPECT_EQ(content.name, u"file");
    EXPECT_EQ(content.path, file);
}

TEST(FolderItem, BelongsToTheCaller) {
    FolderItemScene scene;
    const host::ObjectRef existing = scene.convert(scene.folder.file("file"));
    const host::ObjectRef missing = scene.convert(scene.folder.path() / "absent");
    const host::ObjectRef root = scene.convert(fs::path("/"));
    EXPECT_EQ(scene.host.references(existing), 1);
    EXPECT_EQ(scene.host.references(missing), 1);
    EXPECT_EQ(scene.host.references(root), 1);
}

TEST(FolderItem, IsMadeAnewEachTime) {
    FolderItemScene scene;
    const fs::path file = scene.folder.file("file");
    const host::ObjectRef first = scene.convert(file);
    const host::ObjectRef second = scene.convert(file);
    EXPECT_NE(first.handle(), second.handle());
}

TEST(FolderItem, LeavesTheUrlAsItWas) {
    FolderItemScene scene;
    for (const fs::path &path :
         {scene.folder.file("file"), scene.folder.path() / "absent", fs::path("/")}) {
        NSURL *url = [[NSURL alloc] initFileURLWithPath:@(path.c_str())];
        const NSUInteger references = [url retainCount];
        scene.convert(url);
        EXPECT_EQ([url retainCount], references) << path;
        [url release];
    }
    EXPECT_THAT(scene.host.calls(), Not(Contains("CFRelease(url)")));
    EXPECT_THAT(scene.host.calls(), Not(Contains("CFRetain(url)")));
}

TEST(FolderItem, OfAFolderIsMadeFromTheFolderAbove) {
    FolderItemScene scene;
    const std::string text = "file://" + scene.folder.path().string();
    for (const std::string &url : {text, text + '/'}) {
        SCOPED_TRACE(url);
        const host::ObjectRef item = scene.convert(urlFrom(url));
        EXPECT_EQ(host::folderItem(item).parent, scene.folder.around());
        EXPECT_EQ(host::folderItem(item).name, u"folder");
    }
}

TEST(FolderItem, InTheRootFolderIsMadeFromIt) {
    FolderItemScene scene;
    const host::ObjectRef item = scene.convert(fs::path("/usr"));
    const host::FolderContent content = host::folderItem(item);
    EXPECT_TRUE(content.fromParent);
    EXPECT_EQ(content.parent, "/");
    EXPECT_EQ(content.name, u"usr");
}

TEST(FolderItem, OfALinkIsTheLinkItself) {
    FolderItemScene scene;
    scene.folder.file("target");
    fs::create_symlink("target", scene.folder.path() / "link");
    fs::create_symlink("nowhere", scene.folder.path() / "broken");
    EXPECT_EQ(scene.nameGiven(scene.folder.path() / "link"), u"link");
    EXPECT_EQ(scene.nameGiven(scene.folder.path() / "broken"), u"broken");
}

TEST(FolderItem, HasTheNameUnescaped) {
    FolderItemScene scene;
    scene.folder.file("a b%20c");
    const std::string folder = "file://" + scene.folder.path().string();
    const host::ObjectRef item = scene.convert(urlFrom(folder + "/a%20b%2520c"));
    EXPECT_EQ(host::folderItem(item).name, u"a b%20c");
}

TEST(FolderItem, HasTheNameAsTheFileSystemStoresIt) {
    FolderItemScene scene;
    EXPECT_EQ(scene.nameGiven(scene.folder.file("caf\xC3\xA9")), u"cafe\u0301");
    EXPECT_EQ(scene.nameGiven(scene.folder.file("u\xCC\x88")), u"u\u0308");
    EXPECT_THAT(scene.host.calls(), Not(Contains(HasSubstr("CFStringNormalize"))))
        << "the File Manager gave the stored form";
}

TEST(FolderItem, IsFoundByANameThatIsComposedOtherwise) {
    FolderItemScene scene;
    scene.folder.file("cafe\xCC\x81");
    EXPECT_EQ(scene.nameGiven(scene.folder.path() / "caf\xC3\xA9"), u"cafe\u0301");
    EXPECT_EQ(scene.host.calls().front(), "CFURLGetFSRef(url) = true");
}

TEST(FolderItem, CanHaveTheLongestName) {
    FolderItemScene scene;
    EXPECT_EQ(scene.nameGiven(scene.folder.file(std::string(255, 'x'))), std::u16string(255, u'x'));
}

TEST(FolderItem, OfAnExistingFileIsNilWhereTheHostMakesNone) {
    FolderItemScene scene;
    const fs::path file = scene.folder.file("file");
    scene.host.services().answerNull("REALFolderItemFromParentFSRef");
    EXPECT_EQ(scene.convert(file).handle(), nullptr);
    EXPECT_EQ(scene.host.trace().back(), fromParent + std::string("nil"))
        << "the other route is not tried";
}

// Only the volume's root folder has this node ID.
TEST(FolderItem, KeepsTheParentOfAnyOtherNode) {
    FolderItemScene scene;
    const fs::path file = scene.folder.file("file");
    for (const std::uint32_t node : {0u, 1u, 3u, 16u, 0x10002u, 0xFFFFFFFFu}) {
        SCOPED_TRACE(node);
        scene.files.answerNode(node);
        const host::ObjectRef item = scene.convert(file);
        EXPECT_EQ(host::folderItem(item).parent, scene.folder.path());
    }
}
