#include "tests/loader/TestImages.h"

#include "macos/loader/MachOFile.h"
#include "macos/loader/Mapping.h"

#include <array>
#include <cerrno>
#include <cstdint>
#include <fstream>
#include <map>
#include <sstream>

#include <gmock/gmock.h>
#include <sys/mman.h>
#include <unistd.h>

namespace {

using macho::Image;
using macho::LoadError;
using macho::LoadOptions;

class PlainImage : public testing::TestWithParam<const char *> {
protected:
    [[nodiscard]] LoadedImage load(const LoadOptions &options = {}) const {
        return {GetParam(), "Plain", options};
    }
};
INSTANTIATE_TEST_SUITE_P(, PlainImage, testing::ValuesIn(allVariants), variantName);

/// The access rights ("r-xp") of every mapping that begins in the image, in order.
std::vector<std::string> accessRights(const Image &image) {
    std::vector<std::string> rights;
    std::ifstream maps("/proc/self/maps");
    const auto base = reinterpret_cast<std::uintptr_t>(image.base());
    for (std::string line; std::getline(maps, line);) {
        std::uintptr_t begin = 0, end = 0;
        char dash = 0;
        std::string access;
        std::istringstream(line) >> std::hex >> begin >> dash >> end >> access;
        if (begin < base + image.size() && end > base)
            rights.push_back(access);
    }
    return rights;
}

TEST_P(PlainImage, callsExportedFunctions) {
    const auto plain = load();
    EXPECT_EQ(plain.function<int(int, int)>("add")(19, 23), 42);
}

TEST_P(PlainImage, pointersInDataFollowTheImage) {
    const auto plain = load();
    const auto greeting = plain.function<const char *(int)>("greeting");
    EXPECT_STREQ(greeting(0), "hello");
    EXPECT_STREQ(greeting(2), "guten Tag");
    const auto *data = plain.function<int>("exportedData");
    EXPECT_EQ(*data, 17);
    EXPECT_EQ(*plain.function<int *>("exportedPointer"), data);
}

TEST_P(PlainImage, zeroFilledDataIsZeroAndWritable) {
    const auto plain = load();
    const auto sum = plain.function<int()>("sumOfZeroes");
    EXPECT_EQ(sum(), 0);
    EXPECT_EQ(sum(), 5000);
}

TEST_P(PlainImage, everyLoadHasDataOfItsOwn) {
    const auto one = load(), other = load();
    one.function<int()>("sumOfZeroes")();
    EXPECT_EQ(other.function<int()>("sumOfZeroes")(), 0);
    EXPECT_NE(one.image.base(), other.image.base());
}

TEST_P(PlainImage, initialisersRunOnceWithAnEnvironment) {
    const auto plain = load();
    EXPECT_EQ(plain.function<int()>("constructorsRun")(), 1);
    EXPECT_TRUE(plain.function<bool()>("initialiserHadEnvironment")());
}

TEST_P(PlainImage, whatWasRegisteredToRunAtExitRunsWhenTheImageEnds) {
    int counter = 0;
    {
        const auto plain = load();
        plain.function<void(int *)>("onExit")(&counter);
        EXPECT_EQ(counter, 0);
    }
    EXPECT_EQ(counter, 1);
}

TEST_P(PlainImage, localSymbolsAreFoundByName) {
    const auto plain = load();
    void *local = plain.image.localSymbol("_ZN12_GLOBAL__N_114hiddenFunctionEi");
    ASSERT_NE(local, nullptr);
    EXPECT_EQ(local, reinterpret_cast<void *>(plain.function<int (*())(int)>("hidden")()));
    EXPECT_EQ(reinterpret_cast<int (*)(int)>(local)(14), 42);
    EXPECT_EQ(plain.image.exportedSymbol("_ZN12_GLOBAL__N_114hiddenFunctionEi"), nullptr);
    EXPECT_EQ(plain.image.localSymbol("add"), plain.image.exportedSymbol("add"));
}

TEST_P(PlainImage, unknownNamesAreNull) {
    const auto plain = load();
    EXPECT_EQ(plain.image.exportedSymbol("subtract"), nullptr);
    EXPECT_EQ(plain.image.exportedSymbol("_add"), nullptr);
    EXPECT_EQ(plain.image.exportedSymbol(""), nullptr);
    EXPECT_EQ(plain.image.localSymbol("subtract"), nullptr);
}

TEST_P(PlainImage, enumeratesExportsAndSymbols) {
    const auto plain = load();
    std::map<std::string, void *, std::less<>> exports, symbols;
    plain.image.forEachExport([&](auto name, auto *address) { exports.emplace(name, address); });
    plain.image.forEachSymbol([&](auto name, auto *address) { symbols.emplace(name, address); });
    EXPECT_EQ(exports.at("add"), plain.image.exportedSymbol("add"));
    EXPECT_EQ(symbols.at("add"), plain.image.exportedSymbol("add"));
    EXPECT_TRUE(exports.contains("_Z10newIntegeri"));
    EXPECT_FALSE(exports.contains("_ZN12_GLOBAL__N_114hiddenFunctionEi"));
    EXPECT_TRUE(symbols.contains("_ZN12_GLOBAL__N_114hiddenFunctionEi"));
    for (const auto &[name, address] : exports)
        EXPECT_EQ(plain.image.exportedSymbol(name), address) << name;
}

TEST_P(PlainImage, knowsItsPlaceAndSource) {
    const auto plain = load();
    EXPECT_EQ(plain.image.source(), imageFile(std::string(GetParam()) + "/Plain"));
    EXPECT_EQ(*static_cast<std::uint32_t *>(plain.image.base()), 0xfeedfacfU);
    EXPECT_EQ(plain.image.size() % macho::Processor::ofThisProgram().pageSize, 0U);
    const auto *base = static_cast<char *>(plain.image.base());
    const auto *add = static_cast<char *>(plain.image.exportedSymbol("add"));
    EXPECT_GT(add, base);
    EXPECT_LT(add, base + plain.image.size());
}

TEST_P(PlainImage, movesWithoutMovingItsMemory) {
    auto plain = load();
    void *base = plain.image.base();
    Image moved = std::move(plain.image);
    EXPECT_EQ(moved.base(), base);
    EXPECT_EQ(reinterpret_cast<int (*)(int, int)>(moved.exportedSymbol("add"))(1, 2), 3);
}

TEST_P(PlainImage, nothingIsWritableAndExecutable) {
    const auto plain = load();
    const auto rights = accessRights(plain.image);
    ASSERT_FALSE(rights.empty());
    EXPECT_EQ(rights.front(), "r-xp");
    EXPECT_THAT(rights, testing::Contains("r--p"));
    EXPECT_THAT(rights, testing::Contains("rw-p"));
    EXPECT_THAT(rights, testing::Not(testing::Contains(testing::HasSubstr("wx"))));
    for (const auto &access : rights)
        EXPECT_NE(access.substr(0, 3), "rwx");
}

/// True when the byte at `address` may be changed. The system is asked, which traps nobody.
bool isWritable(std::byte *address) {
    int ends[2];
    if (pipe(ends) != 0)
        throw std::runtime_error("no pipe");
    const bool taken = write(ends[1], address, 1) == 1 && ::read(ends[0], address, 1) == 1;
    close(ends[0]);
    close(ends[1]);
    return taken;
}

TEST_P(PlainImage, onlyDataIsWritableOnceBound) {
    const auto plain = load();
    const auto file = macho::MachOFile::open(plain.image.source());
    std::string writable, others;
    for (const auto &segment : file.plan().segments)
        (isWritable(static_cast<std::byte *>(plain.image.base()) + segment.offset) ? writable
                                                                                   : others) +=
            segment.name;
    EXPECT_EQ(writable, "__DATA");
    // Constant data that takes fixups is a segment of its own, but not in the oldest images.
    const bool hasConstants = &macho::Processor::ofThisProgram() == &macho::Processor::arm64 ||
                              std::string(GetParam()).starts_with("chained");
    EXPECT_EQ(others, hasConstants ? "__TEXT__DATA_CONST__LINKEDIT" : "__TEXT__LINKEDIT");
}

TEST_P(PlainImage, leavesNothingMappedBehind) {
    void *base = nullptr;
    std::size_t size = 0;
    {
        const auto plain = load();
        base = plain.image.base();
        size = plain.image.size();
    }
    EXPECT_EQ(msync(base, size, MS_ASYNC), -1);
    EXPECT_EQ(errno, ENOMEM); // nothing is mapped there
}

TEST_P(PlainImage, importsFromTheProgramAndItsLibraries) {
    const auto plain = load();
    EXPECT_EQ(plain.function<int(int)>("callHost")(5), 1005);
    EXPECT_EQ(plain.function<int()>("identify")(), getpid());
    EXPECT_EQ(plain.function<int *()>("errorAddress")(), &errno);
    const std::unique_ptr<int> made(plain.function<int *(int)>("_Z10newIntegeri")(12));
    EXPECT_EQ(*made, 12);
}

TEST_P(PlainImage, missingWeakImportsAreNullWhateverIsAddedToThem) {
    const auto plain = load();
    EXPECT_TRUE(plain.function<bool()>("absentFunctionIsNull")());
    EXPECT_EQ(plain.function<char *()>("absentDataPointer")(), nullptr);
}

TEST_P(PlainImage, importsFromAWeakLibraryMayBeMissing) {
    const auto plain = load();
    EXPECT_TRUE(plain.function<bool()>("weakLibraryFunctionIsNull")());
}

TEST_P(PlainImage, withheldWeakImportsAreNull) {
    LoadOptions options;
    options.withheldImports.insert("getpid");
    const auto plain = load(options);
    EXPECT_EQ(plain.function<int()>("identify")(), -1);
}

TEST_P(PlainImage, withheldStrongImportsAreUnresolved) {
    LoadOptions options;
    options.withheldImports = {"malloc", "hostNumber"};
    try {
        static_cast<void>(load(options));
        FAIL() << "loaded";
    } catch (const LoadError &error) {
        const auto file = imageFile(std::string(GetParam()) + "/Plain").string();
        EXPECT_EQ(error.what(), file + ": 2 symbols are exported by nobody here:\n"
                                       "  hostNumber (from /usr/lib/libhostclasses.dylib)\n"
                                       "  malloc (from /usr/lib/libSystem.B.dylib)");
    }
}

TEST_P(PlainImage, weakDefinitionsAreItsOwn) {
    const auto plain = load();
    EXPECT_EQ(plain.function<int()>("callChosen")(), 7);
}

TEST_P(PlainImage, guardedBuffersWork) {
    const auto plain = load();
    EXPECT_EQ(plain.function<unsigned long(const char *)>("guardedLength")("twelve chars"), 12U);
}

TEST(Image, needsPagesNoLargerThanItsOwn) {
    macho::ImagePlan plan;
    plan.source = "image";
    plan.size = plan.pageSize = 2048;
    try {
        const macho::Mapping mapping(plan);
        FAIL() << "mapped";
    } catch (const LoadError &error) {
        EXPECT_EQ(error.what(), "image: its segments begin at multiples of 2048 bytes, but this "
                                "system's pages have " +
                                    std::to_string(sysconf(_SC_PAGESIZE)));
    }
}

TEST(Image, loadsLibraries) {
    const auto library = Image::load(imageFile("Library"));
    EXPECT_EQ(reinterpret_cast<int (*)()>(library.exportedSymbol("nothing"))(), 0);
}

TEST(Image, loadsManyTimesWithoutGrowth) {
    const auto load = [] { return Image::load(imageFile("classicOptimised/Plain")).size(); };
    const auto pages = [] {
        std::size_t total = 0, resident = 0;
        std::ifstream("/proc/self/statm") >> total >> resident;
        return total;
    };
    for (int i = 0; i < 20; ++i)
        load();
    const auto before = pages();
    for (int i = 0; i < 500; ++i)
        load();
    EXPECT_LT(pages(), before + 500);
}

} // namespace
