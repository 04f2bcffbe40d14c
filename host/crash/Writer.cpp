#include "host/crash/Writer.h"

#include <cerrno>
#include <unistd.h>

namespace crash {

Writer &Writer::operator<<(std::string_view text) {
    for (const char c : text) {
        if (count_ == buffer_.size())
            flush();
        buffer_[count_++] = c;
    }
    return *this;
}

Writer &Writer::digits(std::uint64_t number, unsigned base) {
    std::array<char, 20> reversed{};
    std::size_t count = 0;
    do {
        reversed[count++] = "0123456789abcdef"[number % base];
        number /= base;
    } while (number != 0);
    while (count > 0)
        *this << std::string_view(&reversed[--count], 1);
    return *this;
}

void Writer::flush() {
    const char *next = buffer_.data();
    while (count_ > 0) {
        const ssize_t written = write(STDERR_FILENO, next, count_);
        if (written < 0 && errno != EINTR)
            break;
        if (written > 0) {
            next += written;
            count_ -= static_cast<std::size_t>(written);
        }
    }
    count_ = 0;
}

} // namespace crash
