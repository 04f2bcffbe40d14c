// Host folder items by path: of volumes' root folders, and wherever the catalog fails.

#import "FolderItemScene.h"
#import "TracedObject.h"

#include "Caught.h"

#include <CoreServices/CoreServices.h>

#include <gmock/gmock.h>

#include <algorithm>
#include <cstring>
#include <optional>
#include <stdexcept>

using testing::Contains;
using testing::ElementsAre;
using testing::IsEmpty;

namespace fs = std::filesystem;

namespace {

constexpr const char *rootFolder = "/";

std::vector<std::string> linesWith(const std::vector<std::string> &lines, std::string_view text) {
    std::vector<std::string> found;
    std::ranges::copy_if(lines, std::back_inserter(found), [&](const std::string &line) {
        return line.find(text) != std::string::npos;
    });
    return found;
}

std::optional<FSRef> parentReceived;
host::ObjectHandle receiveParent(const void *parent, const void *) {
    parentReceived.emplace();
    std::memcpy(&*parentReceived, parent, sizeof *parentReceived);
    return nullptr;
}

enum class Thrown : std::uint8_t { standard, cocoa };
void throwOf(Thrown thrown) {
    if (thrown == Thrown::standard)
        throw std::runtime_error("on the way");
    refusing("way")("way");
}

Thrown thrownByMethod;
host::ObjectHandle throwingMethod(host::StringHandle, std::int64_t) {
    throwOf(thrownByMethod);
    return nullptr;
}
void *loadThrowingMethod(void *, const char *) {
    return reinterpret_cast<void *>(throwingMethod);
}

host::ObjectHandle noItem(host::StringHandle, std::int64_t) {
    return nullptr;
}
void *loadNoItem(void *, const char *) {
    return reinterpret_cast<void *>(noItem);
}

} // namespace

TEST(FolderItemByPath, IsTheWayOfAVolumesRootFolder) {
    FolderItemScene scene;
    const host::ObjectRef item = scene.convert(rootFolder);
    EXPECT_THAT(
        scene.host.calls(),
        ElementsAre(
            "CFURLGetFSRef(url) = true", "FSGetCatalogInfo(\"/\", 0x10, info, nil, nil, ref) = 0",
            "FSGetCatalogInfo(\"/\", 0x0, nil, name, nil, nil) = 0",
            "FSGetCatalogInfo(zeroes, 0x0, nil, nil, nil, nil) = -35",
            "FSRefMakePath(\"/\", zeroed, 4096) = 0", "REALBuildString(\"/\", 1) = String#1",
            "REALSetStringEncoding(String#1, 0x08000100)", loadingTrueFolderItem("pointer"),
            "GetTrueFolderItem(String#1, 3) = FolderItem#1", "REALUnlockString(String#1)"));
    const host::FolderContent content = host::folderItem(item);
    EXPECT_FALSE(content.fromParent);
    EXPECT_EQ(content.pathMode, 3);
    EXPECT_EQ(content.path, "/");
    EXPECT_THAT(scene.host.liveStrings(), IsEmpty());
}

TEST(FolderItemByPath, IsTheWayOfEveryVolumesRootFolder) {
    FolderItemScene scene;
    const host::ObjectRef item = scene.convert(fs::path("/proc"));
    EXPECT_EQ(host::folderItem(item).pathMode, 3);
    EXPECT_EQ(host::folderItem(item).path, "/proc");
}

TEST(FolderItemByPath, LooksForTheMethodOnceInAProcess) {
    FolderItemScene scene;
    scene.convert(rootFolder);
    scene.host.clearTrace();
    scene.convert(rootFolder);
    scene.convert(fs::path("/proc"));
    EXPECT_THAT(linesWith(scene.host.trace(), "LoadGlobalMethod"), IsEmpty());
    EXPECT_THAT(linesWith(scene.host.trace(), "GetTrueFolderItem"),
                ElementsAre("GetTrueFolderItem(String#2, 3) = FolderItem#2",
                            "GetTrueFolderItem(String#3, 3) = FolderItem#3"));
}

TEST(FolderItemByPath, IsNilWithoutTheMethodAndDoesNotAskAgain) {
    FolderItemScene scene;
    scene.host.hideMethod(trueFolderItem);
    EXPECT_EQ(scene.convert(rootFolder).handle(), nullptr);
    EXPECT_THAT(linesWith(scene.host.calls(), "LoadGlobalMethod"),
                ElementsAre(loadingTrueFolderItem("nil")));
    EXPECT_EQ(scene.host.calls().back(), "REALUnlockString(String#1)");

    scene.host.showMethod(trueFolderItem);
    scene.host.clearTrace();
    EXPECT_EQ(scene.convert(rootFolder).handle(), nullptr);
    EXPECT_THAT(linesWith(scene.host.trace(), "LoadGlobalMethod"), IsEmpty());
    EXPECT_EQ(scene.host.calls().back(), "REALUnlockString(String#2)");
}

TEST(FolderItemByPath, LooksForTheMethodOnlyWhenItIsNeeded) {
    FolderItemScene scene;
    scene.convert(scene.folder.file("file"));
    scene.convert(scene.folder.path() / "absent");
    EXPECT_EQ(scene.host.services().lookups("REALLoadGlobalMethod"), 0u);
}

TEST(FolderItemByPath, IsNilWhereTheHostMakesNone) {
    FolderItemScene scene;
    scene.host.services().replace("REALLoadGlobalMethod", loadNoItem);
    EXPECT_EQ(scene.convert(rootFolder).handle(), nullptr);
    EXPECT_EQ(scene.host.calls().back(), "REALUnlockString(String#1)");
}

TEST(FolderItemByPath, IsTheWayWhereTheCatalogFails) {
    constexpr const char *calls[] = {"of the item", "of its name", "of its folder"};
    FolderItemScene scene;
    const fs::path file = scene.folder.file("file");
    for (int n = 1; n <= 3; ++n) {
        SCOPED_TRACE(calls[n - 1]);
        scene.host.clearTrace();
        scene.files.refuse("FSGetCatalogInfo", n);
        const host::ObjectRef item = scene.convert(file);
        ASSERT_NE(item.handle(), nullptr);
        EXPECT_FALSE(host::folderItem(item).fromParent);
        EXPECT_EQ(host::folderItem(item).pathMode, 3);
        EXPECT_EQ(host::folderItem(item).path, file);
        EXPECT_THAT(scene.host.calls(), Contains("FSRefMakePath(\"file\", zeroed, 4096) = 0"));
    }
}

// Nothing is asked of a parent that the catalog did not tell.
TEST(FolderItemByPath, FollowsAFailingCatalogAtOnce) {
    FolderItemScene scene;
    scene.files.refuse("FSGetCatalogInfo", 1);
    scene.convert(scene.folder.file("file"));
    EXPECT_THAT(linesWith(scene.host.calls(), "FS"),
                ElementsAre("CFURLGetFSRef(url) = true",
                            "FSGetCatalogInfo(\"file\", 0x10, info, nil, nil, ref) = -43",
                            "FSRefMakePath(\"file\", zeroed, 4096) = 0"));
}

// A name of more than 255 units when decomposed is one that the catalog cannot tell.
TEST(FolderItemByPath, IsTheWayOfANameThatIsTooLongForTheCatalog) {
    FolderItemScene scene;
    std::string name;
    for (int i = 0; i < 85; ++i)
        name += "\xE1\xBE\x82"; // three bytes, four units
    const fs::path file = scene.folder.file(name);
    const host::ObjectRef item = scene.convert(file);
    EXPECT_EQ(host::folderItem(item).pathMode, 3);
    EXPECT_EQ(host::folderItem(item).path, file) << "as UTF-8, and not cut";
}

TEST(FolderItemByPath, IsNilWithoutAPath) {
    FolderItemScene scene;
    scene.files.refuse("FSRefMakePath");
    EXPECT_EQ(scene.convert(rootFolder).handle(), nullptr);
    EXPECT_EQ(scene.host.trace().back(), "FSRefMakePath(\"/\", zeroed, 4096) = -43");
    EXPECT_EQ(scene.host.services().lookups("REALLoadGlobalMethod"), 0u);
}

TEST(FolderItemByPath, UsesAZeroedBufferEachTime) {
    FolderItemScene scene;
    scene.files.refuse("FSGetCatalogInfo", 1);
    scene.convert(scene.folder.file("a name longer than the next"));
    scene.convert(rootFolder);
    EXPECT_THAT(linesWith(scene.host.calls(), "FSRefMakePath"),
                ElementsAre("FSRefMakePath(\"a name longer than the next\", zeroed, 4096) = 0",
                            "FSRefMakePath(\"/\", zeroed, 4096) = 0"));
}

// The root folder's parent is no folder: all of its reference is zeroes, whatever was told.
TEST(RootFoldersParent, IsZeroes) {
    FolderItemScene scene;
    scene.files.answerNode(2);
    scene.files.findEverythingValid();
    scene.host.services().replace("REALFolderItemFromParentFSRef", receiveParent);
    EXPECT_EQ(scene.convert(scene.folder.file("file")).handle(), nullptr);
    EXPECT_THAT(scene.host.calls(),
                Contains("FSGetCatalogInfo(zeroes, 0x0, nil, nil, nil, nil) = 0"));
    ASSERT_TRUE(parentReceived);
    EXPECT_TRUE(std::ranges::all_of(parentReceived->hidden, [](UInt8 byte) { return byte == 0; }));
}

TEST(FolderItemByPath, ReleasesThePathWhenTheMethodThrows) {
    FolderItemScene scene;
    scene.host.services().replace("REALLoadGlobalMethod", loadThrowingMethod);
    thrownByMethod = Thrown::standard;
    EXPECT_EQ(standardExceptionFrom([&] { scene.convert(rootFolder); }), "on the way");
    EXPECT_EQ(scene.host.calls().back(), "REALUnlockString(String#1)");
    thrownByMethod = Thrown::cocoa;
    EXPECT_EQ(cocoaExceptionFrom([&] { scene.convert(rootFolder); }), "Refused: way");
    EXPECT_EQ(scene.host.calls().back(), "REALUnlockString(String#2)");
    EXPECT_THAT(scene.host.liveStrings(), IsEmpty());
    EXPECT_FALSE(scene.host.hasPendingException());
}
