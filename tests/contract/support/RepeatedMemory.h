#pragma once

#include <cstddef>
#include <span>

/// A range of addresses as long as one likes, over little memory: every chunk is the same one, but
/// for the last, which is of its own. Zero at first, and readable and writable.
class RepeatedMemory {
public:
    static constexpr std::size_t chunkSize = std::size_t{2} << 20;

    /// At least so many bytes: the last chunk reaches past them. Throws std::system_error.
    explicit RepeatedMemory(std::size_t size);
    ~RepeatedMemory();
    RepeatedMemory(const RepeatedMemory &) = delete;
    RepeatedMemory &operator=(const RepeatedMemory &) = delete;

    [[nodiscard]] unsigned char *begin() const { return begin_; }
    /// The one that all chunks but the last are.
    [[nodiscard]] std::span<unsigned char> repeated() const { return {begin_, chunkSize}; }
    [[nodiscard]] std::span<unsigned char> last() const {
        return {begin_ + size_ - chunkSize, chunkSize};
    }

private:
    unsigned char *begin_;
    std::size_t size_; ///< in whole chunks
};
