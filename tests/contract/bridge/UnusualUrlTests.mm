// Folder items from file URLs that are written in unusual ways.

#import "FolderItemScene.h"

#include <gtest/gtest.h>

namespace fs = std::filesystem;

namespace {

struct UnusualUrl : testing::Test {
    FolderItemScene scene;
    const fs::path folder = scene.folder.path();
    const std::string start = "file://" + folder.string();

    static NSURL *relative(const std::string &text, const std::string &base) {
        return [NSURL URLWithString:@(text.c_str()) relativeToURL:urlFrom(base)];
    }
    /// The folder, a bar, and the name that the host was given; "nil" without an item.
    std::string itemOf(NSURL *url) {
        const host::ObjectRef item = scene.convert(url);
        if (item.handle() == nullptr)
            return "nil";
        const host::FolderContent content = host::folderItem(item);
        return content.parent.string() + '|' +
               std::string(content.name.begin(), content.name.end());
    }
    [[nodiscard]] std::string in(const fs::path &parent, const std::string &name) const {
        return (parent.empty() ? folder : folder / parent).string() + '|' + name;
    }
};

} // namespace

TEST_F(UnusualUrl, WithASemicolonNamesWhatHasOne) {
    scene.folder.file("a;b");
    scene.folder.file("a");
    fs::create_directory(folder / "p;q");
    EXPECT_EQ(itemOf(urlFrom(start + "/a;b")), in("", "a;b"));
    EXPECT_EQ(itemOf(urlFrom(start + "/a;new")), in("", "a;new")) << "and not the existing a";
    EXPECT_EQ(itemOf(urlFrom(start + "/new;")), in("", "new;"));
    EXPECT_EQ(itemOf(urlFrom(start + "/p;q/x")), in("p;q", "x"));
}

TEST_F(UnusualUrl, InAnySpellingOfTheScheme) {
    scene.folder.file("a");
    EXPECT_EQ(itemOf(urlFrom("FILE://" + (folder / "a").string())), in("", "a"));
    EXPECT_EQ(itemOf(urlFrom("file:" + (folder / "new").string())), in("", "new"));
    EXPECT_EQ(itemOf(urlFrom("file:a/b")), "nil") << "no path without a slash";
}

TEST_F(UnusualUrl, RelativeNamesWhatTheAbsoluteOneDoes) {
    scene.folder.file("a");
    EXPECT_EQ(itemOf(relative("a", start + "/")), in("", "a"));
    EXPECT_EQ(itemOf(relative("new", start + "/")), in("", "new"));
    EXPECT_EQ(itemOf(relative("new/../a", start + "/")), in("", "a"));
    EXPECT_EQ(itemOf(relative("new/../x", start + "/")), in("", "x"));
    EXPECT_EQ(itemOf(relative("new/..", start + "/")), scene.folder.around().string() + "|folder");
}

TEST_F(UnusualUrl, RelativeWithoutAPathIsAnItemOnlyIfItExists) {
    scene.folder.file("a");
    for (const char *text : {"", "?q", "#f"}) {
        SCOPED_TRACE(text);
        EXPECT_EQ(itemOf(relative(text, start + "/a")), in("", "a"));
        EXPECT_EQ(itemOf(relative(text, start + "/new")), "nil");
    }
}

TEST_F(UnusualUrl, EndingInTwoSlashesNamesNothingInItself) {
    fs::create_directory(folder / "a");
    EXPECT_EQ(itemOf(urlFrom(start + "/a//")), in("", "a"));
    EXPECT_EQ(itemOf(urlFrom(start + "/new//")), "nil") << "new is no folder to go up from";
}

TEST_F(UnusualUrl, OfAHostAloneIsTheRootFolderWithoutAName) {
    EXPECT_EQ(itemOf(urlFrom("file://localhost")), "/|");
}

// The File Manager's separator is the colon.
TEST_F(UnusualUrl, OfAnExistingFileWithAColonHasASlashInItsName) {
    const fs::path file = scene.folder.file("a:b");
    const host::ObjectRef item = scene.convert(file);
    EXPECT_EQ(host::folderItem(item).name, u"a/b");
    EXPECT_EQ(host::folderItem(item).path, file) << "and leads back to it";
    EXPECT_TRUE(scene.host.get(item, "Exists").boolean());
}

TEST_F(UnusualUrl, OfAMissingFileWithAColonKeepsIt) {
    const host::ObjectRef item = scene.convert(folder / "a:b");
    EXPECT_EQ(host::folderItem(item).name, u"a:b");
    EXPECT_EQ(host::folderItem(item).path, folder / "a:b");
}

TEST_F(UnusualUrl, OfANameWithAByteOrderMarkKeepsIt) {
    const fs::path file = scene.folder.file("\xEF\xBB\xBF"
                                            "a");
    const host::ObjectRef item = scene.convert(urlFrom(start + "/%EF%BB%BFa"));
    EXPECT_EQ(host::folderItem(item).name, u"\uFEFFa");
    EXPECT_EQ(host::folderItem(item).path, file);
}
