#pragma once

#include "host/zkthost/Options.h"

#include <algorithm>
#include <cstdint>
#include <string>
#include <string_view>

namespace zkthost {

/// A stretch of a file, read in one byte order. What lies beyond its end throws InputError.
class MachOBytes {
public:
    MachOBytes(std::string_view bytes, bool isBigEndian)
        : bytes_(bytes), isBigEndian_(isBigEndian) {}

    [[nodiscard]] std::size_t size() const { return bytes_.size(); }
    [[nodiscard]] std::string_view all() const { return bytes_; }
    [[nodiscard]] std::uint8_t byte(std::uint64_t offset) const {
        return static_cast<std::uint8_t>(part(offset, 1).front());
    }
    [[nodiscard]] std::uint16_t half(std::uint64_t offset) const {
        return static_cast<std::uint16_t>(integer(offset, 2));
    }
    [[nodiscard]] std::uint32_t word(std::uint64_t offset) const {
        return static_cast<std::uint32_t>(integer(offset, 4));
    }
    [[nodiscard]] std::uint64_t doubleWord(std::uint64_t offset) const {
        return integer(offset, 8);
    }
    /// From the offset to the first zero, or to the end.
    [[nodiscard]] std::string text(std::uint64_t offset) const {
        const std::string_view rest =
            part(offset, size() - std::min<std::uint64_t>(offset, size()));
        return std::string(rest.substr(0, rest.find('\0')));
    }
    /// A name that fills its place of 16 bytes, or ends before with a zero.
    [[nodiscard]] std::string shortName(std::uint64_t offset) const {
        const std::string_view place = part(offset, 16);
        return std::string(place.substr(0, place.find('\0')));
    }
    [[nodiscard]] MachOBytes range(std::uint64_t offset, std::uint64_t count) const {
        return {part(offset, count), isBigEndian_};
    }
    [[nodiscard]] MachOBytes from(std::uint64_t offset) const {
        return range(offset, size() - std::min<std::uint64_t>(offset, size()));
    }

private:
    [[nodiscard]] std::string_view part(std::uint64_t offset, std::uint64_t count) const {
        if (offset > size() || count > size() - offset)
            throw InputError("damaged: it ends before byte " + std::to_string(offset) + " of " +
                             std::to_string(size()) + " bytes");
        return bytes_.substr(offset, count);
    }
    [[nodiscard]] std::uint64_t integer(std::uint64_t offset, std::uint64_t count) const {
        std::uint64_t number = 0;
        const std::string_view place = part(offset, count);
        for (std::uint64_t i = 0; i < count; ++i)
            number =
                number << 8 | static_cast<std::uint8_t>(place[isBigEndian_ ? i : count - 1 - i]);
        return number;
    }

    std::string_view bytes_;
    bool isBigEndian_;
};

} // namespace zkthost
