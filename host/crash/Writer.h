#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <string_view>

namespace crash {

/// Writes to standard error from a signal handler: allocates nothing, takes no lock. What is
/// written comes out when the buffer is full and at the end.
class Writer {
public:
    Writer() = default;
    ~Writer() { flush(); }
    Writer(const Writer &) = delete;
    Writer &operator=(const Writer &) = delete;

    Writer &operator<<(std::string_view text);
    Writer &decimal(std::uint64_t number) { return digits(number, 10); }
    /// "0x1f"
    Writer &address(std::uint64_t number) { return (*this << "0x").digits(number, 16); }
    void flush();

private:
    Writer &digits(std::uint64_t number, unsigned base);

    std::array<char, 512> buffer_;
    std::size_t count_ = 0;
};

} // namespace crash
