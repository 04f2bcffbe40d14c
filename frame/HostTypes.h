#pragma once

#include <cstddef>
#include <cstdint>

/// The host's handles. Both are opaque, reference-counted by the host, and null for the host's nil.
/// A Variant and an array are host objects too.
struct REALobjectStruct;
struct REALstringStruct;

// Text encodings as the host numbers them, which is Core Foundation's numbering.
namespace HostEncoding {
inline constexpr std::uint32_t macRoman = 0;
inline constexpr std::uint32_t utf16 = 0x0100; // host byte order
inline constexpr std::uint32_t windowsLatin1 = 0x0500;
inline constexpr std::uint32_t ascii = 0x0600;
inline constexpr std::uint32_t utf8 = 0x08000100;
inline constexpr std::uint32_t utf32 = 0x0C000100;
inline constexpr std::uint32_t unknown = 0xFFFF; // bytes without a declared encoding
} // namespace HostEncoding

/// The host lays the data of an instance of a class without superclass behind its 48-byte header.
/// All wrapper classes of the family rely on that and keep their Cocoa object in the first field.
inline constexpr std::size_t instanceDataOffset = 48;

template <class Data>
Data &instanceData(REALobjectStruct *instance, std::size_t offset = instanceDataOffset) {
    return *reinterpret_cast<Data *>(reinterpret_cast<std::byte *>(instance) + offset);
}
