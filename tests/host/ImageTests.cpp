#include "host/processor/Processor.h"
#include "tests/host/FakePlugin.h"

#include <filesystem>
#include <fstream>

extern "C" int hostTestWeak;
extern "C" int hostTestStrong();

int hostTestWeak = 7;
int hostTestStrong() {
    return 11;
}

namespace {

using namespace host;
using testing::AllOf;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::Not;
using testing::StartsWith;
using testing::ThrowsMessage;

namespace fs = std::filesystem;

fs::path imageNamed(std::string_view name) {
    return fs::path(HOST_TEST_IMAGES) / (std::string(name) + ".so");
}

/// A file or folder of the test's own, empty at first.
fs::path scratch(std::string_view name) {
    const fs::path path = fs::path(testing::TempDir()) / "host-images" / name;
    fs::remove_all(path);
    fs::create_directories(path.parent_path());
    return path;
}

std::string contentOf(const fs::path &file) {
    std::ifstream stream(file, std::ios::binary);
    return {std::istreambuf_iterator<char>(stream), {}};
}

fs::path fileWith(std::string_view name, const std::string &content) {
    const fs::path path = scratch(name);
    std::ofstream(path, std::ios::binary) << content;
    return path;
}

void expectRefused(const fs::path &path, const std::string &what) {
    EXPECT_THAT([&] { openImage(path); },
                ThrowsMessage<ImageError>(
                    AllOf(StartsWith(path.string()), HasSubstr(what), Not(HasSubstr("\n")))));
}

const std::string noSharedObject = "no shared object for " + std::string(processor::name);

TEST(Image, SharedObjectGivesItsEntryPoint) {
    Host host;
    Image &image = host.loadPlugin(imageNamed("Minimal"));
    EXPECT_EQ(image.format(), ImageFormat::elf);
    EXPECT_EQ(image.file(), imageNamed("Minimal"));
    EXPECT_THAT(host.trace(), ElementsAre("find REALLockObject"));
    auto *count = reinterpret_cast<int (*)()>(image.symbol("callCount"));
    ASSERT_NE(count, nullptr);
    EXPECT_GE(count(), 1);
}

TEST(Image, LocalAndHiddenSymbolsAreFound) {
    const auto image = openImage(imageNamed("Minimal"));
    auto *local = reinterpret_cast<int (*)()>(image->symbol("localFunction"));
    ASSERT_NE(local, nullptr);
    EXPECT_EQ(local(), 42);
    auto *strong = reinterpret_cast<int (*)()>(image->symbol("callStrong"));
    ASSERT_NE(strong, nullptr);
    EXPECT_EQ(strong(), 11);
    EXPECT_EQ(image->symbol("REALPluginMain"), reinterpret_cast<void *>(image->entryPoint()));
    EXPECT_EQ(image->symbol("noSuchSymbol"), nullptr);
    EXPECT_EQ(image->symbol("hostTestStrong"), nullptr) << "imports are not the image's";
}

TEST(Image, FunctionsAreFoundByDemangledName) {
    const auto image = openImage(imageNamed("Mangled"));
    const auto call = [&](const char *name) {
        auto *function = reinterpret_cast<int (*)(int)>(image->symbolDemangled(name));
        return function == nullptr ? 0 : function(0);
    };
    EXPECT_EQ(call("family::overloaded(int)"), 1);
    EXPECT_EQ(call("family::overloaded(char const*)"), 2);
    EXPECT_EQ(call("family::single(unsigned char const*, long, unsigned int)"), 3);
    EXPECT_EQ(call("family::single"), 3);
    EXPECT_EQ(call("family::overloaded"), 0) << "two functions have this name";
    EXPECT_EQ(call("family::sing"), 0);
}

TEST(Image, KnowsItsOwnAddresses) {
    const auto image = openImage(imageNamed("Minimal"));
    EXPECT_TRUE(image->contains(image->symbol("localFunction")));
    EXPECT_TRUE(image->contains(image->symbol("calls")));
    EXPECT_FALSE(image->contains(reinterpret_cast<void *>(&hostTestStrong)));
    EXPECT_FALSE(image->contains(nullptr));
}

int *weakAddressIn(const Image &image) {
    return reinterpret_cast<int *(*)()>(image.symbol("weakAddress"))();
}

TEST(Image, WeakImportsResolveWhereTheSystemHasThem) {
    // A file of its own, since one that was loaded before keeps what it was given.
    const fs::path copy = scratch("weak-present.so");
    fs::copy_file(imageNamed("Minimal"), copy);
    EXPECT_EQ(weakAddressIn(*openImage(copy)), &hostTestWeak);
}

TEST(Image, WithheldWeakImportsAreNull) {
    const fs::path copy = scratch("weak-withheld.so");
    fs::copy_file(imageNamed("Minimal"), copy);
    const auto image = openImage(copy, {.withheldImports = {"hostTestWeak"}});
    EXPECT_EQ(weakAddressIn(*image), nullptr);
}

TEST(Image, WithheldStrongImportsAreMissing) {
    EXPECT_THAT(
        [] { openImage(imageNamed("Minimal"), {.withheldImports = {"hostTestStrong"}}); },
        ThrowsMessage<ImageError>(imageNamed("Minimal").string() +
                                  ": imports that this system does not have: hostTestStrong"));
}

TEST(Image, AnUnresolvedImportIsNamed) {
    const fs::path path = imageNamed("Unresolved");
    EXPECT_THAT([&] { openImage(path); },
                ThrowsMessage<ImageError>(path.string() + ": cannot be loaded: " + path.string() +
                                          ": undefined symbol: secondMissingImport"));
}

TEST(BadImage, MissingFile) {
    expectRefused("/no/such/file", "no such file");
    expectRefused(scratch("missing.bundle"), "no such file");
    EXPECT_THAT([] { openImage(""); }, ThrowsMessage<ImageError>("\"\": no such file"));
}

TEST(BadImage, EmptyFile) {
    expectRefused(fileWith("empty", ""), "empty");
}

TEST(BadImage, TextFile) {
    expectRefused(fileWith("text", "Hello\n\tworld"), R"(it starts with "Hello\x0A\x09world")");
}

TEST(BadImage, ShortFiles) {
    expectRefused(fileWith("short-1", "\x7F"), "neither a Mach-O bundle nor a shared object");
    expectRefused(fileWith("short-2", "\x7F"
                                      "ELF"),
                  "");
    expectRefused(fileWith("short-3", "\xCF\xFA\xED\xFE"), "");
}

TEST(BadImage, Directories) {
    const fs::path folder = scratch("folder");
    fs::create_directories(folder);
    expectRefused(folder, "no bundle: it has no Contents");
    fs::create_directories(folder / "Contents");
    expectRefused(folder,
                  "a bundle without its executable " + (folder / "Contents/MacOS/folder").string());
}

TEST(BadImage, DeviceFiles) {
    expectRefused("/dev/null", "not a regular file");
}

TEST(BadImage, SharedObjectWithoutTheEntryPointIsNotRun) {
    expectRefused(imageNamed("NoEntryPoint"), "no plug-in: it does not export REALPluginMain");
}

TEST(BadImage, OtherProcessors) {
    std::string content = contentOf(imageNamed("Minimal"));
    content[18] = static_cast<char>(content[18] ^ 0x3E ^ 0xB7); // x86-64 becomes arm64, that x86-64
    expectRefused(fileWith("other.so", content), noSharedObject);
    content[4] = 1;
    expectRefused(fileWith("narrow.so", content), "");
}

TEST(BadImage, NoSharedObject) {
    std::string content = contentOf(imageNamed("Minimal"));
    content[16] = 1;
    expectRefused(fileWith("object.o", content), noSharedObject);
}

TEST(BadImage, CutAnywhere) {
    const std::string content = contentOf(imageNamed("Minimal"));
    for (std::size_t size = 0; size < content.size(); size += 61)
        expectRefused(fileWith("cut.so", content.substr(0, size)), "");
}

TEST(BadImage, SegmentsPastTheEndOfTheFile) {
    std::string content = contentOf(imageNamed("Minimal"));
    // Program headers follow the file's header; each has its type at 0, its size in the file at 32.
    std::size_t header = 64;
    while (content[header] != 1)
        header += 56;
    content[header + 32 + 3] = 0x40;
    expectRefused(fileWith("segment.so", content), "damaged");
}

TEST(Bundle, ExecutableIsTheOneThatThePropertyListNames) {
    const fs::path bundle = scratch("Named.bundle");
    fs::create_directories(bundle / "Contents/MacOS");
    std::ofstream(bundle / "Contents/Info.plist")
        << "<plist><dict><key>Other</key><string>x</string>"
           "<key>CFBundleExecutable</key>\n <string>Inner</string></dict></plist>";
    fs::copy_file(imageNamed("Minimal"), bundle / "Contents/MacOS/Inner");
    EXPECT_EQ(openImage(bundle)->file(), bundle / "Contents/MacOS/Inner");
}

TEST(Bundle, ExecutableDefaultsToTheBundlesName) {
    const fs::path bundle = scratch("Plain.bundle");
    fs::create_directories(bundle / "Contents/MacOS");
    fs::copy_file(imageNamed("Minimal"), bundle / "Contents/MacOS/Plain");
    EXPECT_EQ(openImage(bundle)->file(), bundle / "Contents/MacOS/Plain");
    EXPECT_EQ(openImage(bundle / "")->file().filename(), "Plain");
}

} // namespace
