// File references: CFURLGetFSRef, FSGetCatalogInfo and FSRefMakePath on real files.

#import "Cocoa.h"

#include "../WithoutPrivileges.h"

#include <cstring>
#include <filesystem>
#include <fstream>

#include <unistd.h>

namespace {

namespace fs = std::filesystem;

class FileReferences : public CocoaTest {
protected:
    ~FileReferences() override { fs::remove_all(folder_); }

    [[nodiscard]] const fs::path &folder() const { return folder_; }

    [[nodiscard]] fs::path file(const std::string &name) const {
        const fs::path path = folder_ / name;
        std::ofstream(path) << name;
        return path;
    }

    static bool reference(const fs::path &path, FSRef &ref) {
        NSString *const text = [NSString stringWithUTF8String:path.c_str()];
        return CFURLGetFSRef((CFURLRef)[NSURL fileURLWithPath:text], &ref) != 0;
    }

    static NSURL *url(const std::string &text, NSURL *base) {
        return [NSURL URLWithString:[NSString stringWithUTF8String:text.c_str()]
                      relativeToURL:base];
    }

    static bool referenceTo(const std::string &text, FSRef &ref, const std::string &base = "") {
        NSURL *const whole = base.empty() ? nil : url(base, nil);
        return CFURLGetFSRef((CFURLRef)url(text, whole), &ref) != 0;
    }

    static FSRef reference(const fs::path &path) {
        FSRef ref;
        EXPECT_TRUE(reference(path, ref)) << path;
        return ref;
    }

    static std::string path(const FSRef &ref) {
        UInt8 buffer[4096] = {};
        const OSStatus status = FSRefMakePath(&ref, buffer, sizeof buffer);
        return status == 0 ? reinterpret_cast<const char *>(buffer)
                           : "error " + std::to_string(status);
    }

    static OSErr info(const FSRef &ref, FSCatalogInfo *info, HFSUniStr255 *name = nullptr,
                      FSRef *parent = nullptr) {
        return FSGetCatalogInfo(&ref, info == nullptr ? kFSCatInfoNone : kFSCatInfoNodeID, info,
                                name, nullptr, parent);
    }

    static std::u16string name(const FSRef &ref) {
        HFSUniStr255 name;
        const OSErr status = info(ref, nullptr, &name);
        return status == 0 ? std::u16string(name.unicode, name.unicode + name.length) : u"(error)";
    }

private:
    static fs::path makeFolder() {
        std::string name = fs::canonical(fs::temp_directory_path()) / "standinXXXXXX";
        EXPECT_NE(mkdtemp(name.data()), nullptr);
        return name;
    }

    const fs::path folder_ = makeFolder();
};

/// The function's result as compilers for macOS take it: widened to 32 bits with its sign, which
/// Linux does not ask for on arm64.
template <typename Result, typename... Arguments>
auto wide(Result (*function)(Arguments...)) {
    return reinterpret_cast<std::int32_t (*)(Arguments...)>(reinterpret_cast<void (*)()>(function));
}

TEST_F(FileReferences, SmallResultsAreWidened) {
    FSRef ref{};
    const auto urlOf = [this](const char *name) {
        return (CFURLRef)
            [NSURL fileURLWithPath:[NSString stringWithUTF8String:(folder() / name).c_str()]];
    };
    EXPECT_EQ(wide(CFURLGetFSRef)(urlOf("none"), &ref), 0);
    const auto getInfo = wide(FSGetCatalogInfo);
    EXPECT_EQ(getInfo(nullptr, kFSCatInfoNone, nullptr, nullptr, nullptr, nullptr), -50);
    EXPECT_EQ(getInfo(&ref, kFSCatInfoNone, nullptr, nullptr, nullptr, nullptr), -35);
    const fs::path there = file("there");
    EXPECT_EQ(wide(CFURLGetFSRef)(urlOf("there"), &ref), 1);
    HFSUniStr255 name;
    FSRef parent;
    EXPECT_EQ(getInfo(&ref, kFSCatInfoNone, nullptr, &name, nullptr, &parent), 0);
    fs::remove(there);
    EXPECT_EQ(getInfo(&ref, kFSCatInfoNone, nullptr, &name, nullptr, &parent), -43);
}

TEST_F(FileReferences, LeadBackToTheFile) {
    const fs::path item = file("a file");
    EXPECT_EQ(path(reference(item)), item);
    EXPECT_EQ(path(reference(folder())), folder());
    EXPECT_EQ(path(reference("/")), "/");
}

TEST_F(FileReferences, AreOnlyMadeOfExistingFiles) {
    FSRef ref;
    EXPECT_FALSE(reference(folder() / "absent", ref));
    EXPECT_FALSE(reference(folder() / "absent" / "deeper", ref));
    EXPECT_FALSE(reference(file("plain") / "below", ref));
    NSURL *const web = [NSURL URLWithString:@"http://example.com/tmp"];
    EXPECT_FALSE(CFURLGetFSRef((CFURLRef)web, &ref));
}

TEST_F(FileReferences, TakeTheUrlOfAFolderWithAndWithoutSlash) {
    NSString *const text = [NSString stringWithUTF8String:folder().c_str()];
    NSURL *const url = [NSURL URLWithString:[NSString stringWithFormat:@"file://%@/", text]];
    FSRef ref;
    ASSERT_TRUE(CFURLGetFSRef((CFURLRef)url, &ref));
    EXPECT_EQ(path(ref), folder());
}

TEST_F(FileReferences, TakeTheFolderAboveTheRoot) {
    const auto root = (CFURLRef)[NSURL fileURLWithPath:@"/"];
    const CFURLRef above = CFURLCreateCopyDeletingLastPathComponent(nullptr, root);
    FSRef ref;
    ASSERT_TRUE(CFURLGetFSRef(above, &ref));
    EXPECT_EQ(path(ref), "/");
    CFRelease(above);
}

TEST_F(FileReferences, TakeAnySpellingOfTheScheme) {
    const fs::path item = file("item");
    FSRef ref;
    EXPECT_TRUE(referenceTo("FILE://" + item.string(), ref));
    EXPECT_EQ(path(ref), item);
    EXPECT_TRUE(referenceTo("file:" + item.string(), ref));
    EXPECT_TRUE(referenceTo("file://host" + item.string(), ref));
    EXPECT_FALSE(referenceTo("files://" + item.string(), ref));
    EXPECT_FALSE(referenceTo(item.string(), ref)) << "no scheme at all";
}

TEST_F(FileReferences, TakeASemicolonForPartOfThePath) {
    const fs::path whole = file("b;c");
    EXPECT_TRUE(fs::exists(file("b")));
    FSRef ref;
    ASSERT_TRUE(referenceTo("file://" + whole.string(), ref));
    EXPECT_EQ(path(ref), whole);
    EXPECT_FALSE(referenceTo("file://" + folder().string() + "/b;", ref));
    fs::create_directory(folder() / "p;q");
    const fs::path inner = file("p;q/x");
    ASSERT_TRUE(referenceTo("file://" + inner.string(), ref));
    EXPECT_EQ(path(ref), inner);
}

TEST_F(FileReferences, LookBehindNeitherQueryNorFragment) {
    const fs::path item = file("item");
    FSRef ref;
    EXPECT_TRUE(referenceTo("file://" + item.string() + "?q/r", ref));
    EXPECT_TRUE(referenceTo("file://" + item.string() + "#f?g", ref));
    EXPECT_EQ(path(ref), item);
}

TEST_F(FileReferences, UndoEscapes) {
    const fs::path item = file("a b%;\xC3\xBC");
    const std::string start = "file://" + folder().string() + "/";
    FSRef ref;
    ASSERT_TRUE(referenceTo(start + "a%20b%25%3b%C3%bc", ref));
    EXPECT_EQ(path(ref), item);
    EXPECT_FALSE(referenceTo(start + "%FF", ref)) << "no UTF-8";
    EXPECT_FALSE(referenceTo(start + "a%00", ref)) << "not part of a path";
    fs::create_directory(folder() / "s");
    EXPECT_TRUE(referenceTo("file://" + folder().string() + "%2Fs%2f", ref));
    EXPECT_EQ(path(ref), folder() / "s");
}

TEST_F(FileReferences, TakeOneSlashBehindAFileAndNotTwo) {
    const fs::path item = file("item");
    FSRef ref;
    EXPECT_TRUE(referenceTo("file://" + item.string() + "/", ref));
    EXPECT_FALSE(referenceTo("file://" + item.string() + "//", ref));
    EXPECT_TRUE(referenceTo("file://" + folder().string() + "//", ref));
    EXPECT_EQ(path(ref), folder());
}

TEST_F(FileReferences, OfRelativeUrlsAreThoseOfTheAbsoluteOnes) {
    fs::create_directory(folder() / "a");
    const fs::path item = file("a/item");
    const std::string base = "file://" + folder().string() + "/a/new";
    const struct {
        std::string text;
        fs::path path; // empty: there is none
    } rows[] = {
        {.text = "item", .path = item},
        {.text = "item?q#f", .path = item},
        {.text = "./item", .path = item},
        {.text = ".", .path = folder() / "a"},
        {.text = "..", .path = folder()},
        {.text = "../a/item", .path = item},
        {.text = "absent/../item", .path = item}, // folded before the file system sees it
        {.text = "absent/..", .path = folder() / "a"},
        {.text = "absent//../item", .path = {}},
        {.text = "", .path = {}}, // the base itself, which does not exist
        {.text = "?q", .path = {}},
        {.text = "#f", .path = {}},
        {.text = item.string(), .path = item},
        {.text = "//host" + item.string(), .path = item},
        {.text = "//" + item.string(), .path = item},
        {.text = "file://" + item.string(), .path = item},
        {.text = "http://example.com" + item.string(), .path = {}},
        {.text = "file:item", .path = {}},
    };
    for (const auto &row : rows) {
        FSRef ref;
        const bool found = referenceTo(row.text, ref, base);
        EXPECT_EQ(found ? fs::path(path(ref)) : fs::path(), row.path) << row.text;
    }
    FSRef ref;
    EXPECT_TRUE(referenceTo("", ref, "file://" + item.string()));
    EXPECT_TRUE(referenceTo("?q", ref, "file://" + item.string() + "#f"));
    EXPECT_EQ(path(ref), item);
    EXPECT_FALSE(referenceTo("file://" + folder().string() + "/absent/../a/item", ref))
        << "an absolute URL is not folded";
    EXPECT_TRUE(referenceTo(item.string().substr(1), ref, "file://host")) << "a host is a root";
    EXPECT_EQ(path(ref), item);
}

TEST_F(FileReferences, OfUrlsThatAreRelativeTwiceOver) {
    fs::create_directory(folder() / "a");
    const fs::path item = file("a/item");
    NSURL *const root = url("file://" + folder().string() + "/", nil);
    NSURL *const middle = url("absent/../a/", root);
    FSRef ref;
    ASSERT_TRUE(CFURLGetFSRef((CFURLRef)url("item", middle), &ref));
    EXPECT_EQ(path(ref), item);
    ASSERT_TRUE(CFURLGetFSRef((CFURLRef)url("", middle), &ref));
    EXPECT_EQ(path(ref), folder() / "a");
}

TEST_F(FileReferences, DoNotFollowALinkButTheFoldersBeforeIt) {
    const fs::path target = file("target");
    fs::create_symlink("target", folder() / "link");
    fs::create_directory_symlink(".", folder() / "again");
    EXPECT_EQ(path(reference(folder() / "link")), folder() / "link");
    EXPECT_EQ(path(reference(folder() / "again" / "target")), target);
}

TEST_F(FileReferences, OfOneFileAreAlike) {
    const fs::path item = file("same");
    const FSRef first = reference(item);
    const FSRef second = reference(folder() / ".." / folder().filename() / "same");
    EXPECT_EQ(std::memcmp(&first, &second, sizeof first), 0);
}

TEST_F(FileReferences, FindANameInAnotherFormOfTheSameText) {
    const fs::path composed = file("caf\xC3\xA9");
    EXPECT_EQ(path(reference(folder() / "cafe\xCC\x81")), composed);
    fs::create_directory(folder() / "u\xCC\x88");
    const fs::path inner = file("u\xCC\x88/o\xCC\x88");
    EXPECT_EQ(path(reference(folder() / "\xC3\xBC" / "\xC3\xB6")), inner);
    EXPECT_EQ(path(reference(folder() / "\xC3\xBC" / ".." / "caf\xC3\xA9")), composed);
    FSRef ref;
    EXPECT_FALSE(reference(folder() / "cafe", ref));
    EXPECT_FALSE(reference(folder() / "caf\xC3\xA8", ref));
}

TEST_F(FileReferences, PreferTheNameAsItIsSpelt) {
    const fs::path composed = file("\xC3\xA9");
    const fs::path decomposed = file("e\xCC\x81");
    EXPECT_EQ(path(reference(composed)), composed);
    EXPECT_EQ(path(reference(decomposed)), decomposed);
}

TEST_F(FileReferences, AreNotMadeOfItemsInAFolderThatMayNotBeSearched) {
    const fs::path closed = folder() / "closed";
    fs::create_directory(closed);
    const fs::path item = file("closed/item");
    fs::permissions(folder(), fs::perms::all);
    fs::permissions(closed, fs::perms::none);
    FSRef ref;
    {
        const WithoutPrivileges user;
        EXPECT_FALSE(reference(item, ref));
        EXPECT_FALSE(reference(closed / "\xC3\xA9", ref));
        EXPECT_TRUE(reference(closed, ref)) << "the folder itself can be seen";
    }
    fs::permissions(closed, fs::perms::all);
    EXPECT_EQ(path(reference(item)), item);
}

TEST_F(FileReferences, AreNotMadeOfNamesThatNoFolderCanHold) {
    FSRef ref;
    EXPECT_TRUE(reference(file(std::string(255, 'x')), ref));
    EXPECT_FALSE(reference(folder() / std::string(256, 'x'), ref));
    EXPECT_FALSE(reference(folder() / std::string(300, 'x'), ref));
    EXPECT_FALSE(reference(folder() / std::string(300, 'x') / "below", ref));
    EXPECT_FALSE(reference(std::string(5000, '/') + std::string(5000, 'x'), ref));
}

TEST_F(FileReferences, ExpireWithTheirFile) {
    const FSRef ref = reference(file("short-lived"));
    fs::remove(folder() / "short-lived");
    HFSUniStr255 name;
    EXPECT_EQ(info(ref, nullptr, &name), -43);
    EXPECT_EQ(path(ref), "error -43");
}

TEST_F(FileReferences, OfZeroesAreNotValid) {
    const FSRef blank = {};
    EXPECT_EQ(info(blank, nullptr), -35);
    EXPECT_EQ(path(blank), "error -35");
}

TEST_F(FileReferences, OfStrayBytesAreNotValid) {
    FSRef stray;
    std::memset(&stray, 0x5A, sizeof stray);
    EXPECT_EQ(info(stray, nullptr), -43);
    EXPECT_EQ(path(stray), "error -43");
}

TEST_F(FileReferences, KnowTheirNodeAndParent) {
    const FSRef ref = reference(file("child"));
    FSCatalogInfo child;
    std::memset(&child, 0x5A, sizeof child);
    FSRef parent;
    ASSERT_EQ(info(ref, &child, nullptr, &parent), 0);
    EXPECT_GE(child.nodeID, 16U);
    EXPECT_EQ(child.volume, 0x5A5A); // not asked for
    EXPECT_EQ(path(parent), folder());
    EXPECT_EQ(info(parent, nullptr), 0);

    FSCatalogInfo both;
    EXPECT_EQ(FSGetCatalogInfo(&ref, 0x04 | 0x08, &both, nullptr, nullptr, nullptr), 0);
    FSCatalogInfo folderInfo;
    ASSERT_EQ(info(parent, &folderInfo), 0);
    EXPECT_EQ(both.parentDirID, folderInfo.nodeID);
    EXPECT_LT(both.volume, 0);
}

TEST_F(FileReferences, OfAVolumeRootHaveNodeTwoAndNoValidParent) {
    const FSRef root = reference("/");
    FSCatalogInfo rootInfo;
    FSRef parent;
    ASSERT_EQ(info(root, &rootInfo, nullptr, &parent), 0);
    EXPECT_EQ(rootInfo.nodeID, 2U);
    EXPECT_NE(info(parent, nullptr), 0);
    EXPECT_FALSE(name(root).empty());

    ASSERT_EQ(info(reference("/proc"), &rootInfo), 0); // another file system's root
    EXPECT_EQ(rootInfo.nodeID, 2U);
    EXPECT_EQ(name(reference("/proc")), u"proc");
}

TEST_F(FileReferences, NamesAreDecomposedAsHfsStoresThem) {
    EXPECT_EQ(name(reference(file("plain.txt"))), u"plain.txt");
    EXPECT_EQ(name(reference(file("caf\xC3\xA9"))), u"cafe\u0301");
    // U+2260 and U+FB01 stay composed: the one by exception, the other has no canonical form.
    EXPECT_EQ(name(reference(file("\xE2\x89\xA0\xEF\xAC\x81"))), u"\u2260\uFB01");
}

// The slash is no separator there, but the colon is.
TEST_F(FileReferences, NamesHaveASlashForAColon) {
    const fs::path item = file("a:b::");
    EXPECT_EQ(name(reference(item)), u"a/b//");
    EXPECT_EQ(path(reference(item)), item);
}

TEST_F(FileReferences, NamesKeepAByteOrderMark) {
    const fs::path item = file("\xEF\xBB\xBF"
                               "a");
    EXPECT_EQ(name(reference(item)), u"\uFEFFa");
    const fs::path plain = file("a");
    EXPECT_EQ(name(reference(plain)), u"a");
    (void)file("\xEF\xBB\xBF\xC3\xA9");
    FSRef ref;
    EXPECT_FALSE(reference(folder() / "e\xCC\x81", ref)) << "another name";
}

TEST_F(FileReferences, NamesThatHfsCannotStoreAreErrors) {
    HFSUniStr255 out;
    std::string longName; // 85 characters of three bytes, which decompose into four units each
    for (int count = 0; count < 85; ++count) {
        longName += "\xE1\xBE\x82";
    }
    EXPECT_EQ(info(reference(file(longName)), nullptr, &out), -37);
    const std::string full(255, 'x');
    EXPECT_EQ(name(reference(file(full))), std::u16string(255, u'x'));
}

TEST_F(FileReferences, PathsNeedRoomForTheTerminator) {
    const fs::path item = file("p");
    const FSRef ref = reference(item);
    const auto length = static_cast<UInt32>(item.string().size());
    std::vector<UInt8> buffer(length + 1, 0x5A);
    EXPECT_EQ(FSRefMakePath(&ref, buffer.data(), length), -2110);
    EXPECT_EQ(FSRefMakePath(&ref, buffer.data(), length + 1), 0);
    EXPECT_EQ(buffer[length], 0);
}

TEST_F(FileReferences, BadArgumentsAreErrors) {
    const FSRef ref = reference(folder());
    UInt8 buffer[1];
    EXPECT_EQ(FSGetCatalogInfo(nullptr, kFSCatInfoNone, nullptr, nullptr, nullptr, nullptr), -50);
    EXPECT_EQ(FSGetCatalogInfo(&ref, 0x20, nullptr, nullptr, nullptr, nullptr), -50);
    EXPECT_EQ(FSRefMakePath(nullptr, buffer, 1), -50);
    EXPECT_EQ(FSRefMakePath(&ref, nullptr, 0), -50);
}

} // namespace
