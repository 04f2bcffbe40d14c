#include "host/program/Functions.h"

#include "host/Host.h"
#include "host/classes/NativeData.h"
#include "host/language/Names.h"
#include "host/program/Arrays.h"
#include "host/program/Characters.h"
#include "host/program/Raised.h"
#include "host/program/Types.h"
#include "host/program/ValueText.h"

#include <algorithm>
#include <cstdlib>

namespace host::program {

namespace {

std::size_t countFrom(const Value &value) {
    return static_cast<std::size_t>(std::max<std::int64_t>(value.integer(), 0));
}

Value made(const std::string &text) {
    return std::string_view(text);
}

// Positions count from 1, in characters.

Value str(const Values &arguments) {
    return made(textOf(arguments[0]));
}

/// The number that the text begins with; 0 without one.
Value val(const Values &arguments) {
    const std::string text = arguments[0].text();
    const std::size_t start = text.find_first_not_of(" \t");
    // strtod reads more than numbers of this language.
    const std::size_t end = text.find_first_not_of("0123456789.+-eE \t");
    return start == std::string::npos ? 0.0 : std::strtod(text.substr(0, end).c_str(), nullptr);
}

Value len(const Values &arguments) {
    return static_cast<std::int64_t>(characterCount(arguments[0].text()));
}

Value left(const Values &arguments) {
    return made(characters(arguments[0].text(), 0, countFrom(arguments[1])));
}

Value right(const Values &arguments) {
    const std::string text = arguments[0].text();
    const std::size_t count = std::min(countFrom(arguments[1]), characterCount(text));
    return made(characters(text, characterCount(text) - count, count));
}

Value mid(const Values &arguments) {
    const std::size_t start = std::max<std::size_t>(countFrom(arguments[1]), 1) - 1;
    const std::size_t count = arguments.size() > 2 ? countFrom(arguments[2]) : std::string::npos;
    return made(characters(arguments[0].text(), start, count));
}

Value inStrFrom(std::size_t start, const std::string &text, const std::string &wanted) {
    const std::size_t found = text.find(wanted, byteOf(text, start));
    return found == std::string::npos ? 0
                                      : static_cast<int>(characterCount(text.substr(0, found))) + 1;
}

Value inStr(const Values &arguments) {
    if (arguments.size() == 2)
        return inStrFrom(0, arguments[0].text(), arguments[1].text());
    return inStrFrom(std::max<std::size_t>(countFrom(arguments[0]), 1) - 1, arguments[1].text(),
                     arguments[2].text());
}

Value upper(const Values &arguments) {
    return made(uppercase(arguments[0].text()));
}

Value lower(const Values &arguments) {
    return made(lowercase(arguments[0].text()));
}

Value trim(const Values &arguments) {
    constexpr std::string_view blanks = " \t\r\n";
    std::string text = arguments[0].text();
    text.erase(text.find_last_not_of(blanks) + 1);
    text.erase(0, std::min(text.find_first_not_of(blanks), text.size()));
    return made(text);
}

Value chr(const Values &arguments) {
    const std::int64_t code = arguments[0].integer();
    if (code < 0 || code > 0x10FFFF || (code >= 0xD800 && code < 0xE000))
        raise("OutOfBoundsException", "there is no character " + std::to_string(code));
    return made(character(static_cast<char32_t>(code)));
}

Value ubound(const Values &arguments) {
    return static_cast<std::int64_t>(elementsOf(arguments[0]).elements.size()) - 1;
}

Value join(const Values &arguments) {
    const std::string separator = arguments.size() > 1 ? arguments[1].text() : " ";
    std::string text;
    for (const Value &part : elementsOf(arguments[0]).elements) {
        text += (&part == elementsOf(arguments[0]).elements.data() ? "" : separator) + part.text();
        checkSize(text.size());
    }
    return made(text);
}

/// Without a separator, characters.
Value split(const Values &arguments) {
    const std::string text = arguments[0].text();
    const std::string separator = arguments.size() > 1 ? arguments[1].text() : " ";
    const ObjectRef array = newArray(simpleType(TypeKind::string), 0);
    ArrayData &data = elementsOf(array);
    for (std::size_t start = 0; start < text.size();) {
        const std::size_t end = separator.empty()
                                    ? byteOf(text.substr(start), 1) + start
                                    : std::min(text.find(separator, start), text.size());
        data.elements.emplace_back(std::string_view(text).substr(start, end - start));
        // A text that ends with the separator has an empty part behind it.
        if (!separator.empty() && end < text.size() && end + separator.size() == text.size())
            data.elements.emplace_back();
        start = end + separator.size();
    }
    return array;
}

Function function(std::string_view declaration, Value (*run)(const Values &)) {
    return {parseMethod(declaration), run};
}

const std::vector<Function> &functions() {
    static const std::vector<Function> all{
        function("Str(value As Variant) As String", str),
        function("Val(text As String) As Double", val),
        function("Len(text As String) As Integer", len),
        function("Left(text As String, count As Integer) As String", left),
        function("Mid(text As String, start As Integer) As String", mid),
        function("Mid(text As String, start As Integer, count As Integer) As String", mid),
        function("Right(text As String, count As Integer) As String", right),
        function("InStr(text As String, wanted As String) As Integer", inStr),
        function("InStr(start As Integer, text As String, wanted As String) As Integer", inStr),
        function("Uppercase(text As String) As String", upper),
        function("Lowercase(text As String) As String", lower),
        function("Trim(text As String) As String", trim),
        function("Chr(code As Integer) As String", chr),
        function("Ubound(values As Variant()) As Integer", ubound),
        function("Join(parts As String()) As String", join),
        function("Join(parts As String(), separator As String) As String", join),
        function("Split(text As String) As String()", split),
        function("Split(text As String, separator As String) As String()", split),
    };
    return all;
}

} // namespace

const Function *findFunction(std::string_view name, std::size_t argumentCount) {
    const auto found = std::ranges::find_if(functions(), [&](const Function &row) {
        return sameName(row.declaration.name, name) &&
               row.declaration.parameters.size() == argumentCount;
    });
    return found == functions().end() ? nullptr : &*found;
}

const Function *findFunction(std::string_view name) {
    const auto found = std::ranges::find_if(
        functions(), [&](const Function &row) { return sameName(row.declaration.name, name); });
    return found == functions().end() ? nullptr : &*found;
}

std::vector<std::string> namesOfFunctions() {
    std::vector<std::string> names{std::string(arrayFunction)};
    for (const Function &row : functions())
        names.push_back(row.declaration.name);
    return names;
}

} // namespace host::program
