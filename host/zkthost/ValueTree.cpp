#include "host/zkthost/ValueTree.h"

#include "host/Host.h"
#include "host/classes/Inspect.h"
#include "host/core/Text.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <vector>

namespace zkthost {

namespace {

using namespace host;

constexpr std::size_t shownBytes = 16; // of a memory block

std::string bytesOf(ObjectHandle block, std::size_t limit, std::string_view separator) {
    std::string text;
    for (const char c : memoryBlockBytes(block).substr(0, limit)) {
        text += text.empty() ? "" : separator;
        text += hexadecimal(static_cast<unsigned char>(c), 2);
    }
    return text;
}

/// A value that holds no others, as text and as JSON.
struct Leaf {
    std::string text;
    Json json;
};

Leaf leafOf(const VariantContent &content) {
    const Value &value = content.value;
    switch (content.type) {
    case VariantType::string:
        return {jsonLine(value.text()), value.text()};
    case VariantType::integer:
        return {std::to_string(value.integer()), value.integer()};
    case VariantType::uint32:
        return {std::to_string(value.unsignedInteger()), value.unsignedInteger()};
    case VariantType::boolean:
        return {value.boolean() ? "true" : "false", value.boolean()};
    case VariantType::real:
    case VariantType::single:
        break;
    }
    const bool isSingle = content.type == VariantType::single;
    const double number = value.number();
    return {isSingle ? shortestSingle(number) : shortest(number), number};
}

/// Containers that are being shown, from the outermost in: what holds itself would have no end.
class Inside {
public:
    explicit Inside(ObjectHandle container)
        : isRepeated_(path.size() == mostLevels ||
                      std::ranges::find(path, container) != path.end()) {
        path.push_back(container);
    }
    ~Inside() { path.pop_back(); }
    Inside(const Inside &) = delete;
    Inside &operator=(const Inside &) = delete;

    [[nodiscard]] bool isRepeated() const { return isRepeated_; }

private:
    static constexpr std::size_t mostLevels = 1000;
    static inline std::vector<ObjectHandle> path;
    bool isRepeated_;
};

struct Entry {
    std::string key; ///< as text
    Value keyValue;
    Value value;
};

std::vector<Entry> sortedEntries(ObjectHandle dictionary);

/// Adds the value to the line that was begun, and lines for what it holds.
void addTree(std::string &text, const Value &value, std::size_t depth) {
    const ObjectRef object = box(value);
    const std::string type = Host::current().className(object);
    const Inside inside(object);
    const std::string indentation = '\n' + std::string(2 * depth + 2, ' ');
    if (object.handle() == nullptr) {
        text += "nil";
    } else if (type == "Variant") {
        const VariantContent content = variant(object);
        if (content.type != VariantType::string)
            text += std::string(nameOf(content.type)) + ' ';
        text += leafOf(content).text;
    } else if (inside.isRepeated()) {
        text += type + " (not shown again)";
    } else if (type == "Array") {
        const std::vector<Value> elements = arrayObjects(object);
        text += "Array, " + counted(elements.size(), "element", "elements");
        for (std::size_t i = 0; i < elements.size(); ++i) {
            text += indentation + std::to_string(i) + ": ";
            addTree(text, elements[i], depth + 1);
        }
    } else if (type == "Dictionary") {
        const std::vector<Entry> entries = sortedEntries(object);
        text += "Dictionary, " + counted(entries.size(), "entry", "entries");
        for (const Entry &entry : entries) {
            text += indentation + entry.key + ": ";
            addTree(text, entry.value, depth + 1);
        }
    } else if (type == "Date") {
        text += "Date " + describe(dateParts(object));
    } else if (type == "MemoryBlock") {
        const std::uint64_t size = memoryBlockSize(object);
        text += "MemoryBlock, " + counted(size, "byte", "bytes") + (size > 0 ? ": " : "") +
                bytesOf(object, shownBytes, " ") + (size > shownBytes ? " ..." : "");
    } else if (type == "FolderItem") {
        text += "FolderItem " + jsonLine(folderItem(object).path.string());
    } else {
        text += type;
    }
}

std::vector<Entry> sortedEntries(ObjectHandle dictionary) {
    std::vector<Entry> entries;
    for (const auto &[key, value] : dictionaryObjects(dictionary))
        entries.push_back({treeAsText(key), key, value});
    std::ranges::sort(entries, {}, &Entry::key);
    return entries;
}

Json arrayAsJson(ObjectHandle array) {
    Json elements = Json::array();
    for (const Value &element : arrayObjects(array))
        elements.push_back(treeAsJson(element));
    return elements;
}

Json entriesAsJson(ObjectHandle dictionary) {
    Json entries = Json::array();
    for (const Entry &entry : sortedEntries(dictionary))
        entries.push_back(
            {{"key", treeAsJson(entry.keyValue)}, {"value", treeAsJson(entry.value)}});
    return entries;
}

} // namespace

std::string treeAsText(const Value &value) {
    std::string text;
    addTree(text, value, 0);
    return text;
}

Json treeAsJson(const Value &value) {
    const ObjectRef object = box(value);
    if (object.handle() == nullptr)
        return nullptr;
    const std::string type = Host::current().className(object);
    const Inside inside(object);
    Json json = Json::object();
    json["type"] = type;
    if (type == "Variant") {
        const VariantContent content = variant(object);
        Leaf leaf = leafOf(content);
        json["type"] = std::string(nameOf(content.type));
        const bool isNumber =
            !leaf.json.is_number_float() || std::isfinite(leaf.json.get<double>());
        json["value"] = std::move(leaf.json);
        // JSON has no such number; it is written as null.
        if (!isNumber)
            json["text"] = leaf.text.substr(leaf.text.find(' ') + 1);
    } else if (inside.isRepeated()) {
        json["repeated"] = true;
    } else if (type == "Array") {
        json["elements"] = arrayAsJson(object);
    } else if (type == "Dictionary") {
        json["entries"] = entriesAsJson(object);
    } else if (type == "Date") {
        json["value"] = describe(dateParts(object));
    } else if (type == "MemoryBlock") {
        json["size"] = memoryBlockSize(object);
        json["bytes"] = bytesOf(object, std::string::npos, "");
    } else if (type == "FolderItem") {
        json["path"] = folderItem(object).path.string();
    }
    return json;
}

} // namespace zkthost
