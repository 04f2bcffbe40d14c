#include "host/classes/Inspect.h"

#include "host/classes/ClassTable.h"
#include "host/classes/NativeData.h"
#include "host/core/Core.h"
#include "host/core/Text.h"
#include "host/memory/Heap.h"

#include <array>
#include <cstdio>

namespace host {

std::string_view nameOf(VariantType type) {
    switch (type) {
    case VariantType::string:
        return "String";
    case VariantType::integer:
        return "Integer";
    case VariantType::real:
        return "Double";
    case VariantType::boolean:
        return "Boolean";
    case VariantType::uint32:
        return "UInt32";
    case VariantType::single:
        return "Single";
    }
    return "";
}

std::string describe(const DateParts &date) {
    std::array<char, 160> text{};
    std::snprintf(text.data(), text.size(), "%04lld-%02lld-%02lld %02lld:%02lld:%02lld",
                  static_cast<long long>(date.year), static_cast<long long>(date.month),
                  static_cast<long long>(date.day), static_cast<long long>(date.hour),
                  static_cast<long long>(date.minute), static_cast<long long>(date.second));
    return text.data();
}

std::string describeDeep(const Value &value,
                         const std::function<std::string(ObjectHandle)> &other) {
    if (const auto *string = std::get_if<StringRef>(&value)) {
        const String &found = *Core::current().heap.find(string->handle());
        std::string text = '"' + found.bytes + '"';
        if (found.encoding == encoding::utf8)
            return text;
        return text + (found.encoding == encoding::unknown
                           ? " undeclared"
                           : " in " + std::string(encodingName(found.encoding)));
    }
    const auto *reference = std::get_if<ObjectRef>(&value);
    if (reference == nullptr)
        return describe(value);
    const auto inside = [&](const Value &held) { return describeDeep(held, other); };
    const auto inRow = [](const auto &things, const auto &describeThing) {
        std::string text;
        for (const auto &thing : things)
            text += (text.empty() ? "" : ", ") + describeThing(thing);
        return text;
    };
    const Object &object = *Core::current().heap.find(reference->handle());
    const std::any &payload = object.payload;
    if (const auto *variant = std::any_cast<VariantContent>(&payload))
        return std::string(nameOf(variant->type)) + '(' + inside(variant->value) + ')';
    if (const auto *array = std::any_cast<ArrayData>(&payload))
        return '[' + inRow(array->elements, inside) + ']';
    if (const auto *dictionary = std::any_cast<DictionaryData>(&payload))
        return '{' +
               inRow(dictionary->entries,
                     [&](const auto &entry) {
                         return inside(entry.first) + ": " + inside(entry.second);
                     }) +
               '}';
    if (const auto *date = std::any_cast<DateParts>(&payload))
        return "Date(" + describe(*date) + ')';
    if (const auto *block = std::any_cast<MemoryData>(&payload))
        return "MemoryBlock(" +
               inQuotes({reinterpret_cast<const char *>(block->bytes.get()), block->size}) + ')';
    if (const auto *item = std::any_cast<FolderContent>(&payload))
        return "FolderItem(" + item->path.string() + (item->fromParent ? ")" : ", by path)");
    return other ? other(reference->handle()) : object.type->name;
}

} // namespace host
