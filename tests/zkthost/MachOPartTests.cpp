// Mach-O files as describe reads them: those that no loader here takes, and damaged ones.

#include "Slices.h"

#include "host/zkthost/ImageParts.h"
#include "host/zkthost/MachOSignature.h"
#include "host/zkthost/Options.h"

#include <gmock/gmock.h>

#include <cstdint>
#include <fstream>
#include <initializer_list>
#include <iterator>
#include <string>

using zkthost::InputError;
using zkthost::machOParts;
using zkthost::signatureOf;

namespace {

std::string bundleBytes() {
    std::ifstream stream(MACOS_BUNDLE "/Contents/MacOS/NSProcessInfoZKT", std::ios::binary);
    return sliceOf({std::istreambuf_iterator<char>(stream), {}}, intel);
}

std::string bigEndian(std::initializer_list<std::uint32_t> words) {
    std::string bytes;
    for (const std::uint32_t word : words)
        for (int shift = 24; shift >= 0; shift -= 8)
            bytes += static_cast<char>(word >> shift);
    return bytes;
}

std::string littleEndian(std::initializer_list<std::uint32_t> words) {
    std::string bytes;
    for (const std::uint32_t word : words)
        for (int shift = 0; shift < 32; shift += 8)
            bytes += static_cast<char>(word >> shift);
    return bytes;
}

std::string padded(std::string bytes, std::size_t size) {
    return bytes.append(size - bytes.size(), '\0');
}

/// A file of 64 bits for Apple silicon, a library with one load command.
std::string armLibrary(const std::string &command) {
    return littleEndian({0xFEEDFACF, 0x0100000C, 0, 6, 1,
                         static_cast<std::uint32_t>(command.size()), 0, 0}) +
           command;
}

/// A signature with one blob in a slot.
std::string signature(std::uint32_t slot, const std::string &blob) {
    return bigEndian({0xFADE0CC0, static_cast<std::uint32_t>(20 + blob.size()), 1, slot, 20}) +
           blob;
}

} // namespace

TEST(MachOPart, OfTheOtherByteOrderAndWidth) {
    const auto parts = machOParts(bigEndian({0xFEEDFACE, 18, 0, 2, 0, 0, 0}));
    ASSERT_EQ(parts.size(), 1u);
    EXPECT_EQ(parts.front().facts.processor, "ppc");
    EXPECT_EQ(parts.front().facts.kind, "program");
}

TEST(MachOPart, OfUnknownProcessorsAndKindsBearsTheirNumbers) {
    const auto parts = machOParts(littleEndian({0xFEEDFACE, 99, 0, 77, 0, 0, 0}));
    EXPECT_EQ(parts.front().facts.processor, "processor 99");
    EXPECT_EQ(parts.front().facts.kind, "file type 77");
}

TEST(MachOPart, TellsTheSystemsOfNewFiles) {
    const auto facts =
        machOParts(armLibrary(littleEndian({0x32, 24, 1, 0x000B0000, 0x000E0501, 0})))
            .front()
            .facts;
    EXPECT_EQ(facts.processor, "arm64");
    EXPECT_EQ(facts.kind, "library");
    EXPECT_EQ(facts.leastSystem, "11.0");
    EXPECT_EQ(facts.builtFor, "14.5.1");
    EXPECT_FALSE(facts.identity);
    EXPECT_FALSE(facts.signature);
}

TEST(MachOPart, OfEachProcessorOfAUniversalFile) {
    const std::string bundle = bundleBytes();
    const std::string arm = armLibrary(littleEndian({0x7FFFFFFF, 8}));
    const auto size = static_cast<std::uint32_t>(bundle.size());
    const auto armSize = static_cast<std::uint32_t>(arm.size());
    const auto alone = machOParts(bundle).front();
    const std::string narrow = bigEndian(
        {0xCAFEBABE, 2, 0x01000007, 3, 4096, size, 12, 0x0100000C, 0, 4096 + size, armSize, 12});
    const std::string wide = bigEndian({0xCAFEBABF, 2, 0x01000007, 3, 0, 4096, 0, size, 12, 0,
                                        0x0100000C, 0, 0, 4096 + size, 0, armSize, 12, 0});
    for (const std::string &header : {narrow, wide}) {
        const auto parts = machOParts(padded(header, 4096) + bundle + arm);
        ASSERT_EQ(parts.size(), 2u);
        EXPECT_EQ(parts.front().facts.processor, "x86_64");
        EXPECT_EQ(parts.front().facts.identity, alone.facts.identity);
        EXPECT_EQ(parts.front().facts.libraries.size(), alone.facts.libraries.size());
        EXPECT_EQ(parts.front().propertyList, alone.propertyList);
        EXPECT_EQ(parts.back().facts.processor, "arm64");
    }
    EXPECT_THAT(alone.propertyList, testing::HasSubstr("zkt.NSProcessInfoZKT"));
    EXPECT_THROW(machOParts(padded(narrow, 4096) + bundle), InputError);
}

TEST(MachOPart, OfAFileThatEndsEarlyIsRefused) {
    const std::string bundle = bundleBytes();
    for (std::size_t size = 0; size < bundle.size(); size += size < 4096 ? 1 : 997)
        EXPECT_THROW(machOParts(std::string_view(bundle).substr(0, size)), InputError) << size;
}

TEST(MachOPart, OfAnotherFileIsRefused) {
    EXPECT_THROW(machOParts("#!/bin/sh\n"), InputError);
}

TEST(MachOSignature, AdHocOrNot) {
    // Flags at 12, the identifier's place at 20.
    const std::string directory = bigEndian({0xFADE0C02, 32, 0x20100, 2, 0, 24});
    const auto adHoc = signatureOf(signature(0, directory + padded("some.name", 12)));
    EXPECT_TRUE(adHoc.isAdHoc);
    EXPECT_EQ(adHoc.identifier, "some.name");
    const std::string other = bigEndian({0xFADE0C02, 32, 0x20100, 0, 0, 24}) + padded("name", 8);
    EXPECT_FALSE(signatureOf(signature(0, other)).isAdHoc);
}

TEST(MachOSignature, WithACertificateIsNotAdHoc) {
    EXPECT_TRUE(signatureOf(signature(0x10000, bigEndian({0xFADE0B01, 8}))).isAdHoc);
    EXPECT_FALSE(signatureOf(signature(0x10000, bigEndian({0xFADE0B01, 9}) + "x")).isAdHoc);
}

TEST(MachOSignature, ThatEndsEarlyIsRefused) {
    const std::string whole = signature(0, bigEndian({0xFADE0C02, 32, 0x20100, 2, 0, 24}));
    for (std::size_t size = 0; size < whole.size(); ++size)
        EXPECT_THROW(signatureOf(std::string_view(whole).substr(0, size)), InputError) << size;
}
