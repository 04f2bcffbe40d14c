// Images that were cut off or changed: refused with one message, whatever is wrong with them.

#include "Slices.h"
#include "Zkthost.h"

#include <gmock/gmock.h>

#include <cstdint>
#include <cstring>
#include <elf.h>
#include <set>

using testing::HasSubstr;

namespace {

template <class Number>
Number numberAt(const std::string &bytes, std::size_t offset) {
    Number number;
    std::memcpy(&number, bytes.data() + offset, sizeof number);
    return number;
}

template <class Number>
void setNumber(std::string &bytes, std::size_t offset, Number number) {
    std::memcpy(bytes.data() + offset, &number, sizeof number);
}

// A Mach-O file's header.
constexpr std::size_t processorOffset = 4;
constexpr std::size_t fileTypeOffset = 12;
constexpr std::size_t commandCountOffset = 16;
constexpr std::size_t commandsOffset = 32;

/// The offsets of all load commands, and where the last one ends.
std::set<std::size_t> commandBorders(const std::string &bytes) {
    std::set<std::size_t> borders{commandsOffset};
    std::size_t at = commandsOffset;
    for (auto left = numberAt<std::uint32_t>(bytes, commandCountOffset); left > 0; --left) {
        at += numberAt<std::uint32_t>(bytes, at + 4);
        borders.insert(at);
    }
    return borders;
}

std::set<std::size_t> programHeaderBorders(const std::string &bytes) {
    const auto header = numberAt<Elf64_Ehdr>(bytes, 0);
    std::set<std::size_t> borders;
    for (std::size_t i = 0; i <= header.e_phnum; ++i)
        borders.insert(header.e_phoff + i * header.e_phentsize);
    return borders;
}

/// Puts another text of the same length in the place of each occurrence.
void replaceAll(std::string &bytes, std::string_view text, std::string_view other) {
    ASSERT_EQ(text.size(), other.size());
    std::size_t at = bytes.find(text);
    ASSERT_NE(at, std::string::npos) << text;
    for (; at != std::string::npos; at = bytes.find(text, at + text.size()))
        bytes.replace(at, text.size(), other);
}

class DamagedImage : public testing::Test {
protected:
    Finished runWith(const std::string &changed) {
        return zkthost({"report"}, folder.write("image", changed));
    }
    void expectRefused(const std::string &changed) { expectRefused(changed, "image"); }
    void expectRefused(const std::string &changed, std::string_view mentioned) {
        const Finished run = runWith(changed);
        expectBadInput(run, (folder.path() / "image").string());
        EXPECT_THAT(run.err, HasSubstr(std::string(mentioned)));
    }

    const Folder folder;
    std::string macos = sliceOf(readFile(macosImage().executable));
    std::string linuxObject = readFile(linuxImage().executable);
};

} // namespace

TEST_F(DamagedImage, CopyWithoutDamageWorks) {
    expectSuccess(runWith(macos));
    expectSuccess(runWith(linuxObject));
}

TEST_F(DamagedImage, BundleCutInItsHeader) {
    for (std::size_t size = 1; size < commandsOffset; ++size) {
        SCOPED_TRACE(size);
        expectRefused(macos.substr(0, size));
    }
}

TEST_F(DamagedImage, BundleCutAtEachLoadCommand) {
    const auto borders = commandBorders(macos);
    ASSERT_GT(borders.size(), 10u);
    for (const std::size_t border : borders)
        for (const std::size_t size : {border - 1, border, border + 1, border + 8}) {
            SCOPED_TRACE(size);
            expectRefused(macos.substr(0, size));
        }
}

TEST_F(DamagedImage, BundleCutInItsContents) {
    for (const std::size_t size :
         {macos.size() / 4, macos.size() / 2, macos.size() - 4096, macos.size() - 1}) {
        SCOPED_TRACE(size);
        expectRefused(macos.substr(0, size));
    }
}

TEST_F(DamagedImage, ObjectCutInItsHeaders) {
    for (const std::size_t size : {1u, 3u, 4u, 5u, 16u, 63u}) {
        SCOPED_TRACE(size);
        expectRefused(linuxObject.substr(0, size));
    }
    for (const std::size_t border : programHeaderBorders(linuxObject)) {
        SCOPED_TRACE(border);
        expectRefused(linuxObject.substr(0, border));
        expectRefused(linuxObject.substr(0, border + 8));
    }
}

TEST_F(DamagedImage, ObjectCutInItsContents) {
    for (const std::size_t size :
         {linuxObject.size() / 64, linuxObject.size() / 4, linuxObject.size() / 2,
          linuxObject.size() - 4096, linuxObject.size() - 1}) {
        SCOPED_TRACE(size);
        expectRefused(linuxObject.substr(0, size));
    }
}

TEST_F(DamagedImage, BundleForAnotherProcessor) {
    setNumber(macos, processorOffset, otherProcessor.number);
    expectRefused(macos, otherProcessor.name);
}

TEST_F(DamagedImage, BundleForAnUnknownProcessor) {
    setNumber(macos, processorOffset, std::uint32_t{0x01234567});
    expectRefused(macos);
}

TEST_F(DamagedImage, ObjectForAnotherProcessor) {
    setNumber(linuxObject, offsetof(Elf64_Ehdr, e_machine),
              static_cast<std::uint16_t>(processor::elfMachine ^ EM_X86_64 ^ EM_AARCH64));
    expectRefused(linuxObject, "no shared object for " + std::string(processor::name));
}

TEST_F(DamagedImage, ObjectOfAnotherWordSize) {
    linuxObject[EI_CLASS] = ELFCLASS32;
    expectRefused(linuxObject);
}

TEST_F(DamagedImage, ObjectOfAnotherByteOrder) {
    linuxObject[EI_DATA] = ELFDATA2MSB;
    expectRefused(linuxObject);
}

TEST_F(DamagedImage, ObjectThatIsAProgram) {
    setNumber(linuxObject, offsetof(Elf64_Ehdr, e_type), std::uint16_t{ET_EXEC});
    expectRefused(linuxObject);
}

TEST_F(DamagedImage, BundleThatIsAProgram) {
    setNumber(macos, fileTypeOffset, std::uint32_t{2});
    expectRefused(macos);
}

TEST_F(DamagedImage, BundleWithMoreLoadCommandsThanItHas) {
    setNumber(macos, commandCountOffset, std::uint32_t{0xFFFFFFFF});
    expectRefused(macos);
}

TEST_F(DamagedImage, BundleWithLoadCommandsOfNoSize) {
    for (const std::size_t border : commandBorders(macos)) {
        std::string changed = macos;
        setNumber(changed, border + 4, std::uint32_t{0});
        if (border == *commandBorders(macos).rbegin())
            break; // behind the last
        SCOPED_TRACE(border);
        expectRefused(changed);
    }
}

TEST_F(DamagedImage, BundleWithoutTheEntryPoint) {
    replaceAll(macos, "REALPluginMain", "REALPluginMine");
    expectRefused(macos, "REALPluginMain");
}

TEST_F(DamagedImage, ObjectWithoutTheEntryPoint) {
    replaceAll(linuxObject, "REALPluginMain", "REALPluginMine");
    expectRefused(linuxObject, "REALPluginMain");
}

TEST_F(DamagedImage, BundleThatImportsUnknownFunctions) {
    replaceAll(macos, "_CFStringGetLength", "_CFStringGetLenghX");
    replaceAll(macos, "_CFDictionaryGetValue", "_CFDictionaryGetVolue");
    expectRefused(macos, "CFStringGetLenghX");
    expectRefused(macos, "CFDictionaryGetVolue");
}

TEST_F(DamagedImage, BundleThatImportsAnUnknownClass) {
    replaceAll(macos, "_OBJC_CLASS_$_NSProcessInfo", "_OBJC_CLASS_$_NSProcessXnfo");
    expectRefused(macos, "NSProcessXnfo");
}

TEST_F(DamagedImage, ObjectThatImportsAnUnknownFunction) {
    replaceAll(linuxObject, "CFStringGetLength", "CFStringGetLenghX");
    expectRefused(linuxObject, "undefined symbol: CFStringGetLenghX");
}

namespace {

void appendBigEndian(std::string &bytes, std::uint32_t number) {
    for (const int shift : {24, 16, 8, 0})
        bytes.push_back(static_cast<char>(number >> shift));
}

/// A universal file with one slice, at 4096.
std::string universal(const MachOProcessor &processor, const std::string &slice) {
    std::string bytes;
    for (const std::uint32_t word : {0xCAFEBABEu, 1u, processor.number, processor.kind, 4096u,
                                     static_cast<std::uint32_t>(slice.size()), 12u})
        appendBigEndian(bytes, word);
    bytes.resize(4096);
    return bytes + slice;
}

} // namespace

TEST_F(DamagedImage, UniversalFileWithTheRightSliceWorks) {
    expectSuccess(runWith(universal(ownProcessor, macos)));
}

TEST_F(DamagedImage, UniversalFileForAnotherProcessor) {
    setNumber(macos, processorOffset, otherProcessor.number);
    expectRefused(universal(otherProcessor, macos), otherProcessor.name);
}

TEST_F(DamagedImage, UniversalFileCut) {
    const std::string whole = universal(ownProcessor, macos);
    for (const std::size_t size : {4u, 8u, 20u, 28u, 4096u, 4100u, 8192u}) {
        SCOPED_TRACE(size);
        expectRefused(whole.substr(0, size));
    }
}
