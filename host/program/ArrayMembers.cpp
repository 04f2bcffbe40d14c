#include "host/program/ArrayMembers.h"

#include "host/classes/Inspect.h"
#include "host/classes/NativeData.h"
#include "host/language/Names.h"
#include "host/program/Arithmetic.h"
#include "host/program/Arrays.h"
#include "host/program/Raised.h"
#include "host/program/Types.h"

#include <algorithm>
#include <utility>

namespace host::program {

namespace {

Value looked(const ArrayData &array, const Value &element) {
    return plain(element, array.elementType == stringElements ? simpleType(TypeKind::string)
                                                              : simpleType(TypeKind::variant));
}

Value append(ArrayData &array, const Values &arguments) {
    checkSize((array.elements.size() + 1) * sizeof(Value));
    array.elements.push_back(kept(array, arguments[0]));
    return {};
}

Value insert(ArrayData &array, const Values &arguments) {
    const std::int64_t index = arguments[0].integer();
    if (index < 0 || static_cast<std::uint64_t>(index) > array.elements.size())
        raiseOutOfBounds(index, array.elements.size());
    checkSize((array.elements.size() + 1) * sizeof(Value));
    array.elements.insert(array.elements.begin() + index, kept(array, arguments[1]));
    return {};
}

Value remove(ArrayData &array, const Values &arguments) {
    const std::int64_t index = arguments[0].integer();
    if (index < 0 || static_cast<std::uint64_t>(index) >= array.elements.size())
        raiseOutOfBounds(index, array.elements.size());
    // Out of the array first: its end may need a whole array.
    const Value removed = std::move(array.elements[static_cast<std::size_t>(index)]);
    array.elements.erase(array.elements.begin() + index);
    return {};
}

Value indexOf(ArrayData &array, const Values &arguments) {
    const Value wanted = looked(array, arguments[0]);
    const auto found = std::ranges::find_if(array.elements, [&](const Value &element) {
        return isEqual(looked(array, element), wanted);
    });
    return found == array.elements.end() ? -1 : static_cast<int>(found - array.elements.begin());
}

/// Numbers or strings; what is not a number stands last.
Value sort(ArrayData &array, const Values & /*arguments*/) {
    std::vector<std::pair<Value, Value>> elements; // as compared, as kept
    elements.reserve(array.elements.size());
    for (const Value &element : array.elements)
        elements.emplace_back(looked(array, element), element);
    const auto all = [&](auto test) {
        return std::ranges::all_of(elements, test, [](auto &e) -> auto & { return e.first; });
    };
    if (!all([](const Value &v) { return isNumber(v); }) &&
        !all([](const Value &v) { return std::holds_alternative<StringRef>(v); }))
        raise("UnsupportedOperationException", "only numbers and Strings can be sorted");
    std::ranges::sort(elements, [](const auto &a, const auto &b) {
        if (isNotANumber(a.first) || isNotANumber(b.first))
            return isNotANumber(b.first) && !isNotANumber(a.first);
        return compared(a.first, b.first) < 0;
    });
    for (std::size_t i = 0; i < elements.size(); ++i)
        array.elements[i] = elements[i].second;
    return {};
}

Value upperBound(ArrayData &array, const Values & /*arguments*/) {
    return static_cast<std::int64_t>(array.elements.size()) - 1;
}

ArrayMember member(std::string_view declaration, Value (*run)(ArrayData &, const Values &)) {
    return {parseMethod(declaration), run};
}

const std::vector<ArrayMember> &arrayMembers() {
    static const std::vector<ArrayMember> all{
        member("Append(value As Variant)", append),
        member("Insert(index As Integer, value As Variant)", insert),
        member("Remove(index As Integer)", remove),
        member("IndexOf(value As Variant) As Integer", indexOf),
        member("Sort", sort),
        member("Ubound As Integer", upperBound),
    };
    return all;
}

} // namespace

const ArrayMember *findArrayMember(std::string_view name) {
    const auto found = std::ranges::find_if(arrayMembers(), [&](const ArrayMember &row) {
        return sameName(row.declaration.name, name);
    });
    return found == arrayMembers().end() ? nullptr : &*found;
}

std::vector<std::string> namesOfArrayMembers() {
    std::vector<std::string> names;
    for (const ArrayMember &row : arrayMembers())
        names.push_back(row.declaration.name);
    return names;
}

} // namespace host::program
