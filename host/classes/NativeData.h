#pragma once

// What the host keeps in C++ about instances of its own classes, besides VariantContent, DateParts
// and FolderContent. The references inside are the host's and go when the object does.

#include "host/classes/Inspect.h"

#include <memory>
#include <string>
#include <unordered_map>
#include <vector>

namespace host {

struct ArrayData {
    std::int32_t elementType = objectElements;
    std::vector<Value> elements;
};

struct DictionaryData {
    std::vector<std::pair<Value, Value>> entries;        ///< as given, not unboxed
    std::unordered_map<std::string, std::size_t> places; ///< from a key's identity
};

struct MemoryData {
    std::shared_ptr<std::byte[]> bytes;
    std::uint64_t size = 0;
};

struct ExceptionData {
    StringRef message;
    std::int64_t errorNumber = 0;
};

} // namespace host
