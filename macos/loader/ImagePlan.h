#pragma once

#include "macos/loader/ByteView.h"
#include "macos/loader/UnwindTable.h"

#include <compare>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

/// What has to be done to bring an image to life, read from its file and checked: every offset in a
/// plan lies within the image, every index within its table. Offsets are in bytes from the image's
/// header, which is also where the image begins in memory.

namespace macho {

struct Segment {
    std::string name;
    std::uint64_t offset = 0;
    std::uint64_t size = 0;
    Bytes content;            // shorter than `size` when the rest is zero
    bool readable = false;    // once loaded
    bool writable = false;    // once loaded
    bool executable = false;  // once loaded
    bool takesFixups = false; // writable while it is being loaded
};

struct Section {
    std::string name; // "__TEXT,__text"
    std::uint32_t type = 0;
    std::uint64_t offset = 0;
    std::uint64_t size = 0;
    Bytes content; // empty when the section is zero-filled
};

/// The name of a symbol as sources know it: C symbols carry a leading underscore in the file.
constexpr std::string_view publicName(std::string_view symbol) {
    return symbol.starts_with('_') ? symbol.substr(1) : symbol;
}

/// Where an import is looked for.
enum class Scope : std::uint8_t {
    library,  // what the image was linked against
    ownImage, // the image's own exports only
    coalesced // the image's own exports, then everyone's: C++ weak definitions
};

/// What becomes of a slot whose import nobody exports.
enum class Missing : std::uint8_t {
    isError,
    isNull,   // weak imports
    isIgnored // the slot is good as it is: a weak definition that nobody overrides
};

struct Import {
    std::string name; // without the leading underscore
    std::string library;
    Scope scope = Scope::library;
    Missing missing = Missing::isError;
};

struct Rebase {
    std::uint64_t slot = 0;
    std::uint64_t target = 0; // may point outside the image, as C pointers may
};

struct Bind {
    std::uint64_t slot = 0;
    std::size_t import = 0;
    std::int64_t addend = 0;
};

struct NamedOffset {
    std::string name; // without the leading underscore
    std::uint64_t offset = 0;

    auto operator<=>(const NamedOffset &) const = default;
};

struct ImagePlan {
    std::string source; // the path, for messages
    std::uint64_t size = 0;
    std::uint64_t pageSize = 0;    // what its segments begin at multiples of
    std::vector<Segment> segments; // by offset, the first holds the header
    std::vector<Section> sections;
    std::vector<Import> imports;
    std::vector<Rebase> rebases;
    std::vector<Bind> binds;                       // in the order in which they are applied
    std::vector<NamedOffset> exports;              // by name
    std::vector<NamedOffset> symbols;              // every defined symbol, in the file's order
    std::vector<std::uint64_t> initialisers;       // slots that hold a pointer to a function
    std::vector<std::uint64_t> initialiserOffsets; // the functions themselves
    std::vector<std::uint64_t> selectorSlots;      // each holds a pointer to a selector's name
    UnwindTable unwind;

    /// The section of that name ("__TEXT,__text"); null when there is none.
    [[nodiscard]] const Section *section(std::string_view name) const;
    /// True when that many bytes lie in one readable segment: there are gaps between segments.
    [[nodiscard]] bool isReadable(std::uint64_t offset, std::uint64_t length) const;
    /// True when `offset` lies in the file's part of an executable segment.
    [[nodiscard]] bool isCode(std::uint64_t offset) const;
    /// True when a string that ends with a zero byte stands at `offset`, in the file's part of a
    /// segment that is not written to.
    [[nodiscard]] bool isText(std::uint64_t offset) const;
};

} // namespace macho
