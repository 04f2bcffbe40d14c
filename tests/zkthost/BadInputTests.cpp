// Files that are no plug-in at all: refused with one message that says what and where.

#include "Zkthost.h"

#include <gmock/gmock.h>

#include <dlfcn.h>
#include <unistd.h>

namespace fs = std::filesystem;
using testing::HasSubstr;

namespace {

constexpr const char *commands[] = {"report", "describe"};

void expectRefused(const fs::path &file) {
    for (const char *command : commands) {
        SCOPED_TRACE(command);
        expectBadInput(zkthost({command}, file), file.string());
    }
}

} // namespace

TEST(Image, ThatIsNotThere) {
    const Folder folder;
    expectRefused(folder.path() / "missing.bundle");
}

TEST(Image, InAFolderThatIsNotThere) {
    const Folder folder;
    expectRefused(folder.path() / "missing" / "plug-in.so");
}

TEST(Image, BelowAFile) {
    const Folder folder;
    expectRefused(folder.write("file", "text") / "plug-in.so");
}

TEST(Image, WithoutAName) {
    expectBadInput(zkthost({"report"}, ""), "--image is followed by no file name");
}

// The program looks for the bundle of its own build when it is given none.
TEST(Image, ThatIsNotGivenAndNotBuilt) {
    const Folder folder;
    fs::create_directory(folder.path() / "linux");
    const fs::path program = folder.path() / "linux" / "zkthost";
    fs::copy_file(ZKTHOST_PROGRAM, program);
    for (const char *command : commands) {
        const Finished run = runProgram(program, {command});
        expectBadInput(run, (folder.path() / "macos/NSProcessInfoZKT.bundle").string());
        EXPECT_THAT(run.err, HasSubstr("./dev build"));
        EXPECT_THAT(run.err, HasSubstr("--image"));
    }
}

TEST(Image, ThatIsNotGivenIsTheBundleOfTheBuild) {
    const Folder folder;
    fs::create_directories(folder.path() / "linux");
    fs::create_directories(folder.path() / "macos");
    fs::copy_file(ZKTHOST_PROGRAM, folder.path() / "linux" / "zkthost");
    fs::copy(macosImage().path, folder.path() / "macos" / "NSProcessInfoZKT.bundle",
             fs::copy_options::recursive);
    const Finished run = runProgram(folder.path() / "linux" / "zkthost", {"report"});
    expectSuccess(run);
    EXPECT_THAT(run.out, HasSubstr((folder.path() / "macos/NSProcessInfoZKT.bundle").string()));
}

TEST(Image, ThatIsAnEmptyFile) {
    const Folder folder;
    expectRefused(folder.write("empty.so", ""));
}

TEST(Image, ThatIsAText) {
    const Folder folder;
    expectRefused(folder.write("text.so", "#!/bin/sh\necho no plug-in\n"));
}

TEST(Image, ThatIsATextOfOneByte) {
    const Folder folder;
    expectRefused(folder.write("byte.so", "x"));
}

TEST(Image, ThatIsBytesOfNoKnownFormat) {
    const Folder folder;
    expectRefused(folder.write("noise.so", std::string(5000, '\xA5')));
}

TEST(Image, ThatIsADevice) {
    expectRefused("/dev/null");
    expectRefused("/dev/zero");
}

TEST(Image, ThatIsAnEmptyFolder) {
    const Folder folder;
    expectRefused(folder.path());
}

TEST(Image, ThatIsABundleWithoutCode) {
    const Folder folder;
    const fs::path bundle = folder.path() / "Hollow.bundle";
    fs::create_directories(bundle / "Contents" / "MacOS");
    expectRefused(bundle);
}

TEST(Image, ThatIsABundleWhoseCodeIsAText) {
    const Folder folder;
    const fs::path bundle = folder.path() / "Text.bundle";
    fs::create_directories(bundle / "Contents" / "MacOS");
    folder.write("Text.bundle/Contents/MacOS/Text", "text\n");
    expectRefused(bundle);
}

TEST(Image, ThatIsABundleWhosePropertyListNamesAMissingFile) {
    const Folder folder;
    const fs::path bundle = folder.path() / "Named.bundle";
    fs::copy(macosImage().path, bundle, fs::copy_options::recursive);
    fs::remove(bundle / "Contents" / "MacOS" / macosImage().executable.filename());
    expectRefused(bundle);
}

TEST(Image, ThatIsABundleWithADamagedPropertyListIsFoundByItsName) {
    const Folder folder;
    const fs::path bundle = folder.path() / macosImage().path.filename();
    fs::copy(macosImage().path, bundle, fs::copy_options::recursive);
    folder.write(bundle.filename().string() + "/Contents/Info.plist", "no property list");
    expectSuccess(zkthost({"describe"}, bundle));
}

TEST(Image, ThatIsALibraryWithoutTheEntryPoint) {
    Dl_info library = {};
    ASSERT_NE(dladdr(reinterpret_cast<const void *>(&getpid), &library), 0);
    for (const char *command : commands) {
        const Finished run = zkthost({command}, library.dli_fname);
        expectBadInput(run, library.dli_fname);
        EXPECT_THAT(run.err, HasSubstr("REALPluginMain"));
    }
}

TEST(Image, ThatIsAProgram) {
    expectRefused(ZKTHOST_PROGRAM);
}

TEST(Image, MayBeTheExecutableInsideTheBundle) {
    expectSuccess(zkthost({"report"}, macosImage().executable));
}

TEST(Image, MayHaveASlashBehindTheBundlesName) {
    expectSuccess(zkthost({"report"}, macosImage().path.string() + "/"));
}

TEST(Image, MayHaveANameThatIsNoUtf8) {
    if (isEmulated())
        GTEST_SKIP() << "an emulator shows GNUstep its own copy of the command line, as it was";
    const Folder folder;
    const fs::path image = folder.path() / "pl\xFCg.so";
    fs::copy_file(macosImage().executable, image);
    expectSuccess(zkthost({"describe"}, image));
    fs::remove(image);
    expectBadInput(zkthost({"describe"}, image), "pl\xEF\xBF\xBDg.so: no such file");
}

TEST(Image, MayHaveBlanksAndOtherLettersInItsName) {
    const Folder folder;
    const fs::path place = folder.path() / "Gr\xC3\xBC\xC3\x9F dich";
    fs::create_directory(place);
    const fs::path bundle = place / macosImage().path.filename();
    fs::copy(macosImage().path, bundle, fs::copy_options::recursive);
    expectSuccess(zkthost({"report"}, bundle));
    for (const ImageFile &image : images()) {
        fs::copy_file(image.executable, place / "plug in", fs::copy_options::overwrite_existing);
        expectSuccess(zkthost({"report"}, place / "plug in"));
    }
}

TEST(Surroundings, OfBytesThatAreNotTextAreNoObstacle) {
    // An e with an accent in ISO Latin 1, a surrogate, a sequence that ends too soon.
    ASSERT_EQ(setenv("ZKTHOST_TEST", "caf\xE9 \xED\xA0\x80 \xE2\x82", 1), 0);
    expectSuccess(zkthost({"report"}, macosImage().path));
}
