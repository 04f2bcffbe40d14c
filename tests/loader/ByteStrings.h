#pragma once

#include <cstdint>
#include <cstring>
#include <filesystem>
#include <string>
#include <string_view>
#include <vector>

/// Files as bytes, to be damaged.

using ByteString = std::vector<std::uint8_t>;

ByteString bytes(std::string_view text);
ByteString readFile(const std::filesystem::path &file);
ByteString cut(const ByteString &whole, std::size_t end); // its first `end` bytes
std::string hexOf(std::uint64_t value);                   // "0x2d8"

/// A part of a universal file, with what the file's header says it is for.
struct UniversalPart {
    std::uint32_t processor;
    std::uint32_t subtype;
    ByteString contents;
};
ByteString universal(const std::vector<UniversalPart> &parts);

template <class Number>
Number get(const ByteString &from, std::size_t offset) {
    Number value;
    std::memcpy(&value, &from.at(offset + sizeof value - 1) - (sizeof value - 1), sizeof value);
    return value;
}

template <class Number>
void set(ByteString &to, std::size_t offset, Number value) {
    std::memcpy(&to.at(offset + sizeof value - 1) - (sizeof value - 1), &value, sizeof value);
}

template <class Number>
void append(ByteString &to, Number value) {
    to.resize(to.size() + sizeof value);
    set(to, to.size() - sizeof value, value);
}

/// A file with these contents for as long as this object lives.
class TemporaryFile {
public:
    explicit TemporaryFile(const ByteString &contents);
    ~TemporaryFile();
    TemporaryFile(const TemporaryFile &) = delete;
    TemporaryFile &operator=(const TemporaryFile &) = delete;
    [[nodiscard]] const std::filesystem::path &path() const { return path_; }

private:
    std::filesystem::path path_;
};
