#include "host/classes/Inspect.h"
#include "tests/host/FakePlugin.h"
#include "tests/host/FileReference.h"

#include <CoreFoundation/CoreFoundation.h>
#include <CoreServices/CoreServices.h>

#include <cstring>
#include <filesystem>

namespace {

using namespace host;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

constexpr const char *dateDeclaration =
    "Year as Integer, Month as Integer = 1, Day as Integer = 1, hour as Integer = 0, minute as "
    "Integer = 0, second as Integer = 0";

void setInteger(ObjectHandle object, const char *property, std::int64_t value,
                bool success = true) {
    EXPECT_EQ((service<bool(ObjectHandle, const char *, std::int64_t)>("REALSetPropValueInteger")(
                  object, property, value)),
              success)
        << property;
}

TEST(DateClass, IsSetByItsConstructor) {
    Host host;
    const ObjectHandle date = pluginNewInstance("Date");
    auto *construct =
        reinterpret_cast<void (*)(ObjectHandle, std::int64_t, std::int64_t, std::int64_t,
                                  std::int64_t, std::int64_t, std::int64_t)>(
            loadObjectMethod(date, dateDeclaration));
    ASSERT_NE(construct, nullptr);
    host.clearTrace();
    construct(date, 2001, 2, 3, 4, 5, 6);
    EXPECT_EQ(dateParts(date), (DateParts{2001, 2, 3, 4, 5, 6}));
    EXPECT_THAT(host.calls(), ElementsAre("Date.Constructor(Date#1, 2001, 2, 3, 4, 5, 6)"));
    unlockObject(date);
}

TEST(DateClass, IsSetByItsProperties) {
    Host host;
    const ObjectHandle date = pluginNewInstance("Date");
    setInteger(date, "Year", 1999);
    setInteger(date, "Month", 12);
    setInteger(date, "Day", 31);
    setInteger(date, "Hour", 23);
    setInteger(date, "Minute", 59);
    setInteger(date, "Second", 58);
    EXPECT_EQ(dateParts(date), (DateParts{1999, 12, 31, 23, 59, 58}));
    std::int64_t year = 0;
    EXPECT_TRUE((service<bool(ObjectHandle, const char *, std::int64_t *)>(
        "REALGetPropValueInteger")(date, "year", &year)));
    EXPECT_EQ(year, 1999);
    unlockObject(date);
}

TEST(DateClass, CarriesFieldsThatPassTheirRange) {
    Host host;
    const std::pair<Values, DateParts> rows[] = {
        {{2000, 13}, {2001, 1, 1, 0, 0, 0}},
        {{2000, 0}, {1999, 12, 1, 0, 0, 0}},
        {{2000, 2, 30}, {2000, 3, 1, 0, 0, 0}},
        {{2001, 1, 0}, {2000, 12, 31, 0, 0, 0}},
        {{2000, 1, 1, 25}, {2000, 1, 2, 1, 0, 0}},
        {{2000, 1, 1, 0, -1}, {1999, 12, 31, 23, 59, 0}},
        {{2000, -11}, {1999, 1, 1, 0, 0, 0}},
        {{-1, 1}, {-1, 1, 1, 0, 0, 0}},
        {{2000, 1, 1, 0, 0, 86400}, {2000, 1, 2, 0, 0, 0}},
    };
    for (const auto &[arguments, expected] : rows)
        EXPECT_EQ(dateParts(host.newObject("Date", arguments).object()), expected)
            << describe(arguments[0]) << ' ' << describe(arguments[1]);
}

TEST(Properties, ByNameFailQuietlyWhenAbsentOrOfAnotherType) {
    Host host;
    const ObjectRef date = host.newInstance("Date");
    const ObjectRef block = host.newInstance("MemoryBlock");
    setInteger(date, "Century", 20, false);
    setInteger(block, "Size", 20, false);
    EXPECT_FALSE((service<bool(ObjectHandle, const char *, StringHandle)>("REALSetPropValueString")(
        date, "Year", nullptr)));
    std::int64_t untouched = 77;
    EXPECT_FALSE((service<bool(ObjectHandle, const char *, std::int64_t *)>(
        "REALGetPropValueInteger")(date, "Century", &untouched)));
    EXPECT_EQ(untouched, 77);
    EXPECT_THAT(host.violations(), IsEmpty());
    setInteger(date, nullptr, 1, false);
    EXPECT_FALSE((service<bool(ObjectHandle, const char *, std::int64_t *)>(
        "REALGetPropValueInteger")(date, "Year", nullptr)));
    EXPECT_THAT(host.violations(),
                ElementsAre("REALSetPropValueInteger: got no property name",
                            "REALGetPropValueInteger: got no place for the result"));
}

TEST(MemoryBlocks, FromTheService) {
    Host host;
    const ObjectHandle block = service<ObjectHandle(std::int32_t)>("newMemoryBlock")(4);
    EXPECT_EQ(host.name(block), "MemoryBlock#1");
    EXPECT_EQ(memoryBlockBytes(block), std::string(4, '\0'));
    auto *bytes = service<void *(ObjectHandle)>("memoryBlockGetPtr")(block);
    std::memcpy(bytes, "abcd", 4);
    EXPECT_EQ(memoryBlockBytes(block), "abcd");
    EXPECT_EQ(service<std::int64_t(ObjectHandle)>("memoryBlockGetSize")(block), 4);
    auto *convert = reinterpret_cast<void *(*)(ObjectHandle)>(
        loadObjectMethod(block, "Operator_Convert() As Ptr"));
    ASSERT_NE(convert, nullptr);
    EXPECT_EQ(convert(block), bytes);
    unlockObject(block);
}

TEST(MemoryBlocks, FromTheConstructor) {
    Host host;
    const ObjectHandle block = pluginNewInstance("MemoryBlock");
    EXPECT_EQ(memoryBlockSize(block), 0U);
    auto *construct = reinterpret_cast<void (*)(ObjectHandle, std::int64_t)>(
        loadObjectMethod(block, "Constructor(bytes as Integer)"));
    ASSERT_NE(construct, nullptr);
    construct(block, 3'000'000'000);
    std::int64_t size = 0;
    EXPECT_TRUE((service<bool(ObjectHandle, const char *, std::int64_t *)>(
        "REALGetPropValueInteger")(block, "Size", &size)));
    EXPECT_EQ(size, 3'000'000'000);
    unlockObject(block);
}

TEST(MemoryBlocks, PastTheLimit) {
    Host host{{.memoryBlockLimit = 10}};
    const auto make = service<ObjectHandle(std::int32_t)>("newMemoryBlock");
    EXPECT_EQ(make(11), nullptr);
    EXPECT_FALSE(host.hasPendingException());
    const Outcome refused = host.newObject("MemoryBlock", {11});
    ASSERT_TRUE(refused.raised());
    EXPECT_EQ(refused.exception->className, "OutOfMemoryException");
    EXPECT_TRUE(refused.value.isNil());
    EXPECT_EQ(memoryBlockSize(host.newObject("MemoryBlock", {10}).object()), 10U);
    host.setMemoryBlockLimit(9);
    EXPECT_EQ(make(10), nullptr);
}

TEST(MemoryBlocks, NegativeSizes) {
    Host host;
    EXPECT_EQ(service<ObjectHandle(std::int32_t)>("newMemoryBlock")(-1), nullptr);
    EXPECT_THAT(host.violations(), ElementsAre("newMemoryBlock: got the size -1"));
    EXPECT_EQ(host.newObject("MemoryBlock", {-1}).exception->className, "OutOfBoundsException");
}

TEST(MemoryBlocks, PointerOfSomethingElse) {
    Host host;
    const ObjectRef date = host.newInstance("Date");
    EXPECT_EQ(service<void *(ObjectHandle)>("memoryBlockGetPtr")(date), nullptr);
    EXPECT_EQ(service<std::int64_t(ObjectHandle)>("memoryBlockGetSize")(date), 0);
    EXPECT_THAT(host.violations(),
                ElementsAre(HasSubstr("got Date#1 where a live MemoryBlock is needed"),
                            HasSubstr("got Date#1 where a live MemoryBlock is needed")));
}

/// A folder of the test's own, as the File Manager refers to it.
struct FolderItems : testing::Test {
    FolderItems() {
        folder = std::filesystem::path(testing::TempDir()) / "folder-items";
        std::filesystem::create_directories(folder);
        EXPECT_TRUE(makeFileReference(folder, &reference));
    }
    static ObjectHandle make(const FSRef &parent, const HFSUniStr255 &name) {
        return service<ObjectHandle(const FSRef *, const HFSUniStr255 *)>(
            "REALFolderItemFromParentFSRef")(&parent, &name);
    }

    Host host;
    std::filesystem::path folder;
    FSRef reference{};
};

TEST_F(FolderItems, FromAParentFolderAndAName) {
    HFSUniStr255 name{.length = 3, .unicode = {'e', 0x0301, 'x', 'y'}};
    const ObjectHandle item = make(reference, name);
    const FolderContent content = folderItem(item);
    EXPECT_TRUE(content.fromParent);
    EXPECT_EQ(content.name, u"e\u0301x");
    EXPECT_EQ(content.parent, std::filesystem::canonical(folder));
    EXPECT_EQ(content.path, std::filesystem::canonical(folder) / "e\xCC\x81x");
    EXPECT_EQ(host.get(item, "Name").text(), "e\xCC\x81x");
    EXPECT_FALSE(host.get(item, "Exists").boolean());
    unlockObject(item);
}

TEST_F(FolderItems, FromATruePath) {
    auto *make = reinterpret_cast<ObjectHandle (*)(StringHandle, std::int64_t)>(
        service<void *(void *, const char *)>("REALLoadGlobalMethod")(
            nullptr, "GetTrueFolderItem(path As String, pathMode As Integer) As FolderItem"));
    ASSERT_NE(make, nullptr);
    const StringRef path = host.makeString(folder.string());
    const ObjectHandle item = make(path, 3);
    EXPECT_FALSE(folderItem(item).fromParent);
    EXPECT_EQ(folderItem(item).pathMode, 3);
    EXPECT_EQ(host.get(item, "NativePath").text(), folder.string());
    EXPECT_TRUE(host.get(item, "Exists").boolean());
    unlockObject(item);
    EXPECT_EQ(make(path, 0), nullptr);
    EXPECT_THAT(host.violations(),
                ElementsAre(HasSubstr("GetTrueFolderItem: got the path mode 0")));
}

TEST_F(FolderItems, BadReferencesAndNamesAreViolations) {
    const HFSUniStr255 name{.length = 1, .unicode = {'a'}};
    const HFSUniStr255 tooLong{.length = 256, .unicode = {}};
    EXPECT_EQ(make(FSRef{}, name), nullptr);
    EXPECT_EQ(make(reference, tooLong), nullptr);
    EXPECT_EQ((service<ObjectHandle(const void *, const void *)>("REALFolderItemFromParentFSRef")(
                  nullptr, &name)),
              nullptr);
    EXPECT_THAT(host.violations(),
                ElementsAre(HasSubstr("got a parent folder that the File Manager refuses"),
                            HasSubstr("got a name of 256 units"),
                            HasSubstr("got no parent folder or no name")));
}

TEST(CFStrings, AreMadeFromEveryEncoding) {
    Host host;
    const auto toCF = service<CFStringRef(StringHandle, std::int32_t)>("REALGetStringCFString");
    const std::pair<std::uint32_t, std::string> rows[] = {
        {encoding::macRoman, "\x8E"},   {encoding::latin1, "\xE9"},
        {encoding::utf8, "\xC3\xA9"},   {encoding::windowsLatin1, "\xE9"},
        {encoding::utf16, {"\xE9", 2}}, {encoding::utf32, {"\xE9\0\0", 4}}};
    for (const auto &[number, bytes] : rows) {
        const StringRef string = host.makeString(bytes, number);
        const CFStringRef text = toCF(string, 0);
        ASSERT_NE(text, nullptr);
        UniChar unit = 0;
        ASSERT_EQ(CFStringGetLength(text), 1) << number;
        CFStringGetCharacters(text, CFRangeMake(0, 1), &unit);
        EXPECT_EQ(unit, 0xE9) << number;
        CFRelease(text);
    }
    const StringRef unknown = host.makeString("a", encoding::unknown);
    EXPECT_EQ(toCF(unknown, 0), nullptr);
}

} // namespace
