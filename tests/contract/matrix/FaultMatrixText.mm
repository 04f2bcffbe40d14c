// Host strings from text in every width, with hosts that convert it themselves and hosts that do
// not.

#import "FaultMatrixScene.h"

namespace matrix {

namespace {

using namespace std::string_view_literals;

const Aftermath nothing = gives("nil");

std::function<Act(Scene &)> building(std::string bytes, std::uint32_t encoding) {
    return [bytes = std::move(bytes), encoding](Scene &scene) -> Act {
        using Build = host::StringHandle(const char *, std::int64_t, std::uint32_t);
        auto *build = imageFunction<Build>(scene.image, "REALBuildUnicodeString");
        return {[&scene, build, bytes, encoding] {
            return scene.taken(
                build(bytes.data(), static_cast<std::int64_t>(bytes.size()), encoding));
        }};
    };
}

std::string repeated(std::string_view text, std::size_t count) {
    std::string result;
    for (std::size_t i = 0; i < count; ++i)
        result += text;
    return result;
}

/// The service that releases strings is needed by the report of its own failure.
Rule unreleased(const Lines &held) {
    return [held](Fault fault) {
        return mapped(nothing.holding(held))(fault).leftBy(exceptionOf(fault));
    };
}

Rows convertedByHost(const Aftermath &whole) {
    return {{"REALConvertString", nothing, mapped(nothing)},
            {"REALUnlockString", whole.holding({"String"}),
             unreleased({"String", "String", "String"})}};
}

/// As an old host shows bytes that no one declared to be UTF-16: each for itself.
std::string unconverted(std::string_view text) {
    std::string result;
    for (const char character : text)
        result.append(1, character).append(1, '\0');
    return '"' + result + '"';
}

void addNewHost(Operations &all, const std::string &name, const std::string &bytes,
                std::uint32_t encoding) {
    const Aftermath whole = gives("\"ab\"");
    all.push_back({.name = name,
                   .arrange = building(bytes, encoding),
                   .present = whole,
                   .rows = inOrder(Rows{{"REALBuildStringWithEncoding", nothing, mapped(nothing)}},
                                   convertedByHost(whole))});
}

void addOldHost(Operations &all, const std::string &name, const std::string &bytes,
                std::uint32_t encoding, const std::string &text) {
    const Aftermath whole = gives('"' + text + '"');
    all.push_back(
        {.name = name,
         .arrange = building(bytes, encoding),
         .present = whole,
         .rows = inOrder(stringBuilding(nothing, gives(unconverted(text))), convertedByHost(whole)),
         .hostVersion = 2011.0});
}

void addPlain(Operations &all) {
    all.push_back({.name = "text in Windows Latin 1",
                   .arrange = building("ab\xE9", host::encoding::windowsLatin1),
                   .present = gives("\"ab\xE9\" in Windows Latin 1"),
                   .rows = stringBuilding(nothing, gives("\"ab\xE9\" undeclared"))});
    all.push_back({.name = "text of no bytes",
                   .arrange = building("", host::encoding::utf8),
                   .present = nothing});
}

} // namespace

const Operations &textOperations() {
    static const Operations all = [] {
        const std::string utf16("a\0b\0"sv);
        const std::string utf32("a\0\0\0b\0\0\0"sv);
        const std::string longUtf32 = repeated("a\0\0\0"sv, 200);
        Operations operations;
        addNewHost(operations, "UTF-16 text", utf16, host::encoding::utf16);
        addNewHost(operations, "UTF-32 text", utf32, host::encoding::utf32);
        addOldHost(operations, "UTF-16 text, old host", utf16, host::encoding::utf16, "ab");
        addOldHost(operations, "UTF-32 text, old host", utf32, host::encoding::utf32, "ab");
        addOldHost(operations, "UTF-32 text, long, old host", longUtf32, host::encoding::utf32,
                   std::string(200, 'a'));
        operations.back().allocations = {802};
        operations.back().unallocated = nothing;
        addPlain(operations);
        return operations;
    }();
    return all;
}

} // namespace matrix
