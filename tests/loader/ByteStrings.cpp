#include "tests/loader/ByteStrings.h"

#include <cstdlib>
#include <fstream>
#include <iterator>
#include <sstream>
#include <stdexcept>

#include <unistd.h>

ByteString bytes(std::string_view text) {
    return {text.begin(), text.end()};
}

ByteString readFile(const std::filesystem::path &file) {
    std::ifstream stream(file, std::ios::binary);
    if (!stream)
        throw std::runtime_error("cannot read " + file.string());
    return {std::istreambuf_iterator<char>(stream), {}};
}

ByteString cut(const ByteString &whole, std::size_t end) {
    return {whole.data(), whole.data() + end};
}

std::string hexOf(std::uint64_t value) {
    std::ostringstream text;
    text << "0x" << std::hex << value;
    return text.str();
}

ByteString universal(const std::vector<UniversalPart> &parts) {
    constexpr std::size_t alignment = 4096;
    ByteString file;
    const auto word = [&](std::size_t value) {
        append(file, __builtin_bswap32(static_cast<std::uint32_t>(value)));
    };
    word(0xcafebabe);
    word(parts.size());
    std::size_t offset = alignment;
    for (const auto &[processor, subtype, contents] : parts) {
        word(processor);
        word(subtype);
        word(offset);
        word(contents.size());
        word(12); // alignment: 2^12
        offset += (contents.size() + alignment - 1) / alignment * alignment;
    }
    for (const auto &[processor, subtype, contents] : parts) {
        file.resize((file.size() + alignment - 1) / alignment * alignment);
        file.insert(file.end(), contents.begin(), contents.end());
    }
    return file;
}

TemporaryFile::TemporaryFile(const ByteString &contents) {
    std::string name = std::filesystem::temp_directory_path() / "loader-test-XXXXXX";
    const int file = mkstemp(name.data());
    if (file < 0 ||
        write(file, contents.data(), contents.size()) != static_cast<ssize_t>(contents.size()))
        throw std::runtime_error("cannot write " + name);
    close(file);
    path_ = name;
}

TemporaryFile::~TemporaryFile() {
    std::filesystem::remove(path_);
}
