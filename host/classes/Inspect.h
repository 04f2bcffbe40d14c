#pragma once

// Looking into the host's own classes. Every function throws UsageError when the object is not
// a live one of the class it reads.

#include "host/language/Value.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <functional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace host {

enum class VariantType { string, integer, real, boolean, uint32, single };

struct VariantContent {
    VariantType type;
    Value value; ///< a uint32 as unsigned, a single as double, a null string as nil
};

/// A Variant object around a plain value; an object value is returned as it is (an object is its
/// own Variant), nil as nil.
ObjectRef box(const Value &value);
ObjectRef box(const Value &value, VariantType type);
/// Of a Variant object.
VariantContent variant(ObjectHandle object);
/// Of any handle: a Variant's content, another object as itself, null as nil.
Value unboxed(ObjectHandle object);

/// Codes of one-dimensional arrays.
inline constexpr std::int32_t stringElements = 3;
inline constexpr std::int32_t objectElements = 4; ///< objects and Variants
/// Numbers and Booleans: only programs make such arrays.
inline constexpr std::int32_t plainElements = 0;

/// Empty.
ObjectRef makeArray(std::int32_t elementType);
std::int32_t elementType(ObjectHandle array);
/// Upper bound plus one.
std::size_t arrayCount(ObjectHandle array);
std::vector<Value> arrayElements(ObjectHandle array); ///< Variants unboxed
std::vector<Value> arrayObjects(ObjectHandle array);  ///< Variants as they are

/// In order of insertion, Variants unboxed.
std::vector<std::pair<Value, Value>> dictionaryEntries(ObjectHandle dictionary);
/// The same, Variants as they are.
std::vector<std::pair<Value, Value>> dictionaryObjects(ObjectHandle dictionary);

struct DateParts {
    std::int64_t year, month, day, hour, minute, second;
    bool operator==(const DateParts &) const = default;
};
DateParts dateParts(ObjectHandle date);

std::string memoryBlockBytes(ObjectHandle block);
std::uint64_t memoryBlockSize(ObjectHandle block);

/// How the folder item was made, and the path it stands for.
struct FolderContent {
    bool fromParent = false;           ///< by REALFolderItemFromParentFSRef
    std::int64_t pathMode = 0;         ///< of GetTrueFolderItem, else 0
    std::filesystem::path parent = {}; ///< with fromParent
    std::u16string name = {};          ///< with fromParent: exactly the units that were given
    std::filesystem::path path = {};
};
FolderContent folderItem(ObjectHandle item);

/// "String", "Integer", "Double", "Boolean", "UInt32", "Single"
std::string_view nameOf(VariantType type);
/// 2013-04-12 18:30:00
std::string describe(const DateParts &date);
/// A value with all that it holds (not itself), on one line: nil, "a", Integer(1), [Double(1.5),
/// nil], {String("key"): Integer(2)}, Date(2013-04-12 18:30:00), MemoryBlock("abc"),
/// FolderItem(/tmp). Strings by their bytes, followed by " undeclared" or the encoding if it is not
/// UTF-8. Other objects as the function says, else by the name of their class.
std::string describeDeep(const Value &value,
                         const std::function<std::string(ObjectHandle)> &other = {});

} // namespace host
